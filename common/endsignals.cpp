// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "endsignals.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace {

int pipeEnds[2] = {-1, -1}; // for reading and for writing; never closed

constexpr int endSignals[] = {SIGINT, SIGTERM, SIGHUP};

/*! Like every signal handler, it may call only async-signal-safe functions, such as signal() and write(). */
void onSignal(int)
{
    for (const int number : endSignals)
        std::signal(number, SIG_DFL);
    const char byte = 0;
    [[maybe_unused]] const ssize_t written = ::write(pipeEnds[1], &byte, 1);
}

} // namespace

void quitAtEndSignals()
{
    if (::pipe2(pipeEnds, O_CLOEXEC | O_NONBLOCK) != 0)
        qFatal("Cannot create a pipe for signals.");
    auto *notifier = new QSocketNotifier(pipeEnds[0], QSocketNotifier::Read, qApp);
    QObject::connect(notifier, &QSocketNotifier::activated, notifier, [notifier] {
        notifier->setEnabled(false);
        QCoreApplication::quit();
    });
    struct sigaction action = {};
    action.sa_handler = onSignal;
    action.sa_flags = SA_RESTART;
    for (const int number : endSignals) {
        struct sigaction before = {};
        ::sigaction(number, nullptr, &before);
        // nohup lets its program ignore SIGHUP. That SIGINT is ignored may only mean that a script runs the
        // program in the background.
        if (number != SIGHUP || before.sa_handler != SIG_IGN)
            ::sigaction(number, &action, nullptr);
    }
}
