// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "soak.h"

#include "waiting.h"

#include <QJsonDocument>
#include <QLoggingCategory>
#include <QTimer>

using Backend = ScriptedBackend;

namespace {

constexpr int wallboxes = 32;
constexpr int tenths = 10;
constexpr int livesPerTenth = 4;
constexpr int connections = 6; // that Qt opens to a host

// Debug lines are not made for 200,000 polls; they are where answers are counted.
void logEachAnswer(bool on)
{
    QLoggingCategory::setFilterRules(on ? "Vela.debug=true" : "Vela.debug=false");
}

/*! Polls under each are answered badly, until the next is to be answered normally. */
const struct
{
    const char *name;
    void (*begin)(Backend &backend);
} faults[] = {
    {"500",                      [](Backend &backend) { backend.answer(Backend::Values, 500); }},
    {"503",                      [](Backend &backend) { backend.answer(Backend::Values, 503); }},
    {"closed without an answer", [](Backend &backend) { backend.hangUp(Backend::Values, ""); } },
    {"closed mid-reply",
     [](Backend &backend) {
         backend.hangUp(Backend::Values, "HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\n{");
     }                                                                                         },
    {"reset",                    [](Backend &backend) { backend.reset(Backend::Values); }      },
    {"all connections closed",   [](Backend &backend) { backend.closeConnections(); }          },
};

} // namespace

Soak::Soak(int polls, unsigned seed)
    : m_polls(polls)
    , m_random(seed)
    , m_yard(&m_site.backend, wallboxes, &m_random)
{
    logEachAnswer(false);
    watchDaemon();
}

void Soak::watchDaemon()
{
    QObject::connect(m_site.daemon.get(), &Daemon::thingAdded, &m_context, [this](Thing *thing) {
        const QString infraId = thing->paramValue("infraID").toString();
        if (!infraId.isEmpty())
            m_wallboxes.insert(infraId, thing);
    });
    QObject::connect(m_site.daemon.get(), &Daemon::thingRemoved, &m_context, [this](Thing *thing) {
        const QString infraId = thing->paramValue("infraID").toString();
        if (m_wallboxes.remove(infraId) == 0)
            return;
        m_totals.remove(infraId);
        m_yard.forget(infraId);
    });
}

QString Soak::run()
{
    QString error;
    for (int tenth = 0; tenth < tenths && error.isEmpty(); ++tenth) {
        Census working;
        for (int life = 0; life < livesPerTenth && error.isEmpty(); ++life)
            error = live(m_polls / tenths / livesPerTenth, life % 2 == 0, &working);
        m_figures.working.append(working);
        m_figures.resting.append(Census::takeSettled());
    }
    return error;
}

QString Soak::live(int polls, bool yardCloses, Census *working)
{
    ++m_figures.lives;
    QString error = enter();
    if (error.isEmpty())
        error = pollFor(polls / 2);
    if (error.isEmpty())
        error = poll(connections); // all of them, for the census
    m_site.log.clear();
    *working = Census::takeSettled();
    if (error.isEmpty())
        error = regroup();
    if (error.isEmpty())
        error = pollFor(polls / 2);
    if (error.isEmpty())
        error = yardCloses ? leaveClosedYard() : leave();
    return error.isEmpty() ? lastThingHasGone() : error;
}

QString Soak::enter()
{
    const QString error = m_site.addGateway();
    if (!error.isEmpty())
        return "The gateway does not come back: " + error;
    if (m_site.backend.requests().constFirst().operation != Backend::GroupInfo)
        return "A request was sent after the last thing had gone";
    if (m_wallboxes.size() != wallboxes)
        return QString("There are %1 wallboxes").arg(m_wallboxes.size());
    m_site.backend.forgetRequests();
    m_site.chargeLimitTimers().constFirst()->stop(); // fires by hand
    return QString();
}

/*! One wallbox leaves the group, and comes back as a new thing. */
QString Soak::regroup()
{
    const QString moving = m_wallboxes.firstKey();
    m_yard.unlist(moving);
    const QString error = setUpAgain();
    m_yard.list(moving);
    return error.isEmpty() ? setUpAgain() : error;
}

QString Soak::setUpAgain()
{
    if (Site::result(m_site.setup(m_site.gateway())) != "NoError")
        return "The gateway cannot be set up again";
    m_site.chargeLimitTimers().constFirst()->stop();
    return m_site.infraIds() == m_site.backend.wallboxes.keys() ? QString()
                                                                : "The wallboxes are not the group's";
}

/*! One wallbox is removed, then the gateway with all others, while requests are under way; the daemon starts
    anew. */
QString Soak::leave()
{
    m_site.remove(m_wallboxes.last());
    QString error = pollFor(10);
    if (!error.isEmpty())
        return error;
    m_site.backend.hold(Backend::Values);
    m_site.tick();
    if (!waitFor([this] { return !m_site.backend.requests(Backend::Values).isEmpty(); }))
        return "A request did not arrive";
    m_site.remove(m_site.gateway());
    return QString();
}

/*! The group becomes empty, so that all wallboxes go by themselves; then the gateway is removed. */
QString Soak::leaveClosedYard()
{
    m_site.backend.wallboxes = {};
    m_site.backend.values = {};
    QString error = setUpAgain();
    m_yard.listAll();
    m_site.remove(m_site.gateway());
    return error;
}

QString Soak::lastThingHasGone()
{
    m_site.backend.releaseAll(Backend::Values);
    if (!m_site.daemon->configuredThings().isEmpty() || !m_wallboxes.isEmpty())
        return "Things are left";
    if (!waitFor([this] { return m_site.backend.openConnections() == 0; }))
        return "A connection is left";
    m_site.backend.forgetRequests(); // what comes from here on is seen when the gateway comes back
    m_site.log.clear();
    for (int i = 0; i < 30; ++i)
        m_site.tick();
    if (!m_site.pluginTimers().isEmpty() || !m_site.chargeLimitTimers().isEmpty())
        return "A timer is left";
    if (!m_site.log.lines().isEmpty())
        return "Something happens after the last thing has gone: " + m_site.log.lines().constFirst();
    if (m_figures.lives % 2 == 0) {
        m_site.restart(); // the class of a wallbox that was removed by hand is free again
        m_limits = {};
        watchDaemon();
    }
    return QString();
}

QString Soak::pollFor(int polls)
{
    QString error;
    for (int i = 0; i < polls && error.isEmpty(); ++i) {
        happen();
        if (m_faultyPolls == 0 && chance(2))
            error = poll(2 + int(m_random() % (connections - 1)), false);
        else
            error = poll(m_faultyPolls == 0 && chance(1) ? 2 + int(m_random() % 12) : 1);
    }
    return error;
}

/*! What may happen between two polls. */
void Soak::happen()
{
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
}

void Soak::act()
{
    Thing *thing = (m_wallboxes.begin() + int(m_random() % unsigned(m_wallboxes.size()))).value();
    const bool power = chance(40);
    const QString state = power ? "power" : "maxChargingCurrent";
    const QVariant value = power ? QVariant(chance(50)) : QVariant(6 + int(m_random() % 27));
    m_limits.act(thing, state, value, m_now);
    m_actions.append(m_site.set(thing->paramValue("infraID").toString(), state, value));
    ++m_figures.actions;
}

void Soak::renewLimits()
{
    m_site.fireChargeLimitTimer();
    ++(m_limits.renew(m_wallboxes, m_now) ? m_figures.renewals : m_figures.silentRenewals);
}

void Soak::moveClock(int seconds)
{
    Site::moveClock(seconds);
    m_now += seconds;
}

void Soak::strike()
{
    const auto &fault = faults[m_random() % std::size(faults)];
    fault.begin(m_site.backend);
    ++m_figures.faults[fault.name];
    m_faultyPolls = 1 + int(m_random() % 5);
    m_disturbed = true;
}

/*! Polls as often as \a ticks; if more than once, the backend is silent until the last, and then answers with
    the values of that moment, or, if not \a inOrder, with those of each request and in any order. */
QString Soak::poll(int ticks, bool inOrder)
{
    m_yard.pass();
    m_site.log.clear();
    const QJsonObject limits = m_limits.take();
    const auto limited = [this, &limits] {
        return limits.isEmpty() || !m_site.backend.requests(Backend::Limits).isEmpty()
            || (m_disturbed && m_site.log.count("warning: setProfileChargePowerLimit()") > 0);
    };
    const bool answered = !inOrder ? pollOutOfOrder(ticks) : ticks == 1 ? pollOnce() : pollInSilence(ticks);
    if (!answered || !waitFor(limited))
        return QString("%1 polls with %2 limits are not answered; under %3 faulty polls; the log: %4")
            .arg(ticks)
            .arg(limits.size())
            .arg(m_faultyPolls)
            .arg(m_site.log.lines().join("; "));
    m_figures.polls += ticks;
    if (!m_disturbed && !m_site.log.warnings().isEmpty())
        return m_site.log.warnings().constFirst();

    if (inOrder)
        notePresentValues();
    QString error = judgeLimits(limits) + judgeTotals();
    if (m_faultyPolls > 0 && --m_faultyPolls == 0)
        m_site.backend.answerNormally(Backend::Values);
    m_disturbed = m_faultyPolls > 0;
    return error;
}

bool Soak::pollOnce()
{
    moveClock(2);
    m_site.tick();
    return waitFor(
        [this] { return shows(m_yard.timestamp()) || m_site.log.count("warning: getEvseValues()") > 0; });
}

bool Soak::pollInSilence(int ticks)
{
    ++m_figures.faults["no answer, until all are answered"];
    logEachAnswer(true);
    m_site.backend.hold(Backend::Values);
    for (int i = 0; i < ticks; ++i) {
        moveClock(2);
        m_site.tick();
    }
    const int arriving = qMin(ticks, connections); // the others wait in memory
    const bool arrived =
        waitFor([this, arriving] { return m_site.backend.requests(Backend::Values).size() == arriving; });
    m_site.backend.releaseAll(Backend::Values);
    const bool answered = waitFor([this, ticks] { return m_site.log.count("debug: values ") == ticks; });
    logEachAnswer(false);
    return arrived && answered;
}

/*! The backend makes each reply at once, and delays it; so the reply of a later poll may arrive first. */
bool Soak::pollOutOfOrder(int ticks)
{
    ++m_figures.faults["replies out of order"];
    m_site.backend.hold(Backend::Values);
    QVector<Reply> replies;
    for (int i = 1; i <= ticks; ++i) {
        if (i > 1)
            m_yard.pass();
        moveClock(2);
        m_site.tick();
        if (!waitFor([this, i] { return m_site.backend.requests(Backend::Values).size() == i; }))
            return false;
        const QJsonObject body{
            {"success", true                 },
            {"values",  m_site.backend.values}
        };
        replies.append({QJsonDocument(body).toJson(), m_yard.meters(), m_yard.timestamp()});
        for (auto it = m_wallboxes.cbegin(); it != m_wallboxes.cend(); ++it)
            m_yard.asked(it.key());
    }
    m_site.backend.answerNormally(Backend::Values);
    return releaseInRandomOrder(replies);
}

/*! Releases what the backend holds, the oldest of which is answered by the first of \a replies. */
bool Soak::releaseInRandomOrder(QVector<Reply> replies)
{
    qint64 latest = 0;
    while (!replies.isEmpty()) {
        const int index = int(m_random() % unsigned(replies.size()));
        const Reply reply = replies.takeAt(index);
        if (!m_site.backend.release(Backend::Values, reply.body, index)
            || !waitFor([this, &reply] { return shows(reply.timestamp); }))
            return false;
        for (auto it = m_wallboxes.cbegin(); it != m_wallboxes.cend(); ++it)
            m_yard.arrived(it.key(), reply.meters.value(it.key()));
        m_figures.overtaken += reply.timestamp < latest;
        latest = qMax(latest, reply.timestamp);
    }
    return true;
}

/*! Whether the last wallbox of a reply shows the values of that time. */
bool Soak::shows(qint64 timestamp) const
{
    return m_wallboxes.last()->stateValue("timestamp").toLongLong() == timestamp;
}

void Soak::notePresentValues()
{
    if (!shows(m_yard.timestamp())) {
        ++m_figures.failedPolls;
        return;
    }
    const QMap<QString, int> meters = m_yard.meters();
    for (auto it = m_wallboxes.cbegin(); it != m_wallboxes.cend(); ++it) {
        m_yard.asked(it.key());
        m_yard.arrived(it.key(), meters.value(it.key()));
    }
}

/*! What is wrong with the limits that have arrived since the last poll, and with the actions. */
QString Soak::judgeLimits(const QJsonObject &expected)
{
    const QList<QJsonObject> received = m_site.backend.limits();
    m_site.backend.forgetRequests();
    m_figures.limits += received.size();
    m_figures.lostLimits += !expected.isEmpty() && received.isEmpty();
    // Qt sends a request again when its connection ends before any answer; at times it gives up at once.
    const int most = m_disturbed ? received.size() : 1;
    const int wanted = expected.isEmpty() ? 0 : most;
    if (received.count(expected) != wanted || received.size() != wanted)
        return QString("%1 limits requests arrived, which are not what was asked for. ").arg(received.size());
    for (const Job &action : qAsConst(m_actions)) {
        if (action->text != "NoError")
            return "An action ended with " + action->text;
    }
    m_actions.clear();
    return QString();
}

QString Soak::judgeTotals()
{
    for (auto it = m_wallboxes.cbegin(); it != m_wallboxes.cend(); ++it) {
        const double total = it.value()->stateValue("totalEnergyConsumed").toDouble();
        if (total < m_totals.value(it.key()))
            return QString("The total of %1 fell to %2. ").arg(it.key()).arg(total);
        const double expected = m_yard.total(it.key());
        if (total != expected) // exactly: the same additions in the same order
            return QString("The total of %1 is %2, its readings make %3. ")
                .arg(it.key())
                .arg(total, 0, 'g', 17)
                .arg(expected, 0, 'g', 17);
        m_totals.insert(it.key(), total);
    }
    return QString();
}
