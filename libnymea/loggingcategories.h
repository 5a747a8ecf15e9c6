// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef LOGGINGCATEGORIES_H
#define LOGGINGCATEGORIES_H

#include "libnymea.h"

#include <QLoggingCategory>

/*! Category "Thing": what a plugin did wrong with a thing or a job, and metadata that cannot be used. */
LIBNYMEA_EXPORT Q_DECLARE_LOGGING_CATEGORY(dcThing)

#endif // LOGGINGCATEGORIES_H
