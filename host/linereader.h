// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef LINEREADER_H
#define LINEREADER_H

#include <QObject>
#include <QQueue>
#include <QSocketNotifier>

/*! Reads UTF-8 lines from a file descriptor as they arrive, without holding up the event loop. Reads no more
    while lines are waiting to be taken. */
class LineReader : public QObject
{
    Q_OBJECT
public:
    /*! \a fd stays the caller's: a terminal, pipe, FIFO, socket or file. */
    explicit LineReader(int fd, QObject *parent = nullptr);

    bool hasLine() const { return !m_lines.isEmpty(); }
    QString takeLine();
    /*! Nothing follows: the input has ended, or cannot be read. */
    bool isAtEnd() const { return m_isAtEnd && m_lines.isEmpty(); }

Q_SIGNALS:
    /*! There is a line, or the input has ended. */
    void ready();

private:
    void read();

    const int m_fd;
    QSocketNotifier m_notifier;
    QByteArray m_rest; // of an unfinished line
    QQueue<QString> m_lines;
    bool m_isAtEnd = false;
};

#endif // LINEREADER_H
