// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef ENDSIGNALS_H
#define ENDSIGNALS_H

/*! Lets the first SIGINT, SIGTERM or SIGHUP end the application's event loop. The second one kills the process,
    which may be blocked in a write to a pipe that is not read. With a signalfd, the second signal would have no
    effect until the process reads the first. SIGHUP stays ignored where it was ignored before, as with nohup.
    Call this once, after the application has been created. */
void quitAtEndSignals();

#endif // ENDSIGNALS_H
