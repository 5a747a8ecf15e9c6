// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "waiting.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QTimer>

#include <chrono>

using namespace std::chrono_literals;

bool waitFor(const std::function<bool()> &condition)
{
    const QDeadlineTimer deadline(60s);
    QTimer heartbeat; // for what changes without an event, and for the deadline
    heartbeat.start(10ms);
    while (!condition()) {
        if (deadline.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    return true;
}
