// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef EXPECTEDLIMITS_H
#define EXPECTEDLIMITS_H

#include <QJsonObject>
#include <QMap>

#include <optional>

class Thing;

/*! Which charge limits a plugin must send, worked out from what it has been asked for. Times in s. */
class ExpectedLimits
{
public:
    /*! An action is about to set \a state of \a thing to \a value. */
    void act(const Thing *thing, const QString &state, const QVariant &value, qint64 now);
    /*! The limits are renewed, if anything has been heard for 30 s; whether so. */
    bool renew(const QMap<QString, Thing *> &things, qint64 now);
    /*! A poll sends what waits; empty when nothing does. */
    QJsonObject take();

private:
    void queue(const QString &infraId, double ampere);

    std::optional<qint64> m_lastAction;
    QJsonObject m_waiting;
};

#endif // EXPECTEDLIMITS_H
