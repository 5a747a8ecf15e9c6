// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef LIVEVALUES_H
#define LIVEVALUES_H

#include <QDateTime>
#include <QJsonObject>
#include <QString>

/*! What one wallbox record of a values reply says. A plain value type. */
struct LiveValues
{
    QString timestampText;    //!< as received; empty when the record has none
    QDateTime timestamp;      //!< null when the text is empty or no date-time
    double sessionEnergy = 0; //!< kWh drawn in the running session
    double currentPhaseA = 0; //!< A, whatever the status; 0 below 1 A
    double currentPhaseB = 0; //!< as phase A
    double currentPhaseC = 0; //!< as phase A
    QString state;            //!< ChargePointStatus of OCPP 1.6; "Unavailable" for any other text
    bool charging = false;    //!< true only for "Charging"
};

/*! Reads one \a record. Never fails: a missing or mistyped member counts as 0 or as an empty text. */
LiveValues mapLiveValues(const QJsonObject &record);

/*! Whether current flows in \a state. A wallbox may go on measuring while its car is paused; power and
    currents then count as 0. */
bool isCharging(const QString &state);

/*! What the currents of \a values amount to, in W at a fixed 230 V, rounded up to 0.01 W. */
double activePower(const LiveValues &values);

/*! How many of the three currents, in A, flow: 1 to 3, and 1 while none does. */
int activePhases(double currentPhaseA, double currentPhaseB, double currentPhaseC);

/*! What the total grows by, in kWh, when the session's energy goes from \a previous to \a current. 0 when
    it falls, since a new session has begun, and when \a previous is 0: after a restart the session's energy
    is unknown, and counting from 0 would count it again. */
double energyDrawn(double previous, double current);

#endif // LIVEVALUES_H
