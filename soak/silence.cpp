// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "census.h"
#include "commandline.h"
#include "json.h"
#include "site.h"
#include "soak.h"
#include "waiting.h"

#include <QElapsedTimer>
#include <QLoggingCategory>

#include <cstdio>
#include <functional>
#include <malloc.h>

using Backend = ScriptedBackend;

namespace {

void print(const char *when, const Census &census)
{
    std::printf("  %-28s %8d objects %4d descriptors %9.1f kB heap %8.0f kB resident\n", when, census.objects,
                census.descriptors, double(census.heap) / 1024, double(census.resident) / 1024);
}

/*! Sends \a polls polls that the backend keeps, on as many connections as Qt opens. */
void pollInSilence(Site &site, int polls)
{
    site.backend.hold(Backend::Values);
    for (int i = 0; i < polls; ++i)
        site.tick();
    const auto arrived = [&site] { return site.backend.requests(Backend::Values).size() == connectionsOfQt; };
    require(waitFor(arrived), "The backend does not receive six polls.");
}

/*! Polls in silence, which \a end ends, and then compares what the process holds with what it held before. */
void keepSilent(Site &site, int polls, const char *name, const std::function<void()> &end)
{
    std::printf("%d polls in silence, then %s\n", polls, name);
    const Census before = Census::takeSettled();
    print("before", before);
    pollInSilence(site, polls);
    const Census silent = Census::takeSettled();
    print("in silence", silent);
    std::printf("  a poll: %.2f objects, %.0f bytes\n", double(silent.objects - before.objects) / polls,
                double(silent.heap - before.heap) / polls);

    QElapsedTimer timer;
    timer.start();
    end();
    const auto answered = [&] {
        return !site.gateway() || site.backend.requests(Backend::Values).size() >= polls;
    };
    require(waitFor(answered), "The backend does not receive all polls.");
    std::printf("  took %lld ms\n", timer.elapsed());
    site.log.clear();
    Census::takeSettled();
    site.backend.forgetRequests(); // only now: Qt may have sent some of them again
    const Census after = Census::take();
    print(name, after);
    malloc_trim(0);
    print("less the allocator's reserve", Census::take());
    const qint64 heapAllowance = (silent.heap - before.heap) / 40; // tables that have grown keep their size
    require(after.objects <= before.objects && after.descriptors <= before.descriptors
                && after.heap - before.heap < heapAllowance,
            "The process holds more than before.");
}

} // namespace

void soakInSilence(const QStringList &arguments)
{
    // clang-format off
    CommandLine line("Measures what polls cost while the backend accepts and never answers.", {
        {"polls", "The number of polls without an answer, at least 1800 (an hour).", "N", "1800"},
        {"wallboxes", "Wallboxes, 32 at most.", "N", "4"},
    });
    // clang-format on
    line.read(arguments);
    const int polls = line.wholeNumber("polls", 1800, 1000000);
    QLoggingCategory::setFilterRules("Vela.debug=false");
    Site site;
    for (int i = 1; i <= line.wholeNumber("wallboxes", 1, 32); ++i) {
        site.backend.setWallbox(numberedId(i), 16);
        site.backend.values.insert(numberedId(i), json(R"({"status": "Charging"})"));
    }
    const QString error = site.addGateway();
    require(error.isEmpty(), error);
    pollInSilence(site, connectionsOfQt); // from now on, all possible connections exist
    site.backend.releaseAll(Backend::Values);
    site.backend.forgetRequests();
    keepSilent(site, polls, "the backend answers", [&site] { site.backend.releaseAll(Backend::Values); });
    keepSilent(site, polls, "the backend is restarted", [&site] {
        site.backend.answerNormally(Backend::Values);
        site.backend.shutDown();
        site.backend.startUp();
    });
    keepSilent(site, polls, "the gateway is removed", [&site] { site.remove(site.gateway()); });
}
