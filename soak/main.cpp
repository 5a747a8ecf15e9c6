// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "soak.h"

#include "commandline.h"

#include <QCoreApplication>

#include <csignal>
#include <cstdio>
#include <map>
#include <stdexcept>

namespace {

volatile std::sig_atomic_t endSignal = 0; // that has been received

}

void require(bool holds, const QString &finding)
{
    if (endSignal != 0) // the destructors end the simulator and remove the storage
        throw std::runtime_error("ended by a signal");
    if (!holds)
        throw std::runtime_error(finding.toStdString());
}

/*! vela-soak polls|silence|kills [OPTION...]; --help after the mode lists its options. */
int main(int argc, char **argv)
{
    static const std::map<QString, void (*)(const QStringList &)> modes{
        {"polls",   soakWithPolls},
        {"silence", soakInSilence},
        {"kills",   soakWithKills},
    };
    const QCoreApplication app(argc, argv);
    for (const int number : {SIGINT, SIGTERM, SIGHUP})
        std::signal(number, [](int received) { endSignal = received; });
    const auto mode = modes.find(QCoreApplication::arguments().value(1));
    if (mode == modes.end())
        endWithUsageError("the first argument is polls, silence or kills");
    try {
        mode->second(QCoreApplication::arguments().mid(1));
    } catch (const std::runtime_error &finding) {
        std::fflush(stdout);
        std::fprintf(stderr, "FOUND: %s\n", finding.what());
        return Failed;
    }
    std::printf("nothing found\n");
    return Succeeded;
}
