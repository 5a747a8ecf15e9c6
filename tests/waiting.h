// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef WAITING_H
#define WAITING_H

#include <functional>

/*! Runs the event loop until \a condition holds, which is checked after each event. False when it does not
    hold within a minute. */
[[nodiscard]] bool waitFor(const std::function<bool()> &condition);

/*! Handles events until nothing is left to do: no event is pending, all that was sent has been delivered, and
    all other threads of the program sleep, Qt's network thread among them. By then, a peer in this program has
    answered what it was sent, if it answers at all. Ends the program when that takes more than a minute. */
void settle();

#endif // WAITING_H
