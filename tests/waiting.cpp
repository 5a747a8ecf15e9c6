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

void settle()
{
    const QDeadlineTimer deadline(60s);
    // Once more at the end: another thread may have sent an event just before it went to sleep.
    while (!isIdle() || !allIsDelivered() || !othersSleep() || !isIdle()) {
        if (deadline.hasExpired())
            qFatal("The program does not become idle.");
        std::this_thread::yield();
    }
}
