// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "polledplugin.h"

#include "soak.h"
#include "waiting.h"

#include <QDateTime>
#include <QJsonDocument>
#include <QTimer>

#include <iterator>
#include <utility>

using Backend = ScriptedBackend;

namespace {

constexpr int wallboxCount = 32;
constexpr int connections = 6; // that Qt opens to one backend

// Polls under each are answered badly, until the next is to be answered normally.
const std::pair<const char *, void (*)(Backend &)> faults[] = {
    {"500",                      [](Backend &backend) { backend.answer(Backend::Values, 500); }},
    {"503",                      [](Backend &backend) { backend.answer(Backend::Values, 503); }},
    {"closed without an answer", [](Backend &backend) { backend.hangUp(Backend::Values); }     },
    {"closed mid-reply",
     [](Backend &backend) {
         backend.hangUp(Backend::Values, "HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\n{");
     }                                                                                         },
    {"reset",                    [](Backend &backend) { backend.reset(Backend::Values); }      },
    {"all connections closed",   [](Backend &backend) { backend.closeConnections(); }          },
};

/*! What the meter of wallbox \a number reads in Wh at \a time in s. A session takes 40 s, in the last 8 of which
    the car is full. Before two of three sessions the wallbox is free for 3 s. */
int meterAt(int number, qint64 time)
{
    const qint64 session = (time + 13 * number) / 40;
    const int age = int((time + 13 * number) % 40);
    return session % 3 != 0 && age < 3 ? 0 : 2 + qMin(age, 32) * (3 + int(session % 7));
}

QJsonObject recordAt(int number, qint64 time)
{
    const int meter = meterAt(number, time);
    return {
        {"timestamp", QDateTime::fromSecsSinceEpoch(time, Qt::UTC).toString(Qt::ISODateWithMs)},
        {"status",           meter % 5 == 0 ? "SuspendedEV" : "Charging"                                     },
        {"phase_1",           6 + meter % 10},
        {"phase_2",           meter % 3                                     },
        {"phase_3",           0.5},
        {"meter_value",           meter                                 }
    };
}

QJsonObject limit(double ampere)
{
    return {
        {"value", ampere},
        {"unit",  "A"   }
    };
}

} // namespace

Census PolledPlugin::live(int polls, bool removedByHand)
{
    m_site.backend.setWallbox(infraIdOf(1), 32);
    const QString error = m_site.addGateway();
    require(error.isEmpty(), "The gateway does not come back: " + error);
    require(m_site.backend.requests().constFirst().operation == Backend::GroupInfo,
            "A request was sent after the last thing had gone.");
    setUp(1);
    pollFor(polls / 2);
    poll(connections); // uses all of them
    const Census census = Census::takeSettled();
    setUp(wallboxCount / 2);
    setUp(1); // the others come back as new things
    pollFor(polls / 2);
    if (removedByHand)
        m_site.remove(m_meters.take(1).thing);
    pollFor(10);
    if (!removedByHand)
        setUp(wallboxCount + 1);
    leave();
    if (removedByHand) { // only now the classes of the wallboxes are free again
        m_site.restart();
        m_limits = {};
        m_lastAction.reset();
    }
    return census;
}

/*! The group now consists of the wallboxes from \a firstNumber on, and the gateway is set up. */
void PolledPlugin::setUp(int firstNumber)
{
    m_site.backend.wallboxes = {};
    for (int number = firstNumber; number <= wallboxCount; ++number)
        m_site.backend.setWallbox(infraIdOf(number), 32);
    require(Site::result(m_site.setup(m_site.gateway())) == "NoError", "The gateway's set-up fails.");
    require(m_site.infraIds() == m_site.backend.wallboxes.keys(), "The wallboxes are not the group's.");
    m_site.chargeLimitTimers().constFirst()->stop(); // renewLimits() fires it
    m_site.backend.forgetRequests();
    const QMap<int, Meter> before = std::exchange(m_meters, {});
    for (int number = firstNumber; number <= wallboxCount; ++number) {
        Thing *thing = m_site.wallbox(infraIdOf(number));
        m_meters.insert(number, before[number].thing == thing ? before[number] : Meter{thing});
    }
}

/*! The gateway is removed with its wallboxes while a poll is under way, and nothing is left. */
void PolledPlugin::leave()
{
    m_site.backend.hold(Backend::Values);
    m_site.tick();
    require(waitFor([this] { return !m_site.backend.requests(Backend::Values).isEmpty(); }),
            "A poll does not arrive.");
    m_site.remove(m_site.gateway());
    m_meters.clear();
    m_site.backend.releaseAll(Backend::Values);
    require(m_site.daemon->configuredThings().isEmpty(), "Things are left.");
    require(waitFor([this] { return m_site.backend.openConnections() == 0; }), "A connection is left.");
    m_site.backend.forgetRequests(); // the next life sees what is sent from now on
    m_site.log.clear();
    for (int i = 0; i < 30; ++i)
        m_site.tick();
    require(m_site.pluginTimers().isEmpty() && m_site.chargeLimitTimers().isEmpty(), "A timer is left.");
    require(m_site.log.lines().isEmpty(), "The plugin works on: " + m_site.log.lines().join(' '));
}

void PolledPlugin::pollFor(int polls)
{
    for (int i = 0; i < polls; ++i) {
        if (chance(20))
            act();
        if (chance(10))
            renewLimits();
        if (chance(2))
            moveClock(40);
        if (chance(1))
            moveClock(chance(50) ? 3600 : -3600);
        if (m_faultyPolls == 0 && chance(2))
            strike();
        poll(m_faultyPolls == 0 && chance(3) ? 2 + int(m_random() % (connections - 1)) : 1);
    }
}

void PolledPlugin::strike()
{
    const auto &[name, begin] = faults[m_random() % std::size(faults)];
    begin(m_site.backend);
    ++counts[QString("faults: ") + name];
    m_faultyPolls = 1 + int(m_random() % 5);
    m_disturbed = true;
}

void PolledPlugin::act()
{
    const auto meter = m_meters.cbegin() + int(m_random() % unsigned(m_meters.size()));
    const QString infraId = infraIdOf(meter.key());
    const bool setsPower = chance(40);
    const QString state = setsPower ? "power" : "maxChargingCurrent";
    const QVariant value = setsPower ? QVariant(chance(50)) : QVariant(6 + int(m_random() % 27));
    const bool changes = meter->thing->stateValue(state) != value;
    if (changes && !(setsPower && value.toBool())) // the next renewal brings the current back
        m_limits.insert(infraId, limit(setsPower ? 0 : value.toDouble()));
    m_lastAction = m_clock;
    require(Site::result(m_site.set(infraId, state, value)) == "NoError", "An action fails.");
    ++counts["actions"];
}

void PolledPlugin::renewLimits()
{
    m_site.fireChargeLimitTimer();
    const bool isSilent = !m_lastAction || m_clock - *m_lastAction > 30;
    ++counts[isSilent ? "renewals due in silence, and not sent" : "renewals of all limits"];
    for (auto it = m_meters.cbegin(); it != m_meters.cend() && !isSilent; ++it) {
        const double most = it->thing->stateValue("maxChargingCurrent").toDouble();
        m_limits.insert(infraIdOf(it.key()), limit(it->thing->stateValue("power").toBool() ? most : 0));
    }
}

void PolledPlugin::moveClock(int seconds)
{
    Site::moveClock(seconds);
    m_clock += seconds;
}

/*! Polls once, or \a ticks times before the first reply, and checks what has come of it. */
void PolledPlugin::poll(int ticks)
{
    m_site.log.clear();
    const QJsonObject limits = std::exchange(m_limits, {});
    if (ticks == 1)
        pollOnce();
    else
        pollOutOfOrder(ticks);
    const auto limitsHaveEnded = [this, &limits] {
        return limits.isEmpty() || !m_site.backend.limits().isEmpty()
            || (m_disturbed && m_site.log.count("warning: setProfileChargePowerLimit()") > 0);
    };
    require(waitFor(limitsHaveEnded), "Limits do not arrive.");
    require(m_disturbed || m_site.log.warnings().isEmpty(), m_site.log.lines().join(' '));
    checkLimits(limits);
    counts["polls"] += ticks;
    if (m_faultyPolls > 0 && --m_faultyPolls == 0)
        m_site.backend.answerNormally(Backend::Values);
    m_disturbed = m_faultyPolls > 0;
}

void PolledPlugin::pollOnce()
{
    pass();
    const auto hasFailed = [this] { return m_site.log.count("warning: getEvseValues()") > 0; };
    require(waitFor([&] { return shows(m_time) || hasFailed(); }), "A poll is not answered.");
    if (shows(m_time))
        arrive(m_time);
    else
        ++counts["failed polls"];
}

/*! The backend makes each reply at once and sends it later, in any order. */
void PolledPlugin::pollOutOfOrder(int ticks)
{
    m_site.backend.hold(Backend::Values);
    QVector<std::pair<qint64, QByteArray>> replies;
    while (replies.size() < ticks) {
        pass();
        const QJsonObject body{
            {"success", true                 },
            {"values",  m_site.backend.values}
        };
        replies.append({m_time, QJsonDocument(body).toJson()});
        const auto count = [this] { return m_site.backend.requests(Backend::Values).size(); };
        require(waitFor([&] { return count() == replies.size(); }), "A poll does not arrive.");
    }
    m_site.backend.answerNormally(Backend::Values);
    for (qint64 latest = 0; !replies.isEmpty();) {
        const int index = int(m_random() % unsigned(replies.size()));
        const auto [time, body] = replies.takeAt(index);
        require(m_site.backend.release(Backend::Values, body, index), "The backend cannot answer.");
        require(waitFor([this, time = time] { return shows(time); }), "A reply brings no values.");
        arrive(time);
        counts["replies after that of a later poll"] += time < latest;
        latest = qMax(latest, time);
    }
}

/*! Two seconds pass, in which energy flows, and then the plugin polls. */
void PolledPlugin::pass()
{
    ++m_time;
    m_site.backend.values = {};
    for (auto it = m_meters.cbegin(); it != m_meters.cend(); ++it) {
        const int before = meterAt(it.key(), m_time - 1);
        counts["kWh drawn"] += before > 0 ? qMax(0, meterAt(it.key(), m_time) - before) / 1000. : 0;
        m_site.backend.values.insert(infraIdOf(it.key()), recordAt(it.key(), m_time));
    }
    moveClock(2);
    m_site.tick();
}

/*! Whether the wallbox that comes last in a reply shows the values of that \a time. */
bool PolledPlugin::shows(qint64 time) const
{
    return m_meters.last().thing->stateValue("timestamp").toLongLong() == time;
}

/*! The readings of \a time have arrived. Each adds the energy by which it is above the one before, unless that
    was 0. So where replies overtake each other, some energy counts twice. */
void PolledPlugin::arrive(qint64 time)
{
    for (auto it = m_meters.begin(); it != m_meters.end(); ++it) {
        const double energy = meterAt(it.key(), time) / 1000.;
        const double growth = it->energy != 0 ? qMax(0., energy - it->energy) : 0;
        it->total += growth;
        it->energy = energy;
        counts["kWh counted in totals"] += growth;
        // Exactly: the same additions in the same order.
        require(it->thing->stateValue("totalEnergyConsumed").toDouble() == it->total,
                "The total of " + it->thing->name() + " is not what its readings make.");
    }
}

/*! Checks the limits that have arrived since the last poll. */
void PolledPlugin::checkLimits(const QJsonObject &expected)
{
    const QList<QJsonObject> received = m_site.backend.limits();
    m_site.backend.forgetRequests();
    counts["requests with limits"] += received.size();
    counts["requests with limits lost to a fault"] += !expected.isEmpty() && received.isEmpty();
    // Qt sends a request again when its connection ends before any answer; at times it gives up at once.
    const int most = m_disturbed ? received.size() : 1;
    const int wanted = expected.isEmpty() ? 0 : most;
    require(received.count(expected) == wanted && received.size() == wanted,
            QString("%1 requests with limits arrived, but not as they should.").arg(received.size()));
}
