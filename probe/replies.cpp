// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "replies.h"

#include "livevalues.h"
#include "printable.h"
#include "transport.h"
#include "wallboxbounds.h"

#include <QJsonArray>

#include <algorithm>
#include <cmath>
#include <optional>

namespace {

// Wallboxes report about once a minute, idle ones less often. A wrong clock is usually wrong by more.
constexpr qint64 largestClockDifference = 300; // s

bool isAbsent(const QJsonValue &value)
{
    return value.isUndefined() || value.isNull();
}

/*! How \a value reads in a sentence that goes "it is …": as JSON. */
QString inWords(const QJsonValue &value)
{
    const QByteArray array = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
    const QLatin1String kind(value.isString() ? "the string " : "");
    return value.isUndefined() ? QStringLiteral("missing")
                               : kind + QString::fromUtf8(array.mid(1, array.size() - 2));
}

/*! The member \a key of the reply, which has to be an object of wallboxes. Nothing if the plugin cannot read
    it: then a problem says why, with \a code if the rest of the reply is in order. */
std::optional<QJsonObject> wallboxesIn(Step &step, const QString &key, const char *code)
{
    const QJsonValue member = step.json.object().value(key);
    if (member.isObject())
        return member.toObject();
    if (step.reply.isEmpty())
        step.problem("not-json", "the reply has no body; the plugin reads JSON");
    else if (step.json.isNull())
        step.problem("not-json", "the reply is not JSON: %1 at byte %2",
                     {step.notJson.errorString(), QString::number(step.notJson.offset)});
    else if (!step.json.isObject())
        step.problem("not-json", "the reply is a JSON array; the plugin reads an object");
    else
        step.problem(code, "\"%2\" is %1; the plugin reads an object of wallboxes by id",
                     {inWords(member), key});
    return {};
}

void judgeMaxCurrent(Step &step, const QJsonValue &value)
{
    const int ampere = value.toInt();
    if (ampere >= maxChargingCurrentMinValue && ampere <= maxChargingCurrentMaxValue)
        return;
    step.problem("unusable-max-current",
                 "\"max_charging_current\" is %1; the plugin takes whole amperes from %2 to %3",
                 {inWords(value), QString::number(maxChargingCurrentMinValue),
                  QString::number(maxChargingCurrentMaxValue)});
    if (ampere == 0 && value != QJsonValue(0))
        step.extend(" and would read 0");
}

void judgeTimestamp(Step &step, const QJsonValue &timestamp, const QDateTime &time, const QDateTime &now)
{
    if (isAbsent(timestamp) || timestamp == QJsonValue(QString()))
        return step.warning("no-timestamp", "\"timestamp\" is missing; nymea shows no new time");
    if (time.isNull())
        return step.problem("unreadable-timestamp",
                            "\"timestamp\" is %1; the plugin reads an ISO 8601 string, such as %2",
                            {inWords(timestamp), now.toUTC().toString(Qt::ISODate)});
    if (time.timeSpec() == Qt::LocalTime)
        step.warning("no-timezone",
                     "\"timestamp\" is %1, without a time zone; the plugin reads it as local time of its "
                     "machine (append Z for UTC)",
                     {inWords(timestamp)});
    const qint64 difference = time.secsTo(now);
    if (std::abs(difference) > largestClockDifference)
        step.warning(
            "clock-difference",
            "\"timestamp\" is %1 s %2 this machine's clock: either the values are old or a clock is "
            "wrong",
            {QString::number(std::abs(difference)), QLatin1String(difference > 0 ? "behind" : "ahead of")});
}

void judgeMeasurements(Step &step, const QJsonObject &record)
{
    const QStringList phases{QStringLiteral("phase_1"), QStringLiteral("phase_2"), QStringLiteral("phase_3")};
    const QString meter = QStringLiteral("meter_value");
    const QStringList numbers = QStringList(meter) + phases;
    for (const QString &key : numbers) {
        const QJsonValue value = record.value(key);
        if (!value.isDouble() && !isAbsent(value))
            step.problem("not-a-number", "\"%2\" is %1; the plugin reads a number and would take 0",
                         {inWords(value), key});
    }
    if (isAbsent(record.value(meter)))
        step.warning("no-meter-value", "\"meter_value\" is missing; the plugin takes 0 Wh");
    // One or two of them may be missing, because not every wallbox has three phases.
    if (std::all_of(phases.begin(), phases.end(),
                    [&record](const QString &phase) { return isAbsent(record.value(phase)); }))
        step.warning("no-currents",
                     "\"phase_1\" to \"phase_3\" are all missing; the plugin takes 0 A, and 0 W even while "
                     "charging");
}

void judgeRecord(Step &step, const QJsonValue &value, const LiveValues &values, const QDateTime &now)
{
    if (value.isUndefined())
        return step.problem("no-values",
                            "listed in the group, but without values; the plugin shows it as not connected");
    if (!value.isObject())
        return step.problem("no-record", "its values are %1; the plugin reads an object", {inWords(value)});
    const QJsonObject record = value.toObject();
    const QJsonValue status = record.value(QLatin1String("status"));
    if (status.toString() != values.state)
        step.problem(
            "unknown-status",
            "\"status\" is %1, which is not a connector status of OCPP 1.6 in its exact spelling; the "
            "plugin shows \"Unavailable\" and no current",
            {inWords(status)});
    judgeTimestamp(step, record.value(QLatin1String("timestamp")), values.timestamp, now);
    judgeMeasurements(step, record);
}

QString shown(const QString &wallbox, const LiveValues &values)
{
    const double power = values.charging ? activePower(values) : 0;
    return QStringLiteral("%1: %2, %3 W, %4 kWh")
        .arg(wallbox, values.state, numberText(power), numberText(values.sessionEnergy));
}

} // namespace

QMap<QString, int> readGroupInfo(Step &step)
{
    const std::optional<QJsonObject> member = wallboxesIn(step, QStringLiteral("evse_ids"), "no-evse-ids");
    const QJsonObject evseIds = member.value_or(QJsonObject());
    if (member && evseIds.isEmpty())
        step.problem("no-wallboxes",
                     "the group has no wallbox; a discovery treats this as an unreachable backend");
    if (evseIds.isEmpty())
        step.extend(groupLossWarning);
    if (evseIds.size() > wallboxCount)
        step.problem(
            "too-many-wallboxes",
            "the group lists %1 wallboxes; it should not list more than %2. At first the rest get no "
            "thing, and the probe does not ask for their values either. But each restart of nymea creates "
            "up to %2 more, and several then share a thing class",
            {QString::number(evseIds.size()), QString::number(wallboxCount)});
    QMap<QString, int> maxCurrents;
    for (auto it = evseIds.begin(); it != evseIds.end(); ++it) {
        const QJsonValue maxCurrent = it.value().toObject().value(QLatin1String("max_charging_current"));
        maxCurrents.insert(it.key(), maxCurrent.toInt());
        step.detail(it.key() + QStringLiteral(": up to %1 A").arg(maxCurrent.toInt()));
        step.wallbox = it.key();
        judgeMaxCurrent(step, maxCurrent);
    }
    return maxCurrents;
}

void readValues(Step &step, const QStringList &asked, const QDateTime &now)
{
    const std::optional<QJsonObject> records =
        wallboxesIn(step, QStringLiteral("values"), "no-values-object");
    if (!records)
        return;
    const QJsonValue success = step.json.object().value(QLatin1String("success"));
    if (!success.toBool())
        step.warning("no-success", "\"success\" is %1, not true; the plugin uses the values nevertheless",
                     {inWords(success)});
    QStringList wallboxes = asked + records->keys();
    wallboxes.removeDuplicates();
    for (const QString &wallbox : qAsConst(wallboxes)) {
        const QJsonValue record = records->value(wallbox);
        const LiveValues values = mapLiveValues(record.toObject());
        if (!record.isUndefined())
            step.detail(shown(wallbox, values));
        step.wallbox = wallbox;
        if (asked.contains(wallbox))
            judgeRecord(step, record, values, now);
        else
            step.warning("not-asked-for", "not asked for; the plugin ignores it");
    }
}
