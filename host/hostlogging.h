// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef HOSTLOGGING_H
#define HOSTLOGGING_H

#include <QLoggingCategory>

/*! Category "Host": what the daemon's player itself has to say. */
Q_DECLARE_LOGGING_CATEGORY(dcHost)

#endif // HOSTLOGGING_H
