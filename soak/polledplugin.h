// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef POLLEDPLUGIN_H
#define POLLEDPLUGIN_H

#include "census.h"
#include "site.h"

#include <QMap>

#include <random>

/*! A daemon with the plugin and 32 wallboxes, checked after each poll. Actions, renewals of limits, jumps of
    the clock and faults come at random. */
class PolledPlugin
{
public:
    explicit PolledPlugin(unsigned seed)
        : m_random(seed)
    {
    }

    /*! Adds the gateway, polls at least \a polls times, and removes it. Half of the wallboxes leave the group
        and come back. */
    void run(int polls);

    QVector<Census> working;      //!< in the middle of each run, with all wallboxes and connections
    QVector<Census> resting;      //!< at its end, after the last thing was removed
    QMap<QString, double> counts; //!< of what has happened, by name

private:
    /*! What a thing must show, in kWh: the last reading that has arrived, and the total. */
    struct Meter
    {
        double energy = 0;
        double total = 0;
    };

    void setUp(int firstNumber);
    void leave();
    void pollFor(int polls);
    void beginFault();
    void act();
    void renewLimits();
    void moveClock(int seconds);
    void poll(int ticks);
    void pollUnderFault();
    void pollInAnyOrder(int ticks);
    void pass();
    bool shows(qint64 time) const;
    void arrive(qint64 time);
    void checkLimits(const QJsonObject &expected);

    bool chance(unsigned percent) { return m_random() % 100 < percent; }

    std::mt19937 m_random;
    Site m_site;
    QMap<ThingId, Meter> m_meters; // of the wallboxes
    QJsonObject m_limits;          // that the next poll must send
    qint64 m_silence = 0;          // since the last action, in s of the daemon's clock, which jumps
    qint64 m_time = 1714564800;    // Unix time that the readings carry
    int m_faultyPolls = 0;         // still to come; each may fail, or be sent twice
};

#endif // POLLEDPLUGIN_H
