// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef CHARGELIMITS_H
#define CHARGELIMITS_H

#include <QJsonObject>
#include <QJsonValue>

/*! The limit of one wallbox in the form that the backend expects. \a ampere is a number; 0 forbids
    charging. */
QJsonObject chargeLimit(const QJsonValue &ampere);

/*! Whether the energy manager is silent: there was no action yet (\a lastActionTime is 0), or none for more
    than 30 s. Times are in s since the Unix epoch. If the clock was set back, so that the last action is in
    the future, the energy manager is not silent. */
bool isSilent(qint64 lastActionTime, qint64 now);

#endif // CHARGELIMITS_H
