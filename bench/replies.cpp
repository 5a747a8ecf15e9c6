// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "replies.h"

#include <QDateTime>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

constexpr int differentPolls = 16;

/*! Currents in tenths of an ampere, since a meter sends few digits; phase 1 carries \a deciampere. */
QJsonObject record(const QString &time, const QString &status, int deciampere, int meterValue)
{
    const auto phase = [deciampere](int less) { return qMax(0, deciampere - less) / 10.; };
    return {
        {"timestamp",   time      },
        {"status",      status    },
        {"phase_1",     phase(0)  },
        {"phase_2",     phase(10) },
        {"phase_3",     phase(20) },
        {"meter_value", meterValue}
    };
}

/*! What wallbox number \a wallbox reports at poll number \a poll. */
QJsonObject record(int wallbox, int poll, bool allCharge)
{
    const QDateTime start(QDate(2026, 5, 1), QTime(12, 0, 0, 500), Qt::UTC);
    const QString time = start.addSecs(poll * 2LL).toString(Qt::ISODateWithMs);
    if (!allCharge && wallbox % 4 == 2)
        return record(time, "SuspendedEV", 0, 15600);
    if (!allCharge && wallbox % 4 == 3)
        return record(time, "Available", 0, 0);
    return record(time, "Charging", 151 + (wallbox + poll) % 8, 3500 + wallbox + poll * 6);
}

} // namespace

QStringList infraIds(int wallboxes)
{
    QStringList ids;
    for (int number = 1; number <= wallboxes; ++number)
        ids.append(QString("EVSE-%1").arg(number, 4, 10, QChar('0')));
    return ids;
}

QList<QByteArray> valuesReplies(int wallboxes, const QString &report)
{
    const QStringList ids = infraIds(wallboxes);
    QList<QByteArray> replies;
    for (int poll = 0; poll < (report == "still" ? 1 : differentPolls); ++poll) {
        QJsonObject records;
        for (int wallbox = 0; wallbox < wallboxes; ++wallbox)
            records.insert(ids.at(wallbox), record(wallbox, poll, report == "charging"));
        const QJsonObject reply{
            {"success", true   },
            {"values",  records}
        };
        replies.append(QJsonDocument(reply).toJson(QJsonDocument::Compact));
    }
    return replies;
}
