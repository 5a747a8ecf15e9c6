// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef SIMULATION_H
#define SIMULATION_H

#include "requestlog.h"
#include "simulatedwallbox.h"

#include <map>

constexpr double fastestSpeed = 100000;

/*! The group, the faults of its backend, and what has happened. The endpoints work on it. Time stamps are
    always those of the clock, whatever the speed. */
struct Simulation
{
    QString listenAddress; //!< a host name that clients may use
    QString group;
    QString secret;
    double speed = 1; //!< simulated seconds in a second
    std::map<QString, SimulatedWallbox> wallboxes;
    QJsonObject faults; //!< those that are set, see fault.h
    RequestLog log;
    QJsonArray limits;  //!< the last 1,000 received: {"number", "time", "id", "value", "applied"}
    QJsonArray history; //!< the last 300: {"time", "wallboxes": {ID: [drawn power, offered power]}}, in W

    /*! Adds "EVSE-01" and so on, with cars at three out of four. */
    void addFirstWallboxes(int count);
    /*! The first id of this kind that is not in use. */
    QString freeId() const;
    /*! Records a limit, and applies it if the group has the wallbox \a id. */
    void receiveLimit(const QString &id, double ampere);
    /*! Advances the wallboxes by the time since the previous call, and adds to the history once a second. Call
        it before using the wallboxes. */
    void catchUp();

private:
    using Clock = std::chrono::steady_clock;
    Clock::time_point m_lastUse = Clock::now();
    Clock::time_point m_lastSample;
    int m_limitCount = 0;
};

#endif // SIMULATION_H
