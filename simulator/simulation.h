// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef SIMULATION_H
#define SIMULATION_H

#include "requestlog.h"
#include "simulatedwallbox.h"

#include <map>

constexpr double fastestSpeed = 100000;

/*! What the endpoints work on: the group, how its backend misbehaves, and what is remembered. Time stamps are
    the clock's, whatever the speed. */
struct Simulation
{
    QString listenAddress; //!< a name under which clients may know us
    QString group;
    QString secret;
    double speed = 1; //!< model seconds a second
    std::map<QString, SimulatedWallbox> wallboxes;
    QJsonObject faults; //!< those of fault.h that are on
    RequestLog log;
    QJsonArray limits;  //!< the last 1,000 received: {"number", "time", "id", "value", "applied"}
    QJsonArray history; //!< the last 300: {"time", "wallboxes": {ID: [drawn power, offered power]}}, in W

    /*! Adds "EVSE-01" and so on, with cars at three of each four. */
    void addFirstWallboxes(int count);
    /*! The first id of that kind that is not taken. */
    QString freeId() const;
    /*! Notes a limit, and applies it if the group has the wallbox \a id. */
    void receiveLimit(const QString &id, double ampere);
    /*! Lets the time pass that has passed since the call before, and adds to the history once a second. Nothing
        runs by itself: whoever uses the wallboxes calls this first. */
    void catchUp();

private:
    using Clock = std::chrono::steady_clock;
    Clock::time_point m_lastUse = Clock::now();
    Clock::time_point m_lastSample;
    int m_limitCount = 0;
};

#endif // SIMULATION_H
