// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "watchedapplication.h"

#include <QTcpServer>

#include <algorithm>
#include <ctime>
#include <unistd.h>

namespace {

/*! The time that this thread has used, in ms: neither another process nor the backend's work counts. */
double threadTime()
{
    timespec time = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
}

bool isBackend(const QObject *object)
{
    while (object && !qobject_cast<const QTcpServer *>(object))
        object = object->parent();
    return object;
}

} // namespace

bool WatchedApplication::notify(QObject *receiver, QEvent *event)
{
    // Qt's other threads, which outlive this object, deliver their events here as well.
    if (gettid() != getpid() || m_isBusy || isBackend(receiver))
        return QCoreApplication::notify(receiver, event);
    m_isBusy = true;
    const double start = threadTime();
    const bool result = QCoreApplication::notify(receiver, event);
    longest = std::max(longest, threadTime() - start);
    m_isBusy = false;
    return result;
}
