// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "site.h"

#include "waiting.h"

#include <hardwaremanager.h>
#include <plugintimer.h>

#include <QMetaEnum>
#include <QTimer>

#include <chrono>
#include <sys/time.h>

using namespace std::chrono_literals;

namespace {

std::int64_t currentSecond = 1714564800; // 2024-05-01 12:00 UTC

QString name(Thing::ThingError error)
{
    return QString(QMetaEnum::fromType<Thing::ThingError>().valueToKey(error)).remove("ThingError");
}

} // namespace

QString numberedId(int number)
{
    return QString("EVSE-%1").arg(number, 2, 10, QChar('0'));
}

QString infraIdOf(const Thing *wallbox)
{
    return wallbox->paramValue("infraID").toString();
}

// Qt calls this for the current second. The program's own function takes precedence over the C library's.
extern "C" int gettimeofday(timeval *tv, void *) noexcept
{
    *tv = {currentSecond, 0};
    return 0;
}

Site::Site(const QString &pluginFile)
    : m_pluginFile(pluginFile)
{
    backend.setWallbox("EVSE-01", 16);
    start();
}

Site::~Site()
{
    const Things things = gateways();
    for (Thing *thing : things)
        daemon->remove(thing);
    daemon.reset(); // before its storage
}

void Site::start()
{
    daemon = std::make_unique<Daemon>(DaemonOptions{m_pluginFile, m_storage.path(), 0ms});
    timerManager()->findChild<QTimer *>()->stop();
    const QString error = daemon->load();
    if (!error.isEmpty())
        qFatal("%s", qPrintable(error));
}

void Site::restart()
{
    daemon.reset();
    start();
}

QString Site::addGateway()
{
    const Job discovery = discover();
    if (result(discovery) != "NoError")
        return "discovery: " + discovery->text;
    ThingDescriptor offer = discovery->offers.first();
    offer.setThingId(ThingId());
    const Job setup = add(offer);
    if (result(setup) != "NoError")
        return "set-up: " + setup->text;
    const bool complete = waitFor([this] { return infraIds() == backend.wallboxes.keys(); });
    return complete ? QString() : "wallboxes: " + infraIds().join(' ');
}

QString Site::result(const Job &job)
{
    const bool finished = waitFor([&job] { return job->text != "pending"; });
    return finished ? job->text : "still pending";
}

Job Site::watch(ThingJob *job)
{
    auto outcome = std::make_shared<JobOutcome>();
    QObject::connect(job, &ThingJob::finished, job, [job, outcome] {
        outcome->text = name(job->status());
        if (!job->displayMessage().isEmpty())
            outcome->text += ": " + job->displayMessage();
        if (const auto *discovery = qobject_cast<ThingDiscoveryInfo *>(job))
            outcome->offers = discovery->thingDescriptors();
    });
    return outcome;
}

Job Site::discover(const QString &url, const QString &groupId, const QString &groupSecret) const
{
    const ThingClass gateway = daemon->thingClasses().findByName("vela");
    ParamList params;
    for (const auto &[name, value] : {
             std::pair{"backendUrl",  url        },
             std::pair{"groupId",     groupId    },
             std::pair{"groupSecret", groupSecret}
    }) {
        if (!value.isNull())
            params.append(Param(gateway.discoveryParamTypes.findByName(name).id, value));
    }
    return watch(daemon->discover(gateway.id, params));
}

Job Site::set(const QString &infraId, const QString &state, const QVariant &value) const
{
    return watch(daemon->execute(knownWallbox(infraId), state, value));
}

Things Site::wallboxes() const
{
    Things result = daemon->configuredThings();
    result.erase(std::remove_if(result.begin(), result.end(),
                                [](const Thing *thing) { return thing->thingClass().name == "vela"; }),
                 result.end());
    return result;
}

Thing *Site::wallbox(const QString &infraId) const
{
    const Things things = wallboxes();
    const auto it = std::find_if(things.cbegin(), things.cend(),
                                 [&infraId](const Thing *thing) { return infraIdOf(thing) == infraId; });
    return it == things.cend() ? nullptr : *it;
}

Thing *Site::knownWallbox(const QString &infraId) const
{
    Thing *thing = wallbox(infraId);
    if (!thing)
        qFatal("There is no wallbox \"%s\".", qPrintable(infraId));
    return thing;
}

QStringList Site::infraIds() const
{
    QStringList result;
    const Things things = wallboxes();
    for (const Thing *thing : things)
        result.append(infraIdOf(thing));
    result.sort();
    return result;
}

QVariant Site::state(const QString &infraId, const QString &name) const
{
    const State state = knownWallbox(infraId)->state(name);
    if (state.stateTypeId().isNull())
        qFatal("There is no state \"%s\".", qPrintable(name));
    return state.value();
}

void Site::tick() const
{
    for (int second = 0; second < 2; ++second)
        timerManager()->tick();
}

void Site::fireChargeLimitTimer() const
{
    const QList<QTimer *> timers = chargeLimitTimers();
    for (QTimer *timer : timers)
        QMetaObject::invokeMethod(timer, "timeout");
}

void Site::moveClock(int seconds)
{
    currentSecond += seconds;
}

QList<QTimer *> Site::chargeLimitTimers() const
{
    return daemon->plugin()->findChildren<QTimer *>();
}

QList<PluginTimer *> Site::pluginTimers() const
{
    return timerManager()->findChildren<PluginTimer *>();
}

PluginTimerManager *Site::timerManager() const
{
    return daemon->hardwareManager()->pluginTimerManager();
}
