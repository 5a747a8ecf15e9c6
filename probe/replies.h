// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef REPLIES_H
#define REPLIES_H

#include "step.h"

#include <QDateTime>
#include <QMap>

/*! Reads the answer of \a step as group info, and adds to \a step what the plugin reads and what is wrong.
    Returns the maximum current in A of each wallbox, by infrastructure id. */
QMap<QString, int> readGroupInfo(Step &step);

/*! Reads the answer of \a step as live values of the wallboxes \a asked at the time \a now, and adds to \a
    step what nymea would show and what is wrong. */
void readValues(Step &step, const QStringList &asked, const QDateTime &now);

#endif // REPLIES_H
