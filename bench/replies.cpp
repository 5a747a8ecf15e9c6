// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "replies.h"

#include <QDateTime>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace {

constexpr int differentPolls = 16;

constexpr struct
{
    Yard yard;
    const char *name;
} yardTable[] = {
    {Yard::Still,    "still"   },
    {Yard::Mixed,    "mixed"   },
    {Yard::Charging, "charging"},
};

/*! Currents in tenths of an ampere, since a meter sends few digits; phase 1 carries \a deciampere. */
QJsonObject record(const QString &time, const QString &status, int deciampere, int meterValue)
{
    const auto phase = [deciampere](int less) { return qMax(0, deciampere - less) / 10.; };
    return {
        {QStringLiteral("timestamp"),   time      },
        {QStringLiteral("status"),      status    },
        {QStringLiteral("phase_1"),     phase(0)  },
        {QStringLiteral("phase_2"),     phase(10) },
        {QStringLiteral("phase_3"),     phase(20) },
        {QStringLiteral("meter_value"), meterValue}
    };
}

/*! What wallbox number \a wallbox reports at poll number \a poll. */
QJsonObject record(int wallbox, int poll, Yard yard)
{
    const QDateTime start(QDate(2026, 5, 1), QTime(12, 0, 0, 500), Qt::UTC);
    const QString time = start.addSecs(poll * 2LL).toString(Qt::ISODateWithMs);
    if (yard != Yard::Charging && wallbox % 4 == 2)
        return record(time, QStringLiteral("SuspendedEV"), 0, 15600);
    if (yard != Yard::Charging && wallbox % 4 == 3)
        return record(time, QStringLiteral("Available"), 0, 0);
    return record(time, QStringLiteral("Charging"), 151 + (wallbox + poll) % 8, 3500 + wallbox + poll * 6);
}

QByteArray compact(const QJsonObject &object)
{
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

} // namespace

std::optional<Yard> yardNamed(const QString &name)
{
    const auto *const row =
        std::find_if(std::begin(yardTable), std::end(yardTable),
                     [&name](const auto &entry) { return name == QLatin1String(entry.name); });
    return row == std::end(yardTable) ? std::nullopt : std::optional(row->yard);
}

QString nameOf(Yard yard)
{
    const auto *const row = std::find_if(std::begin(yardTable), std::end(yardTable),
                                         [yard](const auto &entry) { return entry.yard == yard; });
    return QLatin1String(row->name);
}

QStringList infraIds(int wallboxes)
{
    QStringList ids;
    for (int number = 1; number <= wallboxes; ++number)
        ids.append(QStringLiteral("EVSE-%1").arg(number, 4, 10, QLatin1Char('0')));
    return ids;
}

QByteArray groupInfoReply(int wallboxes)
{
    QJsonObject evseIds;
    const QStringList ids = infraIds(wallboxes);
    for (const QString &id : ids)
        evseIds.insert(id,
                       QJsonObject{
                           {QStringLiteral("max_charging_current"), 32}
        });
    return compact({
        {QStringLiteral("evse_ids"), evseIds}
    });
}

QVector<QByteArray> valuesReplies(int wallboxes, Yard yard)
{
    const QStringList ids = infraIds(wallboxes);
    QVector<QByteArray> replies;
    for (int poll = 0; poll < (yard == Yard::Still ? 1 : differentPolls); ++poll) {
        QJsonObject records;
        for (int wallbox = 0; wallbox < wallboxes; ++wallbox)
            records.insert(ids.at(wallbox), record(wallbox, poll, yard));
        replies.append(compact({
            {QStringLiteral("success"), true   },
            {QStringLiteral("values"),  records}
        }));
    }
    return replies;
}
