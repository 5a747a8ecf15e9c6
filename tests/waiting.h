// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#ifndef WAITING_H
#define WAITING_H

#include <functional>

/*! Runs the event loop until \a condition holds, and looks after each event, where QTest::qWaitFor() sleeps
    10 ms in between. False when it does not hold within a minute. */
[[nodiscard]] bool waitFor(const std::function<bool()> &condition);

#endif // WAITING_H
