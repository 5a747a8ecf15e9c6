// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef SOAK_H
#define SOAK_H

#include "census.h"
#include "expectedlimits.h"
#include "site.h"
#include "yard.h"

#include <QMap>
#include <QVector>

/*! A daemon with the plugin and 32 wallboxes, polled as fast as the answers come, and judged after each poll.

    It goes through tenths of several lives each; a life begins with the discovery of the gateway and ends
   with the removal of the last thing. Actions, renewals, jumps of the clock and faults come at random. */
class Soak
{
public:
    struct Figures
    {
        int polls = 0;
        int failedPolls = 0;
        int lives = 0;
        int actions = 0;
        int limits = 0;         //!< requests
        int lostLimits = 0;     //!< requests that failed under a fault, with a warning
        int renewals = 0;       //!< of all limits, while actions came
        int overtaken = 0;      //!< replies that came after that of a later poll
        int silentRenewals = 0; //!< due, but nothing had been heard for more than 30 s
        QMap<QString, int> faults;
        QVector<Census> working; //!< of each tenth, with all wallboxes and connections
        QVector<Census> resting; //!< of each tenth, after the last thing has gone
    };
    Soak(int polls, unsigned seed);

    /*! Returns the first thing that was not as it must be; empty when there was none. */
    QString run();
    const Figures &figures() const { return m_figures; }
    const Yard &yard() const { return m_yard; }

private:
    struct Reply
    {
        QByteArray body;
        QMap<QString, int> meters; // Wh by infrastructure id
        qint64 timestamp = 0;
    };

    QString live(int polls, bool yardCloses, Census *working);
    QString enter();
    QString regroup();
    QString setUpAgain();
    QString leave();
    QString leaveClosedYard();
    QString lastThingHasGone();
    void watchDaemon();

    QString pollFor(int polls);
    void happen();
    void act();
    void renewLimits();
    void moveClock(int seconds);
    void strike();
    QString poll(int ticks, bool inOrder = true);
    bool pollOnce();
    bool pollInSilence(int ticks);
    bool pollOutOfOrder(int ticks);
    bool releaseInRandomOrder(QVector<Reply> replies);
    bool shows(qint64 timestamp) const;
    void notePresentValues();
    QString judgeLimits(const QJsonObject &expected);
    QString judgeTotals();

    bool chance(unsigned percent) { return m_random() % 100 < percent; }

    int m_polls;
    std::mt19937 m_random;
    Site m_site;
    Yard m_yard;
    ExpectedLimits m_limits;
    QMap<QString, Thing *> m_wallboxes; // by infrastructure id; the daemon's
    QMap<QString, double> m_totals;     // kWh, as last shown
    QVector<Job> m_actions;             // since the last poll
    qint64 m_now = 0;                   // s since the start
    int m_faultyPolls = 0;              // still to come
    bool m_disturbed = false;           // the next poll may fail, or be sent twice
    Figures m_figures;
    QObject m_context; // of connections to the daemon; goes first
};

#endif // SOAK_H
