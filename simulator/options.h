// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT
#ifndef OPTIONS_H
#define OPTIONS_H

#include "yard.h"

#include <QStringList>

/*! What the command line asks for. */
struct Options
{
    Yard::Settings yard;
    QString listenAddress;
    int port = 0; //!< 0: any that is free
};

/*! Reads \a arguments, the program's name first. Does not return on --help and --version (status 0) nor on a
 *  mistake (status 2, with a line on standard error that says what would be right). */
Options readOptions(const QStringList &arguments);

#endif // OPTIONS_H
