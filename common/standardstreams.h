// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef STANDARDSTREAMS_H
#define STANDARDSTREAMS_H

/*! Opens /dev/null for those of standard input, output and error that the process was started without.
   Otherwise the next file that is opened takes their number, Qt's own descriptors among them, and is read or
   written in their place. Call it first in main(). */
void openStandardStreams();

#endif // STANDARDSTREAMS_H
