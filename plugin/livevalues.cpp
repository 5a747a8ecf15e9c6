// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "livevalues.h"

#include <QDateTime>

#include <algorithm>
#include <cmath>

namespace {

constexpr double volt = 230.0;
constexpr double wattHoursPerKiloWattHour = 1000.0;
constexpr double smallestCurrent = 1.0; // A; what a meter shows below is noise

// clang-format off
// ChargePointStatus, OCPP 1.6, in the standard's order.
constexpr struct {
    const char *status;
    bool charging;
} statusTable[] = {
    { "Available",     false },
    { "Preparing",     false },
    { "Charging",      true  },
    { "SuspendedEVSE", false },
    { "SuspendedEV",   false },
    { "Finishing",     false },
    { "Reserved",      false },
    { "Unavailable",   false },
    { "Faulted",       false },
};
// clang-format on

void mapStatus(const QString &status, LiveValues &values)
{
    const auto *const row =
        std::find_if(std::begin(statusTable), std::end(statusTable),
                     [&status](const auto &entry) { return status == QLatin1String(entry.status); });
    const bool known = row != std::end(statusTable);
    values.state = known ? status : QStringLiteral("Unavailable");
    values.charging = known && row->charging;
}

void mapTimestamp(const QString &text, LiveValues &values)
{
    values.timestampText = text;
    // ISO 8601: no zone designator means local time.
    const QDateTime time = QDateTime::fromString(text, Qt::ISODateWithMs);
    if (time.isValid())
        values.timestamp = time.toSecsSinceEpoch();
}

double phaseCurrent(const QJsonValue &value)
{
    const double ampere = value.toDouble();
    return ampere < smallestCurrent ? 0.0 : ampere;
}

void mapCurrents(const QJsonObject &record, LiveValues &values)
{
    values.currentPhaseA = phaseCurrent(record.value(QLatin1String("phase_1")));
    values.currentPhaseB = phaseCurrent(record.value(QLatin1String("phase_2")));
    values.currentPhaseC = phaseCurrent(record.value(QLatin1String("phase_3")));
    const double sum = values.currentPhaseA + values.currentPhaseB + values.currentPhaseC;
    values.currentPower = std::ceil(sum * volt * 100.0) / 100.0;
    const int phases = (values.currentPhaseA > 0) + (values.currentPhaseB > 0) + (values.currentPhaseC > 0);
    values.phaseCount = std::max(phases, 1);
}

} // namespace

LiveValues mapLiveValues(const QJsonObject &record)
{
    LiveValues values;
    mapTimestamp(record.value(QLatin1String("timestamp")).toString(), values);
    values.sessionEnergy = record.value(QLatin1String("meter_value")).toDouble() / wattHoursPerKiloWattHour;
    mapStatus(record.value(QLatin1String("status")).toString(), values);
    // A wallbox may go on measuring while the car is paused; what counts then is its status.
    if (values.charging)
        mapCurrents(record, values);
    return values;
}

double energyDrawn(double previous, double current)
{
    const double difference = current - previous;
    return previous != 0.0 && difference > 0.0 ? difference : 0.0;
}
