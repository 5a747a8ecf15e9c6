// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef MESSAGES_H
#define MESSAGES_H

#include <integrations/thingsetupinfo.h>

#include <QJsonObject>
#include <QStringList>
#include <QVector>

/*! What the host prints: the answer to a command, or an event. */
struct Message
{
    QJsonObject json;    //!< a line with --json; an event has a member "event"
    QStringList lines;   //!< the same for people; empty if people need none
    bool isLast = false; //!< the host ends
};

// What the daemon reports.

Message thingAddedEvent(const Thing *thing);
Message thingRemovedEvent(const Thing *thing);
Message setupFinishedEvent(const ThingSetupInfo *info);
/*! Has no lines for measured values, which change all the time: "watch" shows those. */
Message stateChangedEvent(const Thing *thing, const StateTypeId &stateTypeId, const QVariant &value);

// Texts for people.

/*! A line for each of \a rows, their columns aligned, two blanks between them. */
QStringList aligned(const QVector<QStringList> &rows);

QString setupText(const Thing *thing);
/*! The most important states, in one line; the first one for an unknown kind of thing. */
QString mainStates(const Thing *thing);
/*! All about \a thing; \a parent may be null. */
QStringList description(const Thing *thing, const Thing *parent);
/*! What went wrong, in one sentence; empty for a job without error. */
QString errorText(const ThingJob *job);

#endif // MESSAGES_H
