// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "commandline.h"
#include "killedhosts.h"
#include "simulatorprocess.h"
#include "soak.h"

#include <cstdio>

void soakWithKills(const QStringList &arguments)
{
    const auto *const nearlyFull = "On a file system of 64 kB, nearly full in every other life; takes root.";
    CommandLine line("Kills the host at random moments, and checks what the next one finds.",
                     {
                         {"kills",       "How often to kill.",                  "N",     "200"  },
                         {"seed",        "The same moments, as far as may be.", "N",     "1"    },
                         {"nearly-full", nearlyFull,                            nullptr, nullptr},
    });
    line.read(arguments);
    const int kills = line.wholeNumber("kills", 1, 1000000);
    const SimulatorProcess simulator(
        {"--speed", "600", "--wallboxes", QString::number(KilledHosts::wallboxCount)});
    KilledHosts hosts(simulator.url().toString(), unsigned(line.wholeNumber("seed", 0, 1000000)));
    if (line.isSet("nearly-full"))
        hosts.mountSmallDisk();
    for (int i = 0; i < kills; ++i)
        hosts.live();
    hosts.lastStart();
    for (auto it = hosts.counts.cbegin(); it != hosts.counts.cend(); ++it)
        std::printf("%6d %s\n", it.value(), qPrintable(it.key()));
}
