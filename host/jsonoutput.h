// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef JSONOUTPUT_H
#define JSONOUTPUT_H

#include "output.h"

#include <QJsonObject>

/*! One JSON object a line, for programs. */
class JsonOutput : public Output
{
public:
    void refused(const QString &command, const QString &reason) override;
    void done(const QString &command) override;
    void help(const QVector<CommandHelp> &commands) override;
    void classes(const ThingClasses &classes) override;
    void discovered(const ThingDiscoveryInfo *info, const ThingClasses &classes) override;
    void jobDone(const QString &command, const ThingJob *job, const Thing *thing) override;
    void things(const Things &things) override;
    void thing(const Thing *thing, const Thing *parent) override;

    void thingAdded(const Thing *thing) override;
    void thingRemoved(const Thing *thing) override;
    void setupFinished(const ThingSetupInfo *info) override;
    void stateChanged(const Thing *thing, const StateType &stateType, const QVariant &value) override;
    /*! Nothing: the events say it all. */
    void watched(const Things &wallboxes) override;
};

#endif // JSONOUTPUT_H
