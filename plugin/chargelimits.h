// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef CHARGELIMITS_H
#define CHARGELIMITS_H

#include <QJsonObject>
#include <QJsonValue>

/*! The limit of one wallbox as the backend takes it. \a ampere is a number; 0 forbids charging. */
QJsonObject chargeLimit(const QJsonValue &ampere);

/*! Whether the energy manager has fallen silent: no action yet (\a lastActionTime is 0), or none for more
    than 30 s. Times in s since the Unix epoch. An action in the future, after the clock was set back,
    still counts as heard. */
bool isSilent(qint64 lastActionTime, qint64 now);

#endif // CHARGELIMITS_H
