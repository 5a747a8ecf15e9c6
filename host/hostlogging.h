// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef HOSTLOGGING_H
#define HOSTLOGGING_H

#include <QLoggingCategory>

/*! Category "Host": what the daemon's player itself has to say. */
Q_DECLARE_LOGGING_CATEGORY(dcHost)

/*! Sets which records are written: \a rules, or what the environment says where \a rules is empty. With
   neither, debug records are left out when standard error is a terminal. Call it before QCoreApplication
   exists. */
void setLogRules(const QString &rules);

/*! Writes log records to standard error: "2026-01-31T12:34:56.789 warning Vela: text". A record begins with
   its time, further lines of its text with spaces; printable() guards each of them. */
void installLogHandler();

#endif // HOSTLOGGING_H
