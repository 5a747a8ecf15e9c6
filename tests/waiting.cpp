// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "waiting.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QFile>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <string>
#include <thread>
#include <unistd.h>

using namespace std::chrono_literals;

namespace {

/*! Handles all pending events. True if there were none. */
bool isIdle()
{
    const bool handled = QAbstractEventDispatcher::instance()->processEvents(QEventLoop::AllEvents);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    return !handled;
}

/*! Whether no other thread of this program has anything to do at the moment. */
bool othersSleep()
{
    const std::filesystem::directory_iterator threads("/proc/self/task");
    return std::all_of(begin(threads), end(threads), [](const auto &thread) {
        QFile file(QString::fromStdString(thread.path() / "stat"));
        const bool isOther = thread.path().filename() != std::to_string(gettid());
        const QByteArray stat = isOther && file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        return stat.isEmpty() || stat.mid(stat.lastIndexOf(')') + 2).startsWith('S');
    });
}

} // namespace

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

bool settle()
{
    const QDeadlineTimer deadline(60s);
    // Once more at the end: another thread may have sent an event just before it went to sleep.
    while (!isIdle() || !othersSleep() || !isIdle()) {
        if (deadline.hasExpired())
            return false;
        std::this_thread::yield();
    }
    return true;
}
