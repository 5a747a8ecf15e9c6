// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef PLUGINTIMER_H
#define PLUGINTIMER_H

#include "libnymea.h"

#include <QList>
#include <QObject>
#include <QTimer>

/*! A plugin's repeating timer with a period in whole seconds. Owned by the manager that registered it. */
class LIBNYMEA_EXPORT PluginTimer : public QObject
{
    Q_OBJECT
public:
    /*! Period in seconds. */
    int interval() const;
    bool running() const;

    void start();
    /*! Holds the timer; a start() begins a whole period. */
    void stop();

Q_SIGNALS:
    void timeout();

private:
    friend class PluginTimerManager;
    PluginTimer(int seconds, QObject *parent);
    void tick();

    const int m_interval;
    int m_elapsed = 0;
    bool m_running = false;
};

/*! Gives out the plugins' timers and drives them from one clock that ticks every second. */
class LIBNYMEA_EXPORT PluginTimerManager : public QObject
{
    Q_OBJECT
public:
    explicit PluginTimerManager(QObject *parent = nullptr);

    /*! A timer with a period of \a seconds (1 or more), running. It stays ours: hand it back with
        unregisterTimer(). */
    PluginTimer *registerTimer(int seconds = 60);
    /*! Stops \a timer at once and deletes it later; the caller forgets the pointer. */
    void unregisterTimer(PluginTimer *timer);

    /*! One second passes for every running timer. */
    void tick();

private:
    QTimer m_clock;                // our child as well
    QList<PluginTimer *> m_timers; // our children
};

#endif // PLUGINTIMER_H
