// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef SECRET_H
#define SECRET_H

#include <QString>

/*! The group's secret: from \a file unless that is empty, else from the environment, else from the user at
    the terminal. Ends the program when there is none. */
QString readSecret(const QString &file);

#endif // SECRET_H
