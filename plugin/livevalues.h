// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef LIVEVALUES_H
#define LIVEVALUES_H

#include <QDateTime>
#include <QJsonObject>
#include <QString>

/*! The values in one wallbox record of a values reply. A plain value type. */
struct LiveValues
{
    QString timestampText;    //!< as received; empty if the record has none
    QDateTime timestamp;      //!< null if the text is empty or is not a date and time
    double sessionEnergy = 0; //!< kWh drawn in the running session
    double currentPhaseA = 0; //!< A, for any status; 0 below 1 A
    double currentPhaseB = 0; //!< as phase A
    double currentPhaseC = 0; //!< as phase A
    QString state;            //!< ChargePointStatus of OCPP 1.6; "Unavailable" for any other text
    bool charging = false;    //!< true only for "Charging"
};

/*! Reads one \a record. Never fails: a member that is missing or of another type counts as 0 or as an empty
    text. */
LiveValues mapLiveValues(const QJsonObject &record);

/*! Whether the car is charging in \a state. A wallbox may still measure a current while its car is paused;
    power and currents then count as 0. */
bool isCharging(const QString &state);

/*! The power of the currents in \a values, in W at a fixed 230 V, rounded up to 0.01 W. */
double activePower(const LiveValues &values);

/*! How many of the three currents, in A, are above 0: 1 to 3; also 1 if none is. */
int activePhases(double currentPhaseA, double currentPhaseB, double currentPhaseC);

/*! The energy in kWh to add to the total when the session's energy changes from \a previous to \a current.
    It is 0 if the session's energy falls, because a new session has begun. It is also 0 if \a previous is 0:
    after a restart, the session's energy is not known yet, and counting from 0 would count it again. */
double energyDrawn(double previous, double current);

#endif // LIVEVALUES_H
