// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef WAITING_H
#define WAITING_H

#include <functional>

/*! Runs the event loop until \a condition holds, which is checked after each event. False when it does not
    hold within a minute. */
[[nodiscard]] bool waitFor(const std::function<bool()> &condition);

#endif // WAITING_H
