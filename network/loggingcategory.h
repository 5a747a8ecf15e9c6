// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef LOGGINGCATEGORY_H
#define LOGGINGCATEGORY_H

#include <QLoggingCategory>

/*! Category "Vela", for all messages of the plugin. Debug messages show what happens; warnings report what
    failed or looks wrong. */
Q_DECLARE_LOGGING_CATEGORY(dcVela)

#endif // LOGGINGCATEGORY_H
