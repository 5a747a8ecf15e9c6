// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef OUTPUT_H
#define OUTPUT_H

#include "hostlogging.h"
#include "livetable.h"
#include "messages.h"

#include <QDateTime>
#include <QSize>

class Prompt;

/*! Standard output: one JSON object a line for programs, or text for people. On a terminal, a table is redrawn
    in place, and everything else, log records included, is printed above the prompt. */
class Output : public LogSink
{
public:
    /*! \a prompt, which must outlive this object, is null where nobody types at a terminal. */
    Output(bool isJson, Prompt *prompt);
    ~Output() override;

    void print(const Message &message);
    /*! Draws \a table for people, over the last one where nothing else has been answered since. */
    void draw(const WallboxTable &table);

private:
    void writeRecord(QtMsgType type, const QString &message, const QByteArray &record) override;
    void write(const QByteArray &bytes);
    QStringList warningLines(int width) const;

    const bool m_isJson;
    const bool m_isTerminal; // standard output
    Prompt *const m_prompt;
    int m_drawnLines = 0; // of the table above the cursor of a terminal; 0: no table is shown
    QSize m_drawnSize;    // of the terminal at that time

    // Since the first table was drawn
    int m_warningCount = 0;
    QString m_lastWarning;
    QDateTime m_lastWarningTime;
};

#endif // OUTPUT_H
