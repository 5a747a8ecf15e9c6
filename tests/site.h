// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef SITE_H
#define SITE_H

#include "daemon.h"
#include "logrecorder.h"
#include "scriptedbackend.h"

#include <QTemporaryDir>

#include <memory>

class PluginTimer;
class PluginTimerManager;
class QTimer;

constexpr int connectionsOfQt = 6; //!< that it opens to one backend

/*! The id of wallbox \a number, from 1 on: "EVSE-01". */
QString numberedId(int number);
/*! The infrastructure id of the thing \a wallbox. */
QString infraIdOf(const Thing *wallbox);

/*! How a job has ended. */
struct JobOutcome
{
    QString text = "pending"; //!< later "NoError" or, for example, "SetupFailed: MESSAGE"
    ThingDescriptors offers;
};
using Job = std::shared_ptr<const JobOutcome>;

/*! The built plugin in a daemon with storage of its own, and a backend with one wallbox, "EVSE-01".

    Time stands still: plugin timers tick and the clock moves when told to. A misspelt name ends the
    program with a message that quotes it, or makes the job's text an error. One site at a time. */
class Site
{
public:
    explicit Site(const QString &pluginFile = VELA_PLUGIN_FILE);
    ~Site();
    Q_DISABLE_COPY(Site)

    /*! Discovers the gateway, adds it as a new thing, even if there is one already, and waits until it and all
        wallboxes are set up. Returns what went wrong, or an empty text. */
    QString addGateway();
    /*! Ends the daemon, and starts another one on the same storage. */
    void restart();

    Job discover(const QString &url, const QString &groupId, const QString &groupSecret) const;
    Job discover() const { return discover(backend.url(), "yard", "s3cret"); }
    Job add(const ThingDescriptor &descriptor) const { return watch(daemon->add(descriptor)); }
    Job setup(Thing *thing) const { return watch(daemon->setup(thing)); }
    /*! Executes the action that sets \a state of a wallbox that is there. */
    Job set(const QString &infraId, const QString &state, const QVariant &value) const;
    /*! Waits until \a job has finished, and returns its text. */
    static QString result(const Job &job);
    void remove(Thing *thing) const { daemon->remove(thing); }

    Things gateways() const { return daemon->configuredThings().filterByParentId(ThingId()); }
    Thing *gateway() const { return gateways().value(0); }
    Things wallboxes() const;
    /*! The wallbox of that infrastructure id, or null. */
    Thing *wallbox(const QString &infraId) const;
    /*! The infrastructure ids of all wallboxes, sorted. */
    QStringList infraIds() const;
    /*! The value of a state that exists, of a wallbox that is there. */
    QVariant state(const QString &infraId, const QString &name) const;

    /*! Two seconds pass for the plugin timer. */
    void tick() const;
    void fireChargeLimitTimer() const;
    static void moveClock(int seconds);
    QList<QTimer *> chargeLimitTimers() const;
    QList<PluginTimer *> pluginTimers() const;

    LogRecorder log;
    ScriptedBackend backend;
    std::unique_ptr<Daemon> daemon;

private:
    void start();
    static Job watch(ThingJob *job);
    Thing *knownWallbox(const QString &infraId) const;
    PluginTimerManager *timerManager() const;

    const QString m_pluginFile;
    QTemporaryDir m_storage;
};

#endif // SITE_H
