// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef SESSION_H
#define SESSION_H

#include "commands.h"
#include "linereader.h"
#include "output.h"

#include <QTimer>

/*! Reads commands from standard input, has them carried out one after the other, and prints their answers and
    the daemon's events. */
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
    void reportEvents();
    void executeNext();
    void execute(const QString &line);

    // The answer to the last command, now or later.
    void answer(Message message, const QString &error = QString());
    void answer(const StartedJob &started);
    void answer(const Pause &pause);
    void answerJob(Message message, Thing::ThingError status, const QString &displayMessage,
                   const QString &error);
    void refuse(const QString &reason);

    void endPause();
    void drawWallboxes();

    Daemon *const m_daemon;
    Output *const m_output;
    CommandContext m_context;
    LineReader m_reader;
    bool m_quit = false;

    // The last command
    QString m_name;
    const Command *m_command = nullptr; // null: there is none of that name
    bool m_isPending = false;           // it is not answered yet
    bool m_isOpenEnded = false;         // the next line ends it
    QTimer m_pauseTimer;                // runs out at its end
    QTimer m_drawTimer;
};

#endif // SESSION_H
