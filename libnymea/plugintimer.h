// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef PLUGINTIMER_H
#define PLUGINTIMER_H

#include "libnymea.h"

#include <QList>
#include <QObject>
#include <QTimer>

/*! A plugin's repeating timer with a period in whole seconds. Owned by the manager: a plugin never
    deletes it, but returns it with PluginTimerManager::unregisterTimer(). */
class LIBNYMEA_EXPORT PluginTimer : public QObject
{
    Q_OBJECT
public:
    /*! The period in seconds, at least 1. */
    int interval() const { return m_interval; }
    bool running() const { return m_running; }

    /*! Does nothing if the timer is already running. */
    void start() { m_running = true; }
    /*! Stops the timer; start() begins a new period. */
    void stop();

Q_SIGNALS:
    /*! A period has passed. Emitted on the main thread. All timers share one clock, so the first period may
        be up to a second shorter. A handler may unregister the timer. */
    void timeout();

private:
    friend class PluginTimerManager;
    PluginTimer(int seconds, QObject *parent);
    void tick();

    const int m_interval;
    int m_elapsed = 0;
    bool m_running = false;
};

/*! Creates the plugins' timers and drives them with one clock that ticks every second. Owned by the hardware
    manager. It deletes the timers that are still registered when it is deleted. */
class LIBNYMEA_EXPORT PluginTimerManager : public QObject
{
    Q_OBJECT
public:
    explicit PluginTimerManager(QObject *parent = nullptr);

    /*! Creates and starts a timer with a period of \a seconds; less than 1 counts as 1. The caller connects to
        timeout() and keeps the pointer until it calls unregisterTimer(). */
    PluginTimer *registerTimer(int seconds = 60);
    /*! Stops \a timer at once and deletes it later, from the event loop. The caller no longer uses the
        pointer. Refused with a warning if the timer is not registered, for example on a second call. */
    void unregisterTimer(PluginTimer *timer);

    /*! Lets one second pass for every running timer. Called by the clock, never by a plugin. */
    void tick();

private:
    QTimer m_clock;                // our child as well
    QList<PluginTimer *> m_timers; // our children
};

#endif // PLUGINTIMER_H
