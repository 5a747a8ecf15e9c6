// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef LINEREADER_H
#define LINEREADER_H

#include <QObject>
#include <QSocketNotifier>

/*! Reads UTF-8 lines from a file descriptor as they arrive, without holding up the event loop. */
class LineReader : public QObject
{
    Q_OBJECT
public:
    /*! \a fd stays the caller's: a terminal, pipe, FIFO, socket or file. */
    explicit LineReader(int fd, QObject *parent = nullptr);

    /*! A paused reader leaves the input where it is. Lines that it has read already still come. */
    void setPaused(bool paused);

Q_SIGNALS:
    void lineRead(const QString &line);
    /*! End of input or an error; nothing follows. */
    void ended();

private:
    void read();

    const int m_fd;
    bool m_atEnd = false;
    QSocketNotifier m_notifier;
    QByteArray m_rest; // of an unfinished line
};

#endif // LINEREADER_H
