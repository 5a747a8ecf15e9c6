// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef VALUESREPLY_H
#define VALUESREPLY_H

#include "finding.h"

#include <QByteArray>
#include <QDateTime>
#include <QStringList>

/*! What is wrong with the \a body of a values reply against what the plugin reads, when the wallboxes
    \a asked were asked for at \a now. */
Findings judgeValues(const QByteArray &body, const QStringList &asked, const QDateTime &now);

/*! One line for each record in the \a body of a values reply: what nymea would show. */
QStringList describeValues(const QByteArray &body);

#endif // VALUESREPLY_H
