// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef LOGGINGCATEGORIES_H
#define LOGGINGCATEGORIES_H

#include "libnymea.h"

#include <QLoggingCategory>

/*! Category "Thing": incorrect use of a thing, job or timer by a plugin, and unusable metadata. */
LIBNYMEA_EXPORT Q_DECLARE_LOGGING_CATEGORY(dcThing)

#endif // LOGGINGCATEGORIES_H
