// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef SESSION_H
#define SESSION_H

#include "commands.h"
#include "linesource.h"
#include "output.h"

#include <QElapsedTimer>
#include <QTimer>

/*! Takes commands from a source of lines, has them carried out one after the other, and prints their answers and
    the daemon's events. Ends the event loop at "quit", or at the end of the input once the last command is
    answered. */
class Session : public QObject
{
    Q_OBJECT
public:
    /*! All of them must outlive this object. */
    Session(Daemon *daemon, LineSource *source, Output *output);

    /*! Ends the wait or the table of the command that is being carried out. */
    void interrupt();
    /*! The same, but only for a command that does not end by itself. */
    void enter();
    /*! Whether a command has failed so far. */
    bool hasFailed() const { return m_hasFailed; }

private:
    void reportEvents();
    void executeNext();
    void execute(const QString &line);

    // The answer to the last command, now or later.
    void answer(Message message, const QString &error = QString());
    void answer(const std::variant<Message, Pause> &result);
    void answer(const StartedJob &started);
    void answer(const Pause &pause);
    void refuse(const QString &reason);

    void endPause();
    void drawWallboxes();

    Daemon *const m_daemon;
    LineSource *const m_source;
    Output *const m_output;
    LoadBalancer m_balancer;
    CommandContext m_context;
    QSet<ThingId> m_managed;     // see WallboxTable
    QElapsedTimer m_sinceValues; // since the start or a change of what the plugin measures
    bool m_quit = false;
    bool m_hasFailed = false;

    // The last command
    QString m_name;
    const Command *m_command = nullptr; // null: there is none of that name
    bool m_isPending = false;           // it is not answered yet
    bool m_isOpenEnded = false;         // the next line ends it
    QTimer m_pauseTimer;                // runs out at its end
    QTimer m_drawTimer;
};

#endif // SESSION_H
