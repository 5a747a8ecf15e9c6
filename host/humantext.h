// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef HUMANTEXT_H
#define HUMANTEXT_H

#include <integrations/thing.h>

#include <QStringList>
#include <QVector>

/*! A line for each of \a rows, their columns aligned, two blanks between them. */
QStringList aligned(const QVector<QStringList> &rows);

QString setupText(const Thing *thing);
/*! The states by which people know how a thing is; the first one for an unknown kind of thing. */
QString mainStates(const Thing *thing);
/*! "(6 to 32 A, can be set)"; empty where there is nothing to say. */
QString limitsText(const State &state, const StateType &type);

#endif // HUMANTEXT_H
