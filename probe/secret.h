// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef SECRET_H
#define SECRET_H

#include <QString>

class CommandLine;

/*! The group's secret: from the file that \a line names, else from the environment, else from the terminal.
    Ends the program if there is none. */
QString readSecret(const CommandLine &line);

#endif // SECRET_H
