// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

// Replies to the polls of two wallboxes, through client, plugin and mapping up to the states.

#include "fuzzing.h"
#include "pluginrig.h"

#include <QDateTime>
#include <QJsonDocument>
#include <QSet>

#include <array>
#include <cmath>

namespace {

/*! The values of a thing's states, by index of their types. */
using Values = QVariantList;

Values valuesOf(const Thing *thing)
{
    Values values;
    const States states = thing->states();
    for (const State &state : states)
        values.append(state.value());
    return values;
}

/*! Where the wallboxes' states are among the values; all wallbox classes have the same. */
int indexOf(const char *name)
{
    const ThingClass wallbox = pluginMetadata().thingClasses().findByName(QStringLiteral("wallbox1"));
    for (int i = 0; i < wallbox.stateTypes.size(); ++i) {
        if (wallbox.stateTypes.at(i).name == QLatin1String(name))
            return i;
    }
    require(false, "a state that is checked exists");
    return -1;
}

const struct
{
    int connected = indexOf("connected");
    int pluggedIn = indexOf("pluggedIn");
    int charging = indexOf("charging");
    int state = indexOf("state");
    int power = indexOf("currentPower");
    int total = indexOf("totalEnergyConsumed");
    int timestamp = indexOf("timestamp");
    int phaseCount = indexOf("phaseCount");
    std::array<int, 3> currents{indexOf("currentPhaseA"), indexOf("currentPhaseB"), indexOf("currentPhaseC")};
} at;

void checkStatus(const Values &values)
{
    static const QSet<QString> statuses{
        QStringLiteral("Available"), QStringLiteral("Preparing"),     QStringLiteral("Charging"),
        QStringLiteral("Finishing"), QStringLiteral("SuspendedEVSE"), QStringLiteral("SuspendedEV"),
        QStringLiteral("Reserved"),  QStringLiteral("Unavailable"),   QStringLiteral("Faulted"),
    };
    const QString status = values.at(at.state).toString();
    require(statuses.contains(status), "the state is a status of OCPP");
    const bool charging = values.at(at.charging).toBool();
    require(charging == (status == QLatin1String("Charging")), "only \"Charging\" is charging");
    require(charging || values.at(at.power).toDouble() == 0.0, "power flows only while charging");
    require(values.at(at.pluggedIn).toBool(), "a wallbox that reports counts as plugged in");
}

void checkCurrents(const Values &values)
{
    double sum = 0;
    int phases = 0;
    for (const int current : at.currents) {
        const double ampere = values.at(current).toDouble();
        require(ampere == 0.0 || ampere >= 1.0, "a current is none or at least 1 A");
        phases += ampere > 0 ? 1 : 0;
        sum += ampere;
    }
    const double power = values.at(at.power).toDouble();
    require(power >= 0.0, "power is a number and not negative");
    // Only currents whose power in hundredths of a watt is beyond all numbers give an infinite one.
    require(std::isfinite(power) || sum > 1e300, "power is finite");
    require(!(sum < 1e6) || std::abs(power - sum * 230.0) <= 0.0101, "power is the currents' at 230 V");
    require(values.at(at.phaseCount).toInt() == std::max(phases, 1), "phases that carry current are counted");
}

/*! The time stamp is what Qt reads from \a text, and stays where Qt reads nothing. */
void checkTimestamp(const Values &before, const Values &after, const QString &text)
{
    const QDateTime time = QDateTime::fromString(text, Qt::ISODateWithMs);
    const QVariant expected = !time.isNull() ? QVariant(time.toSecsSinceEpoch()) : before.at(at.timestamp);
    require(after.at(at.timestamp).toInt() == expected.toInt(), "the time stamp is the record's");
}

/*! The record of a wallbox as Qt reads names: without a byte order mark in front, which a look-up wants. */
QJsonObject recordOf(const QString &infraId, const QJsonObject &values)
{
    const int index = values.keys().indexOf(infraId);
    return index < 0 ? QJsonObject() : (values.constBegin() + index).value().toObject();
}

void check(const Values &before, Values after, const QJsonObject &record)
{
    require(after.at(at.total).toDouble() >= before.at(at.total).toDouble(), "the total does not fall");
    if (after.at(at.connected).toBool()) {
        checkStatus(after);
        checkCurrents(after);
        checkTimestamp(before, after, record.value(QLatin1String("timestamp")).toString());
    } else {
        after[at.connected] = before.at(at.connected);
        require(after == before, "an absent wallbox keeps its other states");
    }
}

PluginRig *newRig()
{
    auto *rig = new PluginRig;
    rig->begin();
    rig->setupGateway(
        R"({"evse_ids":{"EVSE-01":{"max_charging_current":16},"EVSE-02":{"max_charging_current":32}}})");
    require(rig->wallboxes().size() == 2, "the group has two wallboxes");
    return rig;
}

/*! Two wallboxes in the middle of a session. */
void rewind(PluginRig *rig)
{
    static const QVector<Values> start = [rig] {
        rig->poll(R"({"success":true,"values":{
            "EVSE-01":{"timestamp":"2024-05-01T12:00:00Z","status":"Charging","phase_1":6,"meter_value":1500},
            "EVSE-02":{"timestamp":"2024-05-01T12:00:00Z","status":"SuspendedEV","meter_value":700}}})");
        return QVector<Values>{valuesOf(rig->wallboxes().at(0)), valuesOf(rig->wallboxes().at(1))};
    }();
    for (int wallbox = 0; wallbox < start.size(); ++wallbox) {
        const States states = rig->wallboxes().at(wallbox)->states();
        for (int i = 0; i < states.size(); ++i)
            rig->wallboxes().at(wallbox)->setStateValue(states.at(i).stateTypeId(), start.at(wallbox).at(i));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static PluginRig *rig = newRig(); // lives to the end of the process
    rewind(rig);
    const Things wallboxes = rig->wallboxes();
    const QList<QByteArray> replies = inputReplies(data, size);
    for (const QByteArray &reply : replies) {
        const Values first = valuesOf(wallboxes.at(0));
        const Values second = valuesOf(wallboxes.at(1));
        rig->poll(reply);
        require(rig->wallboxes() == wallboxes, "values neither add nor remove wallboxes");
        const QJsonObject values =
            QJsonDocument::fromJson(reply).object().value(QLatin1String("values")).toObject();
        QStringList infraIds = values.keys();
        if (infraIds.removeDuplicates() > 0)
            continue; // two records for one wallbox, one after the other
        check(first, valuesOf(wallboxes.at(0)), recordOf(QStringLiteral("EVSE-01"), values));
        check(second, valuesOf(wallboxes.at(1)), recordOf(QStringLiteral("EVSE-02"), values));
    }
    return 0;
}
