// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "commandline.h"
#include "polledplugin.h"
#include "soak.h"

#include <QFileInfo>
#include <QLoggingCategory>

#include <algorithm>
#include <cstdio>

namespace {

/*! By how much the least of the last ten censuses is above the greatest of the first ten. A single one may
    include some 50 kB of buffers that are freed later; a leak is in all later ones. */
qint64 growthOf(const QVector<Census> &censuses, qint64 Census::*amount)
{
    constexpr int compared = 10;
    const auto less = [amount](const Census &a, const Census &b) { return a.*amount < b.*amount; };
    const auto greatest = std::max_element(censuses.cbegin(), censuses.cbegin() + compared, less);
    const auto least = std::min_element(censuses.cend() - compared, censuses.cend(), less);
    return (*least).*amount - (*greatest).*amount;
}

void checkGrowth(const char *when, const QVector<Census> &censuses)
{
    // For the whole run. Even in the short form, a leak of 16 bytes in each poll exceeds this.
    constexpr qint64 heapAllowance = qint64(32) * 1024;
    constexpr qint64 residentAllowance = qint64(1024) * 1024;
    std::printf("%s   objects  descriptors   heap kB  resident kB\n", when);
    for (int i = 0; i < censuses.size(); i += 4)
        std::printf("%17d %12d %9.1f %12.0f\n", censuses[i].objects, censuses[i].descriptors,
                    double(censuses[i].heap) / 1024, double(censuses[i].resident) / 1024);
    const bool sameCounts = std::all_of(censuses.cbegin(), censuses.cend(), [&](const Census &census) {
        return census.objects == censuses[0].objects && census.descriptors == censuses[0].descriptors;
    });
    require(sameCounts && growthOf(censuses, &Census::heap) <= heapAllowance
                && growthOf(censuses, &Census::resident) <= residentAllowance,
            "The process holds more at the end than at the beginning.");
}

} // namespace

void soakWithPolls(const QStringList &arguments)
{
    // clang-format off
    CommandLine line("Polls the plugin as fast as the answers come, and checks what it does and holds.", {
        {"polls", "The least number of polls.", "N", "200000"},
        {"seed", "With the same number, the same random events occur.", "N", "1"},
    });
    // clang-format on
    line.read(arguments);
    // The daemon stores its things after each poll.
    if (qEnvironmentVariableIsEmpty("TMPDIR") && QFileInfo("/dev/shm").isWritable())
        qputenv("TMPDIR", "/dev/shm");
    QLoggingCategory::setFilterRules("Vela.debug=false");
    PolledPlugin plugin(unsigned(line.wholeNumber("seed", 0, 1000000)));
    constexpr int runs = 40;
    const int pollsPerRun = line.wholeNumber("polls", 400, 100000000) / runs;
    for (int i = 0; i < runs; ++i)
        plugin.run(pollsPerRun);
    for (auto it = plugin.counts.cbegin(); it != plugin.counts.cend(); ++it)
        std::printf("%9.0f %s\n", it.value(), qPrintable(it.key()));
    checkGrowth("working", plugin.working);
    checkGrowth("resting", plugin.resting);
}
