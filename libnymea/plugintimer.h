// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef PLUGINTIMER_H
#define PLUGINTIMER_H

#include "libnymea.h"

#include <QList>
#include <QObject>
#include <QTimer>

/*! A plugin's repeating timer with a period in whole seconds. Owned by the manager that registered it: a
    plugin never deletes it, but hands it back with PluginTimerManager::unregisterTimer(). */
class LIBNYMEA_EXPORT PluginTimer : public QObject
{
    Q_OBJECT
public:
    /*! The period in seconds, at least 1. */
    int interval() const { return m_interval; }
    bool running() const { return m_running; }

    /*! Does nothing to a timer that runs already. */
    void start() { m_running = true; }
    /*! Stops the timer. After the next start() a whole period passes before the first timeout(). */
    void stop();

Q_SIGNALS:
    /*! A period has passed. Emitted on the main thread. All timers are driven by one clock, so the first period
        may be up to a second short. A handler may unregister the timer. */
    void timeout();

private:
    friend class PluginTimerManager;
    PluginTimer(int seconds, QObject *parent);
    void tick();

    const int m_interval;
    int m_elapsed = 0;
    bool m_running = false;
};

/*! Gives out the plugins' timers and drives them from one clock that ticks every second. Owned by the
    hardware manager. What is still registered in the end is deleted with it. */
class LIBNYMEA_EXPORT PluginTimerManager : public QObject
{
    Q_OBJECT
public:
    explicit PluginTimerManager(QObject *parent = nullptr);

    /*! A timer with a period of \a seconds, running. Less than 1 is taken as 1. The caller connects to
        timeout() and keeps the pointer until it calls unregisterTimer(). */
    PluginTimer *registerTimer(int seconds = 60);
    /*! Stops \a timer at once and deletes it from the event loop; the caller forgets the pointer. Refused
        with a warning if the timer is not registered here, as on a second call. */
    void unregisterTimer(PluginTimer *timer);

    /*! One second passes for every running timer. The clock calls this; plugins do not. */
    void tick();

private:
    QTimer m_clock;                // our child as well
    QList<PluginTimer *> m_timers; // our children
};

#endif // PLUGINTIMER_H
