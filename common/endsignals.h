// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef ENDSIGNALS_H
#define ENDSIGNALS_H

/*! Lets the first SIGINT, SIGTERM or SIGHUP end the application's event loop. The second one kills the process,
    which may be blocked in a write to a pipe that is not read. A signalfd would not do that: it keeps the second
    signal pending, or merges it with the first, until the process reads it. Call it once, after the application
    has been created. */
void quitAtEndSignals();

#endif // ENDSIGNALS_H
