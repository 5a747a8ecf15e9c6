// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef HUMANOUTPUT_H
#define HUMANOUTPUT_H

#include "output.h"

/*! Text for people, with a prompt and a table redrawn in place where they sit at a terminal. */
class HumanOutput : public Output
{
public:
    HumanOutput();

    void awaitCommand() override;
    void commandRead() override;

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
    /*! Left out for measured values, which change all the time: "watch" shows those. */
    void stateChanged(const Thing *thing, const StateType &stateType, const QVariant &value) override;

    void watched(const Things &wallboxes) override;

private:
    void write(const QStringList &lines);
    void event(const QString &text);

    const bool m_isTerminal; // standard output
    const bool m_hasPrompt;  // and somebody types
    bool m_atPrompt = false; // the prompt is the last that has been written
    bool m_watching = false;
    int m_drawnLines = 0; // of the table, above the cursor
};

#endif // HUMANOUTPUT_H
