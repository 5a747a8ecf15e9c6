// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "polledplugin.h"

#include "soak.h"
#include "waiting.h"
#include "wallboxbounds.h"

#include <QDateTime>
#include <QJsonDocument>

#include <iterator>
#include <utility>

using Backend = ScriptedBackend;

namespace {

constexpr qint64 never = 1714564800; // s since the last action if there was none: since the epoch

// Each makes the polls fail until the backend answers normally again, but the last only closes idle connections.
void (*const faults[])(Backend &) = {
    [](Backend &backend) { backend.answer(Backend::Values, 503); },
    [](Backend &backend) { backend.hangUp(Backend::Values); },
    [](Backend &backend) {
        backend.hangUp(Backend::Values, "HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\n{");
    },
    [](Backend &backend) { backend.reset(Backend::Values); },
    [](Backend &backend) { backend.closeConnections(); },
};

/*! What the meter of \a wallbox reads in Wh at \a time in s. A session takes 40 s, in the last 8 of which the
    car is full. Before two of three sessions the wallbox is free for 3 s. */
int meterAt(const Thing *wallbox, qint64 time)
{
    const qint64 number = infraIdOf(wallbox).midRef(5).toInt(); // of "EVSE-01"
    const qint64 session = (time + 13 * number) / 40;
    const int age = int((time + 13 * number) % 40);
    return session % 3 != 0 && age < 3 ? 0 : 2 + qMin(age, 32) * (3 + int(session % 7));
}

QJsonObject limit(double ampere)
{
    return {
        {"value", ampere},
        {"unit",  "A"   }
    };
}

} // namespace

void PolledPlugin::run(int polls)
{
    m_silence = never;
    m_site.backend.setWallbox(numberedId(1), 32);
    const QString error = m_site.addGateway();
    require(error.isEmpty(), "The gateway cannot be added: " + error);
    setUp(1);
    pollFor(polls / 2);
    poll(connectionsOfQt); // uses all of them
    working.append(Census::takeSettled());
    setUp(wallboxCount / 2);
    setUp(1); // the others come back as new things
    pollFor(polls / 2);
    m_site.remove(m_site.wallbox(numberedId(1)));
    pollFor(10);
    leave();
    resting.append(Census::takeSettled());
    m_site.restart(); // only now the classes of the wallboxes are free again
}

/*! The group now consists of the wallboxes from \a firstNumber on, and the gateway is set up. */
void PolledPlugin::setUp(int firstNumber)
{
    m_site.backend.wallboxes = {};
    for (int number = firstNumber; number <= wallboxCount; ++number)
        m_site.backend.setWallbox(numberedId(number), 32);
    require(Site::result(m_site.setup(m_site.gateway())) == "NoError", "The gateway's set-up fails.");
    require(m_site.infraIds() == m_site.backend.wallboxes.keys(), "The wallboxes are not the group's.");
    m_site.chargeLimitTimers().constFirst()->stop(); // renewLimits() fires it
    m_site.backend.forgetRequests();
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
    m_limits = {};
    m_site.backend.releaseAll(Backend::Values);
    require(m_site.daemon->configuredThings().isEmpty(), "Things are left.");
    require(waitFor([this] { return m_site.backend.openConnections() == 0; }), "A connection is left.");
    require(m_site.pluginTimers().isEmpty() && m_site.chargeLimitTimers().isEmpty(), "A timer is left.");
}

void PolledPlugin::pollFor(int polls)
{
    for (int i = 0; i < polls || m_faultyPolls > 0; ++i) {
        if (chance(20))
            act();
        if (chance(10))
            renewLimits();
        if (chance(2))
            moveClock(40);
        if (chance(1))
            moveClock(chance(50) ? 3600 : -3600);
        if (m_faultyPolls == 0 && chance(2))
            beginFault();
        poll(chance(3) ? 2 + int(m_random() % (connectionsOfQt - 1)) : 1);
    }
}

void PolledPlugin::beginFault()
{
    faults[m_random() % std::size(faults)](m_site.backend);
    m_faultyPolls = 1 + int(m_random() % 5);
    ++counts["faults"];
}

void PolledPlugin::act()
{
    const Things wallboxes = m_site.wallboxes();
    const Thing *wallbox = wallboxes.at(int(m_random() % unsigned(wallboxes.size())));
    const QString infraId = infraIdOf(wallbox);
    const bool setsPower = chance(40);
    const QString state = setsPower ? "power" : "maxChargingCurrent";
    const QVariant value = setsPower ? QVariant(chance(50)) : QVariant(6 + int(m_random() % 27));
    const bool changes = wallbox->stateValue(state) != value;
    if (changes && !(setsPower && value.toBool())) // the next renewal brings the current back
        m_limits.insert(infraId, limit(setsPower ? 0 : value.toDouble()));
    m_silence = 0;
    require(Site::result(m_site.set(infraId, state, value)) == "NoError", "An action fails.");
    ++counts["actions"];
}

void PolledPlugin::renewLimits()
{
    m_site.fireChargeLimitTimer();
    const bool isSilent = m_silence > 30;
    ++counts[isSilent ? "renewals due in silence, and not sent" : "renewals of all limits"];
    const Things wallboxes = isSilent ? Things() : m_site.wallboxes();
    for (const Thing *wallbox : wallboxes) {
        const double most = wallbox->stateValue("maxChargingCurrent").toDouble();
        m_limits.insert(infraIdOf(wallbox), limit(wallbox->stateValue("power").toBool() ? most : 0));
    }
}

void PolledPlugin::moveClock(int seconds)
{
    Site::moveClock(seconds);
    m_silence += seconds;
}

/*! Polls once, or \a ticks times before the first reply unless there is a fault, and checks the result. */
void PolledPlugin::poll(int ticks)
{
    m_site.log.clear();
    const QJsonObject limits = std::exchange(m_limits, {});
    if (m_faultyPolls > 0)
        pollUnderFault();
    else
        pollInAnyOrder(ticks);
    checkLimits(limits);
    require(m_faultyPolls > 0 || m_site.log.count("warning: ") == 0, m_site.log.lines().join(' '));
    if (m_faultyPolls > 0 && --m_faultyPolls == 0)
        m_site.backend.answerNormally(Backend::Values);
}

void PolledPlugin::pollUnderFault()
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
void PolledPlugin::pollInAnyOrder(int ticks)
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
    ++counts["polls"];
    m_site.backend.values = {};
    const Things wallboxes = m_site.wallboxes();
    for (const Thing *wallbox : wallboxes) {
        const int meter = meterAt(wallbox, m_time);
        const QString time = QDateTime::fromSecsSinceEpoch(m_time, Qt::UTC).toString(Qt::ISODate);
        const char *const status = meter % 5 == 0 ? "SuspendedEV" : "Charging";
        m_site.backend.values[infraIdOf(wallbox)] = QJsonObject{
            {"timestamp",   time          },
            {"status",      status        },
            {"phase_1",     6 + meter % 10},
            {"meter_value", meter         }
        };
    }
    moveClock(2);
    m_site.tick();
}

/*! Whether the wallbox that comes last in a reply shows the values of that \a time. */
bool PolledPlugin::shows(qint64 time) const
{
    return m_site.state(numberedId(wallboxCount), "timestamp").toLongLong() == time;
}

/*! The readings of \a time have arrived. Each adds what it exceeds the one before by, unless that was 0. So if
    replies overtake each other, some energy counts twice. */
void PolledPlugin::arrive(qint64 time)
{
    const Things wallboxes = m_site.wallboxes();
    for (const Thing *wallbox : wallboxes) {
        Meter &meter = m_meters[wallbox->id()];
        const double energy = meterAt(wallbox, time) / 1000.;
        const double growth = meter.energy != 0 ? qMax(0., energy - meter.energy) : 0;
        meter.total += growth;
        meter.energy = energy;
        counts["kWh counted in totals"] += growth;
        // Exactly: the same additions in the same order.
        require(wallbox->stateValue("totalEnergyConsumed").toDouble() == meter.total,
                "The total of " + wallbox->name() + " is not the sum of its readings.");
    }
}

/*! Waits for the \a expected limits, and checks what has arrived since the last poll. Under a fault, Qt sends
    a request again when its connection ends before any answer; at times it gives up at once. */
void PolledPlugin::checkLimits(const QJsonObject &expected)
{
    const bool isDisturbed = m_faultyPolls > 0;
    const auto haveEnded = [&] {
        return expected.isEmpty() || !m_site.backend.limits().isEmpty()
            || (isDisturbed && m_site.log.count("warning: setProfileChargePowerLimit()") > 0);
    };
    require(waitFor(haveEnded), "Limits do not arrive.");
    const QList<QJsonObject> received = m_site.backend.limits();
    m_site.backend.forgetRequests();
    counts["requests with limits"] += received.size();
    counts["requests with limits lost to a fault"] += !expected.isEmpty() && received.isEmpty();
    require(isDisturbed || received.size() == (expected.isEmpty() ? 0 : 1),
            "Limits arrived at a wrong time.");
    require(received.count(expected) == received.size(), "Other limits arrived than expected.");
}
