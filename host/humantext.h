// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef HUMANTEXT_H
#define HUMANTEXT_H

#include <integrations/thingjob.h>

#include <QStringList>
#include <QVector>

/*! A line for each of \a rows, their columns aligned, two blanks between them. */
QStringList aligned(const QVector<QStringList> &rows);

QString setupText(const Thing *thing);
/*! The states by which people know how a thing is; the first one for an unknown kind of thing. */
QString mainStates(const Thing *thing);
/*! All about \a thing; \a parent may be null. */
QStringList description(const Thing *thing, const Thing *parent);
/*! What went wrong, in one sentence; empty for a job without error. */
QString errorText(const ThingJob *job);

#endif // HUMANTEXT_H
