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
    const qint64 seconds = values.timestamp.toSecsSinceEpoch();
    qCDebug(dcVela) << "Time STR" << seconds;
    // Not isValid(): a local time in the hour that is skipped by summer time is invalid, but must be shown.
    if (!values.timestamp.isNull())
        thing->setStateValue(QStringLiteral("timestamp"), seconds);
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

/*! Reads the thing's state back, because a listener may have changed it since it was written. */
void writePower(Thing *thing, const LiveValues &values)
{
    if (isCharging(thing->stateValue(QStringLiteral("state")).toString())) {
        thing->setStateValue(QStringLiteral("currentPower"), activePower(values));
        thing->setStateValue(QStringLiteral("currentPhaseA"), values.currentPhaseA);
        thing->setStateValue(QStringLiteral("currentPhaseB"), values.currentPhaseB);
        thing->setStateValue(QStringLiteral("currentPhaseC"), values.currentPhaseC);
    } else {
        thing->setStateValue(QStringLiteral("currentPower"), 0);
        thing->setStateValue(QStringLiteral("currentPhaseA"), 0);
        thing->setStateValue(QStringLiteral("currentPhaseB"), 0);
        thing->setStateValue(QStringLiteral("currentPhaseC"), 0);
    }
}

/*! Reads the thing's currents back, for the same reason as writePower() reads its state. */
void writePhaseCount(Thing *thing)
{
    const int phases = activePhases(thing->stateValue(QStringLiteral("currentPhaseA")).toDouble(),
                                    thing->stateValue(QStringLiteral("currentPhaseB")).toDouble(),
                                    thing->stateValue(QStringLiteral("currentPhaseC")).toDouble());
    thing->setStateValue(QStringLiteral("phaseCount"), phases);
}

} // namespace

void writeLiveStates(Thing *thing, const LiveValues &values)
{
    thing->setStateValue(QStringLiteral("connected"), true);
    writeTimestamp(thing, values);
    writeEnergy(thing, values.sessionEnergy);
    thing->setStateValue(QStringLiteral("state"), values.state);
    // True for every wallbox with values, even one that is "Available".
    thing->setStateValue(QStringLiteral("pluggedIn"), true);
    thing->setStateValue(QStringLiteral("charging"), values.charging);
    writePower(thing, values);
    writePhaseCount(thing);
}
