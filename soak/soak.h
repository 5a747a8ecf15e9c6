// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef SOAK_H
#define SOAK_H

#include <QString>
#include <QStringList>

// The modes of vela-soak. Each reads its own options from \a arguments, the mode's name first, and throws a
// std::runtime_error if it finds something wrong.

/*! Polls the plugin as fast as the answers come, while the gateway is added and removed many times. */
void soakWithPolls(const QStringList &arguments);
/*! Measures what polls cost while the backend accepts and never answers. */
void soakInSilence(const QStringList &arguments);
/*! Kills the host at random moments, and checks what the next one finds. */
void soakWithKills(const QStringList &arguments);

/*! Ends the run with \a finding unless \a holds. Not for slots: Qt passes no exceptions on. */
void require(bool holds, const QString &finding);

#endif // SOAK_H
