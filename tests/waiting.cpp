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
#include <linux/sockios.h>
#include <optional>
#include <string>
#include <sys/ioctl.h>
#include <sys/socket.h>
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

/*! Whether the system has delivered all that this program has sent, which takes a while if it is busy. */
bool allIsDelivered()
{
    const std::filesystem::directory_iterator descriptors("/proc/self/fd");
    return std::all_of(begin(descriptors), end(descriptors), [](const auto &entry) {
        const int descriptor = std::stoi(entry.path().filename());
        sockaddr peer;
        socklen_t size = sizeof peer;
        const bool isConnected = ::getpeername(descriptor, &peer, &size) == 0;
        int unacknowledged = 0;
        return !isConnected || ::ioctl(descriptor, SIOCOUTQ, &unacknowledged) != 0 || unacknowledged == 0;
    });
}

/*! How often each other thread of this program has gone to sleep so far; nothing if one of them does not
    sleep. */
std::optional<QByteArray> sleepsOfOthers()
{
    QByteArray sleeps;
    for (const auto &thread : std::filesystem::directory_iterator("/proc/self/task")) {
        QFile file(QString::fromStdString(thread.path() / "status"));
        if (thread.path().filename() == std::to_string(gettid()) || !file.open(QIODevice::ReadOnly))
            continue;
        const QByteArray status = file.readAll();
        if (!status.contains("\nState:\tS"))
            return {};
        sleeps +=
            QFile::encodeName(file.fileName()) + status.mid(status.indexOf("\nvoluntary_ctxt_switches"));
    }
    return sleeps;
}

/*! Whether nothing is left to do. The threads are looked at one after the other: if none has run in between,
    all of them have slept at the same time. */
bool hasSettled()
{
    const auto before = sleepsOfOthers();
    const bool isDelivered = allIsDelivered();
    // Idle once more: deleting an object may have sent an event.
    return isIdle() && isDelivered && before && before == sleepsOfOthers() && isIdle();
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

void settle()
{
    const QDeadlineTimer deadline(60s);
    while (!hasSettled()) {
        if (deadline.hasExpired())
            qFatal("The program does not become idle.");
        std::this_thread::yield();
    }
}
