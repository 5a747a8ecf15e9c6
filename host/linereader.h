// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef LINEREADER_H
#define LINEREADER_H

#include "linesource.h"

#include <QSocketNotifier>

/*! Reads UTF-8 lines from standard input as they arrive, without blocking the event loop. Reads no more
    while lines are waiting to be taken. */
class LineReader : public LineSource
{
    Q_OBJECT
public:
    LineReader();

    QString takeLine() override;

private:
    void read();

    QSocketNotifier m_notifier;
    QByteArray m_rest; // of an unfinished line
};

#endif // LINEREADER_H
