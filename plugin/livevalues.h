// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef LIVEVALUES_H
#define LIVEVALUES_H

#include <QJsonObject>
#include <QString>

#include <optional>

/*! What one wallbox record of a values reply says about its thing. Plain values, no owner. */
struct LiveValues
{
    QString timestampText;           //!< as received; empty when the record has none
    std::optional<qint64> timestamp; //!< s since the Unix epoch; none when the text is empty or unreadable
    double sessionEnergy = 0;        //!< kWh drawn in the running session
    QString state;                   //!< ChargePointStatus of OCPP 1.6; "Unavailable" for any other text
    bool charging = false;           //!< true for "Charging" alone
    double currentPower = 0;         //!< W at a fixed 230 V, rounded up to 0.01; 0 unless charging
    double currentPhaseA = 0;        //!< A; 0 below 1 A and unless charging
    double currentPhaseB = 0;        //!< as phase A
    double currentPhaseC = 0;        //!< as phase A
    int phaseCount = 1;              //!< phases that carry current, 1 to 3; 1 while none does
};

/*! Reads one \a record. Cannot fail: a missing or mistyped member counts as 0 or as empty text. */
LiveValues mapLiveValues(const QJsonObject &record);

/*! What the total grows by, in kWh, when the session's energy goes from \a previous to \a current. 0 when
    it falls, since a new session has begun, and when \a previous is 0: after a restart the session's energy
    is unknown, and counting from 0 would count it again. */
double energyDrawn(double previous, double current);

#endif // LIVEVALUES_H
