// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef LOGGINGCATEGORY_H
#define LOGGINGCATEGORY_H

#include <QLoggingCategory>

/*! Category "Vela": all that the plugin says. Debug tells the story, warning what failed or is doubtful. */
Q_DECLARE_LOGGING_CATEGORY(dcVela)

#endif // LOGGINGCATEGORY_H
