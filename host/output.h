// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef OUTPUT_H
#define OUTPUT_H

#include <integrations/thingdiscoveryinfo.h>
#include <integrations/thingsetupinfo.h>

#include <QVector>

struct CommandHelp
{
    QString usage;
    QString summary;
};

/*! How the host speaks: one answer to each command, and events as they happen. */
class Output
{
public:
    virtual ~Output() = default;

    /*! The next command is awaited, or has been read. */
    virtual void awaitCommand() { }
    virtual void commandRead() { }

    // Answers. The first argument is the command's name where several commands are answered alike.
    virtual void refused(const QString &command, const QString &reason) = 0;
    virtual void done(const QString &command) = 0;
    virtual void help(const QVector<CommandHelp> &commands) = 0;
    virtual void classes(const ThingClasses &classes) = 0;
    virtual void discovered(const ThingDiscoveryInfo *info, const ThingClasses &classes) = 0;
    /*! \a thing is the one that the job was for, or null where the request was refused. */
    virtual void jobDone(const QString &command, const ThingJob *job, const Thing *thing) = 0;
    virtual void things(const Things &things) = 0;
    virtual void thing(const Thing *thing, const Thing *parent) = 0;

    // Events
    virtual void thingAdded(const Thing *thing) = 0;
    virtual void thingRemoved(const Thing *thing) = 0;
    virtual void setupFinished(const ThingSetupInfo *info) = 0;
    virtual void stateChanged(const Thing *thing, const StateType &stateType, const QVariant &value) = 0;

    /*! The picture that "watch" keeps showing until an answer ends it. */
    virtual void watched(const Things &wallboxes) = 0;
};

/*! The name of an enumerator, as "ThingErrorNoError". */
QString errorName(Thing::ThingError error);
QString setupStatusName(Thing::ThingSetupStatus status);
/*! What went wrong, in one sentence; empty for a job without error. */
QString errorText(const ThingJob *job);

#endif // OUTPUT_H
