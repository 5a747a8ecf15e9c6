// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef HOSTOPTIONS_H
#define HOSTOPTIONS_H

#include "daemon.h"

/*! What the command line of vela-host says. */
struct HostOptions
{
    DaemonOptions daemon;
    bool json = false;
    QString logRules;     //!< empty if none are given
    QString firstCommand; //!< empty if none is given
};

/*! Reads the program's command line. Needs QCoreApplication; ends the process if the command line asks for
    that or has an error. */
HostOptions readHostOptions();

#endif // HOSTOPTIONS_H
