// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "plugintimer.h"

#include "loggingcategories.h"

#include <chrono>

using namespace std::chrono_literals;

PluginTimer::PluginTimer(int seconds, QObject *parent)
    : QObject(parent)
    , m_interval(qMax(1, seconds))
{
}

void PluginTimer::stop()
{
    m_running = false;
    m_elapsed = 0;
}

void PluginTimer::tick()
{
    if (!m_running || ++m_elapsed < m_interval)
        return;
    m_elapsed = 0;
    emit timeout();
}

PluginTimerManager::PluginTimerManager(QObject *parent)
    : QObject(parent)
    , m_clock(this)
{
    m_clock.setTimerType(Qt::PreciseTimer);
    connect(&m_clock, &QTimer::timeout, this, &PluginTimerManager::tick);
    m_clock.start(1s);
}

PluginTimer *PluginTimerManager::registerTimer(int seconds)
{
    auto *timer = new PluginTimer(seconds, this);
    m_timers.append(timer);
    timer->start();
    return timer;
}

void PluginTimerManager::unregisterTimer(PluginTimer *timer)
{
    if (!m_timers.removeOne(timer)) {
        qCWarning(dcThing) << "A timer that is not registered cannot be unregistered.";
        return;
    }
    timer->stop();
    timer->deleteLater();
}

void PluginTimerManager::tick()
{
    // A copy: a timer's handler may register and unregister timers.
    const QList<PluginTimer *> timers = m_timers;
    for (PluginTimer *timer : timers)
        timer->tick();
}
