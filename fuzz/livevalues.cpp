// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

// Replies to the polls of two wallboxes, through client, plugin and mapping up to the states.

#include "answeredsite.h"
#include "fuzzing.h"

#include <QDateTime>
#include <QJsonDocument>

#include <algorithm>
#include <cmath>

namespace {

/*! The values of a thing's states, by name. */
using Values = QVariantMap;

Values valuesOf(const Thing *thing)
{
    Values values;
    const States states = thing->states();
    for (int i = 0; i < states.size(); ++i)
        values.insert(thing->thingClass().stateTypes.at(i).name, states.at(i).value());
    return values;
}

void checkStatus(const Values &values, const QString &status)
{
    static const QStringList statuses{"Available",   "Preparing", "Charging",    "Finishing", "SuspendedEVSE",
                                      "SuspendedEV", "Reserved",  "Unavailable", "Faulted"};
    const QString expected = statuses.contains(status) ? status : "Unavailable";
    require(values["state"].toString() == expected, "the state is the record's status, if OCPP has it");
    const bool charging = values["charging"].toBool();
    require(charging == (status == "Charging"), "only \"Charging\" is charging");
    require(charging || values["currentPower"].toDouble() == 0.0, "power flows only while charging");
    require(values["pluggedIn"].toBool(), "a wallbox that reports counts as plugged in");
}

void checkCurrents(const Values &values, const QJsonObject &record)
{
    double sum = 0;
    int phases = 0;
    for (const auto &[phase, member] : {
             std::pair{"currentPhaseA", "phase_1"},
             std::pair{"currentPhaseB", "phase_2"},
             std::pair{"currentPhaseC", "phase_3"},
    }) {
        const double ampere = values[phase].toDouble();
        const double measured = record.value(member).toDouble();
        const bool isShown = values["charging"].toBool() && measured >= 1.0;
        require(ampere == (isShown ? measured : 0.0), "a current is the record's, if it is at least 1 A");
        phases += ampere > 0 ? 1 : 0;
        sum += ampere;
    }
    const double power = values["currentPower"].toDouble();
    require(power >= 0.0, "power is a number and not negative");
    // Only currents whose power in hundredths of a watt is beyond all numbers give an infinite one.
    require(std::isfinite(power) || sum > 1e300, "power is finite");
    require(!(sum < 1e6) || std::abs(power - sum * 230.0) <= 0.0101,
            "power is that of the currents at 230 V");
    require(values["phaseCount"].toInt() == std::max(phases, 1), "phases that carry current are counted");
}

/*! The time stamp is what Qt reads from \a text, and does not change if Qt cannot read that. */
void checkTimestamp(const Values &before, const Values &after, const QString &text)
{
    const QDateTime time = QDateTime::fromString(text, Qt::ISODateWithMs);
    const QVariant expected = !time.isNull() ? QVariant(time.toSecsSinceEpoch()) : before["timestamp"];
    require(after["timestamp"].toInt() == expected.toInt(), "the time stamp is the record's");
}

/*! \a record is undefined if the reply has none of the wallbox. */
void check(const Values &before, Values after, const QJsonValue &record)
{
    require(after["connected"].toBool() == !record.isUndefined(), "a wallbox with a record is connected");
    require(after["totalEnergyConsumed"].toDouble() >= before["totalEnergyConsumed"].toDouble(),
            "the total does not fall");
    if (after["connected"].toBool()) {
        const QJsonObject members = record.toObject();
        checkStatus(after, members.value("status").toString());
        checkCurrents(after, members);
        checkTimestamp(before, after, members.value("timestamp").toString());
        require(after["sessionEnergy"].toDouble() == members.value("meter_value").toDouble() / 1000.0,
                "the energy of the session is the meter's");
    } else {
        after["connected"] = before["connected"];
        require(after == before, "an absent wallbox keeps its other states");
    }
}

/*! Puts the wallboxes in the middle of a session, whatever state they were in. */
void rewind(AnsweredSite &site)
{
    site.poll(R"({"success":true,"values":{
        "EVSE-01":{"timestamp":"2024-05-01T12:00:00Z","status":"Charging","phase_1":6,"meter_value":1500},
        "EVSE-02":{"timestamp":"2024-05-01T12:00:00Z","status":"SuspendedEV","meter_value":700}}})");
    const Things wallboxes = site.wallboxes();
    for (Thing *wallbox : wallboxes)
        wallbox->setStateValue("totalEnergyConsumed", 0.);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static auto *site = new AnsweredSite; // exists until the end of the process
    const Things wallboxes = site->wallboxes();
    for (Thing *wallbox : wallboxes)
        wallbox->disconnect(); // else the daemon would store each change
    rewind(*site);
    const QList<QByteArray> replies = inputReplies(data, size);
    for (const QByteArray &reply : replies) {
        const QList<Values> before{valuesOf(wallboxes.at(0)), valuesOf(wallboxes.at(1))};
        site->poll(reply);
        require(site->wallboxes() == wallboxes, "values neither add nor remove wallboxes");
        const QJsonObject values = QJsonDocument::fromJson(reply).object().value("values").toObject();
        QStringList infraIds = values.keys();
        if (infraIds.removeDuplicates() > 0)
            continue; // two records for one wallbox, one after the other
        for (int wallbox = 0; wallbox < before.size(); ++wallbox) {
            // By position: Qt lists a name without its leading byte order mark, but finds it only with the mark.
            const int index = infraIds.indexOf(wallboxes.at(wallbox)->name());
            const QJsonValue record =
                index < 0 ? QJsonValue(QJsonValue::Undefined) : (values.constBegin() + index).value();
            check(before.at(wallbox), valuesOf(wallboxes.at(wallbox)), record);
        }
    }
    return 0;
}
