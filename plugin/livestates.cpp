// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "livestates.h"

#include "livevalues.h"
#include "loggingcategory.h"

#include <integrations/thing.h>

namespace {

void writeTimestamp(Thing *thing, const LiveValues &values)
{
    if (values.timestampText.isEmpty())
        return;
    qCDebug(dcVela) << "Time STR" << values.timestampText;
    if (!values.timestamp)
        return; // unreadable: the last readable time is worth more than none
    qCDebug(dcVela) << "Time STR" << *values.timestamp;
    thing->setStateValue(QStringLiteral("timestamp"), *values.timestamp);
}

void writeEnergy(Thing *thing, double sessionEnergy)
{
    const double previous = thing->stateValue(QStringLiteral("sessionEnergy")).toDouble();
    thing->setStateValue(QStringLiteral("sessionEnergy"), sessionEnergy);
    const double drawn = energyDrawn(previous, sessionEnergy);
    if (drawn > 0.0) {
        const double total = thing->stateValue(QStringLiteral("totalEnergyConsumed")).toDouble();
        thing->setStateValue(QStringLiteral("totalEnergyConsumed"), drawn + total);
    }
}

} // namespace

void writeLiveStates(Thing *thing, const LiveValues &values)
{
    thing->setStateValue(QStringLiteral("connected"), true);
    writeTimestamp(thing, values);
    writeEnergy(thing, values.sessionEnergy);
    thing->setStateValue(QStringLiteral("state"), values.state);
    // No status means unplugged: every wallbox that reports counts as plugged in.
    thing->setStateValue(QStringLiteral("pluggedIn"), true);
    thing->setStateValue(QStringLiteral("charging"), values.charging);
    thing->setStateValue(QStringLiteral("currentPower"), values.currentPower);
    thing->setStateValue(QStringLiteral("currentPhaseA"), values.currentPhaseA);
    thing->setStateValue(QStringLiteral("currentPhaseB"), values.currentPhaseB);
    thing->setStateValue(QStringLiteral("currentPhaseC"), values.currentPhaseC);
    thing->setStateValue(QStringLiteral("phaseCount"), values.phaseCount);
}
