// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef REPLIES_H
#define REPLIES_H

#include <QByteArray>
#include <QList>
#include <QStringList>

/*! What wallboxes may report from poll to poll:
    - "still": the same bytes each time, so that no state changes
    - "mixed": of four wallboxes two charge, one car is full, one wallbox is free; new time at every poll
    - "charging": all charge on three phases, with new time, currents and energy at every poll: the worst case */
inline QStringList reports()
{
    return {"still", "mixed", "charging"};
}

/*! The ids of \a wallboxes wallboxes, all of the same length. */
QStringList infraIds(int wallboxes);

/*! The replies to values requests, to be used in turn, again and again. */
QList<QByteArray> valuesReplies(int wallboxes, const QString &report);

#endif // REPLIES_H
