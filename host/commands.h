// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef COMMANDS_H
#define COMMANDS_H

#include "daemon.h"
#include "output.h"

#include <QTimer>

/*! Understands the host's commands and has the daemon carry them out, one after the other. */
class Commands : public QObject
{
    Q_OBJECT
public:
    /*! Both must outlive this object. */
    Commands(Daemon *daemon, Output *output, QObject *parent = nullptr);

    /*! Carries out the command in \a line, unless it is blank or a comment. Only while none is pending. */
    void execute(const QString &line);
    /*! The last command is not answered yet; answered() follows. */
    bool isPending() const;
    /*! Ends a "watch" without a time; other commands go on. */
    void interrupt();

Q_SIGNALS:
    void answered();
    void quitRequested();

private:
    struct Command;
    static const QVector<Command> &table();
    QString run(const Command &command, const QStringList &arguments);

    // One command each: starts it and returns what is wrong with the arguments, or an empty text.
    QString classes(const QStringList &arguments);
    QString discover(const QStringList &arguments);
    QString add(const QStringList &arguments);
    QString things(const QStringList &arguments);
    QString show(const QStringList &arguments);
    QString set(const QStringList &arguments);
    QString setup(const QStringList &arguments);
    QString remove(const QStringList &arguments);
    QString watch(const QStringList &arguments);
    QString wait(const QStringList &arguments);
    QString help(const QStringList &arguments);
    QString quit(const QStringList &arguments);

    void answerWith(ThingJob *job, Thing *thing);
    void takeOffers(const ThingDiscoveryInfo *info);
    void drawWatch();
    void finish();

    Daemon *const m_daemon;
    Output *const m_output;
    QString m_command; // the pending one; empty for none
    bool m_isOpenEnded = false;
    ThingDescriptors m_offers; // of the last discovery
    QTimer m_waitTimer;        // runs out at the end of "wait" and "watch"
    QTimer m_drawTimer;
};

#endif // COMMANDS_H
