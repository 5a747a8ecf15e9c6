// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "valuesreply.h"

#include "jsonreply.h"
#include "livevalues.h"

#include <cmath>

namespace {

// Wallboxes report every minute or so at best, and an idle one less often; clocks are wrong by hours.
constexpr qint64 largestClockDifference = 300; // s

const QLatin1String valuesKey("values");
const QLatin1String meterKey("meter_value");
const QLatin1String phaseKeys[] = {QLatin1String("phase_1"), QLatin1String("phase_2"),
                                   QLatin1String("phase_3")};

bool isAbsent(const QJsonValue &value)
{
    return value.isUndefined() || value.isNull();
}

Findings judgeStatus(const QJsonObject &record)
{
    const QJsonValue value = record.value(QLatin1String("status"));
    if (value.isString() && mapLiveValues(record).state == value.toString())
        return {};
    return {problem("unknown-status",
                    QStringLiteral("\"status\" is %1, which is no connector status of OCPP 1.6 in its exact "
                                   "spelling; the plugin shows \"Unavailable\" and no current"))
                .quoting(inWords(value))};
}

Findings judgeClock(const QDateTime &time, const QDateTime &now)
{
    const qint64 difference = time.secsTo(now);
    if (std::abs(difference) <= largestClockDifference)
        return {};
    const QLatin1String direction(difference > 0 ? "behind" : "ahead of");
    return {remark("clock-difference",
                   QStringLiteral("\"timestamp\" is %1 s %2 this machine's clock: either the values are old "
                                  "or a clock is wrong")
                       .arg(std::abs(difference))
                       .arg(direction))};
}

Findings judgeTimestamp(const QJsonObject &record, const QDateTime &now)
{
    const QJsonValue value = record.value(QLatin1String("timestamp"));
    if (isAbsent(value) || value == QJsonValue(QString()))
        return {remark("no-timestamp", QStringLiteral("\"timestamp\" is missing; nymea shows no new time"))};
    const QDateTime time = mapLiveValues(record).timestamp;
    if (time.isNull())
        return {problem("unreadable-timestamp",
                        QLatin1String("\"timestamp\" is %1; the plugin reads an ISO 8601 text, as ")
                            + now.toUTC().toString(Qt::ISODate))
                    .quoting(inWords(value))};

    Findings findings;
    if (time.timeSpec() == Qt::LocalTime)
        findings.append(remark("no-timezone",
                               QStringLiteral("\"timestamp\" is %1, without a time zone; the plugin reads it "
                                              "as local time of its machine (append Z for UTC)"))
                            .quoting(inWords(value)));
    return findings + judgeClock(time, now);
}

Findings judgeNumber(const QJsonObject &record, QLatin1String key)
{
    const QJsonValue value = record.value(key);
    if (value.isDouble() || isAbsent(value))
        return {};
    return {problem("not-a-number",
                    QLatin1Char('"') + key
                        + QLatin1String("\" is %1; the plugin reads a number and would take 0"))
                .quoting(inWords(value))};
}

Findings judgeMeasurements(const QJsonObject &record)
{
    Findings findings = judgeNumber(record, meterKey);
    if (isAbsent(record.value(meterKey)))
        findings.append(
            remark("no-meter-value", QStringLiteral("\"meter_value\" is missing; the plugin takes 0 Wh")));
    bool hasCurrent = false;
    for (const QLatin1String key : phaseKeys) {
        findings += judgeNumber(record, key);
        hasCurrent = hasCurrent || !isAbsent(record.value(key));
    }
    // One or two alone are as they should be: not every wallbox has three phases.
    if (!hasCurrent)
        findings.append(remark("no-currents",
                               QStringLiteral("none of \"phase_1\" to \"phase_3\" is there; the plugin takes "
                                              "0 A, and 0 W even while charging")));
    return findings;
}

Findings judgeRecord(const QJsonValue &value, const QDateTime &now)
{
    if (value.isUndefined())
        return {problem("no-values",
                        QStringLiteral("listed in the group, but without values; the plugin shows it as not "
                                       "connected"))};
    if (!value.isObject())
        return {problem("no-record", QStringLiteral("its values are %1; the plugin reads an object"))
                    .quoting(inWords(value))};
    const QJsonObject record = value.toObject();
    return judgeStatus(record) + judgeTimestamp(record, now) + judgeMeasurements(record);
}

Findings about(const QString &wallbox, Findings findings)
{
    for (Finding &finding : findings)
        finding.wallbox = wallbox;
    return findings;
}

} // namespace

Findings judgeValues(const QByteArray &body, const QStringList &asked, const QDateTime &now)
{
    Findings findings = judgeMember(body, valuesKey, "no-values-object");
    if (hasProblem(findings))
        return findings;
    const QJsonObject reply = objectIn(body);
    const QJsonValue success = reply.value(QLatin1String("success"));
    if (!success.toBool())
        findings.append(remark("no-success",
                               QStringLiteral("\"success\" is %1, not true; the plugin takes the values all "
                                              "the same"))
                            .quoting(inWords(success)));
    const QJsonObject values = reply.value(valuesKey).toObject();
    for (const QString &wallbox : asked)
        findings += about(wallbox, judgeRecord(values.value(wallbox), now));
    for (auto it = values.begin(); it != values.end(); ++it) {
        if (!asked.contains(it.key()))
            findings.append(remark("not-asked-for", QStringLiteral("not asked for; the plugin ignores it"))
                                .about(it.key()));
    }
    return findings;
}

QStringList describeValues(const QByteArray &body)
{
    QStringList lines;
    const QJsonObject values = objectIn(body).value(valuesKey).toObject();
    for (auto it = values.begin(); it != values.end(); ++it) {
        const LiveValues shown = mapLiveValues(it.value().toObject());
        lines.append(QStringLiteral("%1: %2, %3 W, %4 kWh")
                         .arg(it.key(), shown.state, QString::number(shown.charging ? activePower(shown) : 0),
                              QString::number(shown.sessionEnergy)));
    }
    return lines;
}
