// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT
#ifndef YARD_H
#define YARD_H

#include "wallbox.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QMap>
#include <QString>
#include <QStringList>

#include <deque>
#include <functional>
#include <map>
#include <mutex>

/*! The group's wallboxes, its id and secret, and the limits that arrived for it.
 *
 *  Safe to call from any thread. The model is brought up to now, elapsed time by speed, whenever it is looked
 *  at or touched; in between nothing runs. Time stamps are the clock's, UTC, whatever the speed. */
class Yard
{
public:
    struct Settings
    {
        QString group;
        QString secret;
        int wallboxes = 0; //!< "EVSE-01" and so on, of which every fourth has no car
        double speed = 1;  //!< model seconds a second
    };
    explicit Yard(const Settings &settings);

    // What the backend's clients ask for
    bool isGroup(const QString &group) const;
    bool isSecret(const QString &secret) const;
    /*! By id: {"max_charging_current"}. */
    QJsonObject groupInfo() const;
    /*! By id: {"timestamp", "phase_1" to "phase_3" in A, "meter_value" in Wh, "status"}; unknown \a ids are
     *  left out. */
    QJsonObject values(const QStringList &ids);
    /*! Ampere by id. Limits for unknown ids are noted, and nothing else. */
    void setLimits(const QMap<QString, double> &limits);

    // What a hand in the yard does
    /*! An empty \a id takes the next free one. False if the id is taken. */
    bool addWallbox(QString id, int maxChargingCurrent);
    /*! False if there is no such wallbox. */
    bool removeWallbox(const QString &id);
    /*! Lets \a touch have the wallbox, under the lock. False if there is no such wallbox. */
    bool touchWallbox(const QString &id, const std::function<void(Wallbox &)> &touch);
    void setSpeed(double speed);
    void setGroup(const QString &group);
    void setSecret(const QString &secret);
    /*! {"time", "group", "speed", "wallboxes": [...]}, as simulator/README.md shows it. */
    QJsonObject state();
    /*! The last limits received, oldest first: {"number", "time", "id", "value", "applied"}. */
    QJsonArray limits() const;
    /*! The last five minutes as far as somebody looked on, oldest first: {"time", "wallboxes": {ID: [power,
     *  offered power]}}, in W. */
    QJsonArray history() const;

private:
    using Clock = std::chrono::steady_clock;
    struct Place
    {
        Wallbox wallbox;
        QString limitTime; // when its limit was received, ISO 8601; empty before the first
    };

    void catchUp();
    void remember();
    QString freeId() const;
    static QJsonObject valueRecord(const Wallbox &wallbox, const QString &time);
    static QJsonObject stateRecord(const QString &id, const Place &place);

    mutable std::mutex m_mutex; // guards all that follows
    QString m_group;
    QString m_secret;
    double m_speed;
    Clock::time_point m_lastCatchUp = Clock::now();
    std::map<QString, Place> m_places;
    std::deque<QJsonObject> m_limits;
    int m_limitCount = 0;
    std::deque<QJsonObject> m_history;
    Clock::time_point m_lastMemory;
};

/*! Now, ISO 8601 in UTC with milliseconds: "2024-05-01T12:00:00.500Z". */
QString utcNow();

#endif // YARD_H
