// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef ENDSIGNALS_H
#define ENDSIGNALS_H

/*! Lets the first SIGINT, SIGTERM or SIGHUP end the application's event loop. The second one kills the
    process, which may be stuck in a write that nobody reads. That is why this is no signalfd: it would hold the
    second signal back, or make one of the two, until the process reads it. To be called once, when there is an application. */
void quitAtEndSignals();

#endif // ENDSIGNALS_H
