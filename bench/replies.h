// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef REPLIES_H
#define REPLIES_H

#include <QByteArray>
#include <QStringList>
#include <QVector>

#include <optional>

/*! What a backend reports from poll to poll. */
enum class Yard {
    Still,   //!< the same bytes each time: no state changes
    Mixed,   //!< of four wallboxes two charge, one car is full, one wallbox is free; new time at every poll
    Charging //!< all charge on three phases, with new time, currents and energy at every poll: the worst case
};

/*! The yard of that name, in lower case. */
std::optional<Yard> yardNamed(const QString &name);
QString nameOf(Yard yard);

/*! The ids of \a wallboxes wallboxes, all of the same length. */
QStringList infraIds(int wallboxes);

/*! The reply to a group info request. */
QByteArray groupInfoReply(int wallboxes);

/*! The replies to values requests, to be given in turn and from the start again. */
QVector<QByteArray> valuesReplies(int wallboxes, Yard yard);

#endif // REPLIES_H
