// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "livevalues.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double volt = 230.0;
constexpr double wattHoursPerKiloWattHour = 1000.0;
constexpr double smallestCurrent = 1.0; // A; lower readings of a meter are noise

// ChargePointStatus, OCPP 1.6, in the standard's order.
constexpr struct
{
    const char *status;
    bool charging;
} statusTable[] = {
    {"Available",     false},
    {"Preparing",     false},
    {"Charging",      true },
    {"SuspendedEVSE", false},
    {"SuspendedEV",   false},
    {"Finishing",     false},
    {"Reserved",      false},
    {"Unavailable",   false},
    {"Faulted",       false},
};

void mapStatus(const QString &status, LiveValues &values)
{
    const auto *const row =
        std::find_if(std::begin(statusTable), std::end(statusTable),
                     [&status](const auto &entry) { return status == QLatin1String(entry.status); });
    const bool known = row != std::end(statusTable);
    values.state = known ? status : QStringLiteral("Unavailable");
    values.charging = known && row->charging;
}

double phaseCurrent(const QJsonValue &value)
{
    const double ampere = value.toDouble();
    return ampere < smallestCurrent ? 0.0 : ampere;
}

} // namespace

LiveValues mapLiveValues(const QJsonObject &record)
{
    LiveValues values;
    values.timestampText = record.value(QLatin1String("timestamp")).toString();
    // ISO 8601: a time without a zone designator is local time.
    values.timestamp = QDateTime::fromString(values.timestampText, Qt::ISODateWithMs);
    values.sessionEnergy = record.value(QLatin1String("meter_value")).toDouble() / wattHoursPerKiloWattHour;
    values.currentPhaseA = phaseCurrent(record.value(QLatin1String("phase_1")));
    values.currentPhaseB = phaseCurrent(record.value(QLatin1String("phase_2")));
    values.currentPhaseC = phaseCurrent(record.value(QLatin1String("phase_3")));
    mapStatus(record.value(QLatin1String("status")).toString(), values);
    return values;
}

bool isCharging(const QString &state)
{
    return state == QLatin1String("Charging");
}

double activePower(const LiveValues &values)
{
    const double ampere = values.currentPhaseA + values.currentPhaseB + values.currentPhaseC;
    return std::ceil(ampere * volt * 100.0) / 100.0;
}

int activePhases(double currentPhaseA, double currentPhaseB, double currentPhaseC)
{
    const int phases = (currentPhaseA > 0.0) + (currentPhaseB > 0.0) + (currentPhaseC > 0.0);
    return std::max(phases, 1);
}

double energyDrawn(double previous, double current)
{
    const double difference = current - previous;
    return previous != 0.0 && difference > 0.0 ? difference : 0.0;
}
