// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef STANDARDSTREAMS_H
#define STANDARDSTREAMS_H

/*! Opens /dev/null for each of standard input, output and error that is closed. Otherwise the next descriptor
    that is opened, possibly one of Qt's own, would get its number and be read or written in its place. Call
    this first in main(). */
void openStandardStreams();

#endif // STANDARDSTREAMS_H
