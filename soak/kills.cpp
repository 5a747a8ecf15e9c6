// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "commandline.h"
#include "killedhosts.h"
#include "soak.h"

#include <QProcess>

#include <cstdio>

void soakWithKills(const QStringList &arguments)
{
    // clang-format off
    CommandLine line("Kills the host at random moments, and checks what the next one finds.", {
        {"kills", "How often to kill.", "N", "200"},
        {"seed", "The same number gives the same moments, as far as possible.", "N", "1"},
        {"nearly-full", "Use a file system of 64 kB that is nearly full for about half of the hosts. Needs root."},
    });
    // clang-format on
    line.read(arguments);
    const int kills = line.wholeNumber("kills", 1, 1000000);
    QProcess simulator;
    simulator.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    // The simulator ends with this process, even if that is killed.
    simulator.start("setpriv",
                    {"--pdeathsig=KILL", VELA_SIMULATOR, "--port=0", "--speed=600",
                     "--wallboxes=" + QString::number(KilledHosts::wallboxCount)});
    require(simulator.waitForReadyRead(), "The simulator does not start.");
    KilledHosts hosts(simulator.readLine().trimmed(), unsigned(line.wholeNumber("seed", 0, 1000000)));
    if (line.isSet("nearly-full"))
        hosts.mountSmallDisk();
    for (int i = 0; i < kills; ++i)
        hosts.killOne();
    hosts.lastStart();
    simulator.terminate();
    require(simulator.waitForFinished() && simulator.exitStatus() == QProcess::NormalExit
                && simulator.exitCode() == 0,
            "The simulator fails at its end.");
    for (auto it = hosts.counts.cbegin(); it != hosts.counts.cend(); ++it)
        std::printf("%6d %s\n", it.value(), qPrintable(it.key()));
}
