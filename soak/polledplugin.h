// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef POLLEDPLUGIN_H
#define POLLEDPLUGIN_H

#include "census.h"
#include "site.h"

#include <QMap>

#include <optional>
#include <random>

/*! A daemon with the plugin and 32 wallboxes, checked after each poll. A life begins with the discovery of the
    gateway and ends with the removal of the last thing. Actions, renewals of limits, jumps of the clock and
    faults come at random. */
class PolledPlugin
{
public:
    explicit PolledPlugin(unsigned seed)
        : m_random(seed)
    {
    }

    /*! Polls \a polls times at least. Returns what the process holds in the middle, with all wallboxes and
        connections. Wallboxes leave the group, come back and are \a removedByHand, or all leave it at the end. */
    Census live(int polls, bool removedByHand);

    QMap<QString, double> counts; //!< of what has happened, by name

private:
    /*! What a thing must show, in kWh: the reading that came last, and the total. */
    struct Meter
    {
        Thing *thing = nullptr; // the daemon's
        double energy = 0;
        double total = 0;
    };

    void setUp(int firstNumber);
    void leave();
    void pollFor(int polls);
    void strike();
    void act();
    void renewLimits();
    void moveClock(int seconds);
    void poll(int ticks);
    void pollOnce();
    void pollOutOfOrder(int ticks);
    void pass();
    bool shows(qint64 time) const;
    void arrive(qint64 time);
    void checkLimits(const QJsonObject &expected);

    bool chance(unsigned percent) { return m_random() % 100 < percent; }

    std::mt19937 m_random;
    Site m_site;
    QMap<int, Meter> m_meters;          // by the number of the wallbox
    QJsonObject m_limits;               // that the next poll must send
    std::optional<qint64> m_lastAction; // in s, by m_clock
    qint64 m_clock = 0;                 // in s; the daemon's, which jumps
    qint64 m_time = 1714564800;         // Unix time that the readings carry
    int m_faultyPolls = 0;              // still to come
    bool m_disturbed = false;           // the next poll may fail, or be sent twice
};

#endif // POLLEDPLUGIN_H
