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

/*! Whether \a text is written like \a form, in which 0 stands for any digit and all else for itself. */
bool hasForm(const QString &text, QLatin1String form)
{
    return std::equal(text.cbegin(), text.cend(), form.cbegin(), form.cend(), [](QChar c, char f) {
        return f == '0' ? c >= QLatin1Char('0') && c <= QLatin1Char('9') : c == QLatin1Char(f);
    });
}

int number(const QString &text, int position, int digits)
{
    int result = 0;
    for (int i = position; i < position + digits; ++i)
        result = 10 * result + text.at(i).unicode() - '0';
    return result;
}

/*! Reads UTC in the two forms that backends send, with and without milliseconds; invalid for all others.
    QDateTime::fromString() reads them too, but at six times the cost, which was an eighth of a poll. */
QDateTime utcTime(const QString &text)
{
    const bool hasMilliseconds = hasForm(text, QLatin1String("0000-00-00T00:00:00.000Z"));
    if (!hasMilliseconds && !hasForm(text, QLatin1String("0000-00-00T00:00:00Z")))
        return {};
    const QDate date(number(text, 0, 4), number(text, 5, 2), number(text, 8, 2));
    const QTime time(number(text, 11, 2), number(text, 14, 2), number(text, 17, 2),
                     hasMilliseconds ? number(text, 20, 3) : 0);
    return date.isValid() && time.isValid() ? QDateTime(date, time, Qt::UTC) : QDateTime();
}

void mapTimestamp(const QString &text, LiveValues &values)
{
    values.timestampText = text;
    QDateTime time = utcTime(text);
    if (!time.isValid())
        time = QDateTime::fromString(text, Qt::ISODateWithMs); // without a zone designator this is local time
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
