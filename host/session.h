// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef SESSION_H
#define SESSION_H

#include "commands.h"
#include "linereader.h"

#include <QQueue>

/*! Brings the commands of standard input to the daemon, in order, and the daemon's news to the output. */
class Session : public QObject
{
    Q_OBJECT
public:
    /*! Both must outlive this object. */
    Session(Daemon *daemon, Output *output, QObject *parent = nullptr);

Q_SIGNALS:
    /*! By "quit", or at the end of the input once the last command is answered. */
    void ended();

private:
    void reportEvents(Daemon *daemon);
    void onLineRead(const QString &line);
    void executeNext();

    Output *const m_output;
    Commands m_commands;
    LineReader m_reader;
    QQueue<QString> m_lines;
    bool m_inputEnded = false;
    bool m_quit = false;
};

#endif // SESSION_H
