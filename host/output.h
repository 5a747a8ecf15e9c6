// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef OUTPUT_H
#define OUTPUT_H

#include "messages.h"

#include <integrations/thing.h>

/*! Standard output: one JSON object a line for programs, or text for people, with a prompt and a table that is
    redrawn in place where they sit at a terminal. */
class Output
{
public:
    explicit Output(bool isJson);

    /*! The next command is awaited, or has been read. */
    void awaitCommand();
    void commandRead();

    void print(const Message &message);
    /*! Draws the table of "watch" for people, over the last one where nothing else has been answered since. */
    void draw(const Things &wallboxes);

private:
    void printEvent(const QStringList &lines);

    const bool m_isJson;
    const bool m_isTerminal; // standard output
    const bool m_hasPrompt;  // and somebody types
    bool m_atPrompt = false; // the prompt is the last that has been written
    int m_drawnLines = 0;    // of the table above the cursor of a terminal; 0: no table is shown
};

#endif // OUTPUT_H
