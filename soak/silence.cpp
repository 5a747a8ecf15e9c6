// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "census.h"
#include "site.h"
#include "waiting.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QLoggingCategory>

#include <cstdio>
#include <cstdlib>
#include <malloc.h>

using Backend = ScriptedBackend;

namespace {

/*! How a silence may end. Answered means that every request has found an answer. */
struct End
{
    const char *name;
    void (*bring)(Site &site);
    bool answered;
};

const End ends[] = {
    {"the backend answers",      [](Site &site) { site.backend.releaseAll(Backend::Values); }, true },
    {"the backend is restarted",
     [](Site &site) {
         site.backend.answerNormally(Backend::Values);
         site.backend.shutDown();
         site.backend.startUp();
     },                                                                                        true },
    {"the gateway is removed",   [](Site &site) { site.remove(site.gateway()); },              false},
};

void print(const char *when, const Census &census)
{
    std::printf("  %-28s %8d objects %4d descriptors %9.1f kB heap %8.0f kB resident\n", when, census.objects,
                census.descriptors, double(census.heap) / 1024, double(census.resident) / 1024);
}

/*! Polls in silence, then ends it; whether the process then holds as much as before. */
bool keepSilent(Site &site, int polls, const End &end)
{
    const Census before = Census::takeSettled();
    print("before", before);
    site.backend.hold(Backend::Values);
    for (int i = 0; i < polls; ++i)
        site.tick();
    const bool arrived = waitFor([&site] { return site.backend.requests(Backend::Values).size() == 6; });
    const Census silent = Census::takeSettled();
    print("in silence", silent);
    std::printf("  a poll: %.2f objects, %.0f bytes\n", double(silent.objects - before.objects) / polls,
                double(silent.heap - before.heap) / polls);

    QElapsedTimer timer;
    timer.start();
    end.bring(site);
    const bool answered = !end.answered
        || waitFor([&site, polls] { return site.backend.requests(Backend::Values).size() >= polls; });
    const qint64 milliseconds = timer.elapsed();
    site.log.clear();
    Census::takeSettled();
    site.backend.forgetRequests(); // also those that Qt has sent again
    const Census after = Census::take();
    print(end.name, after);
    malloc_trim(0);
    print("less the allocator's reserve", Census::take());
    std::printf("  took %lld ms\n", static_cast<long long>(milliseconds));
    const qint64 heapAllowance = (silent.heap - before.heap) / 40; // tables that have grown keep their size
    return arrived && answered && after.objects <= before.objects && after.descriptors <= before.descriptors
        && after.heap - before.heap < heapAllowance;
}

/*! Six requests at once, once: from then on there are as many connections as there can be. */
bool useAllConnections(Site &site)
{
    site.backend.hold(Backend::Values);
    for (int i = 0; i < 6; ++i)
        site.tick();
    const bool arrived = waitFor([&site] { return site.backend.requests(Backend::Values).size() == 6; });
    site.backend.releaseAll(Backend::Values);
    site.backend.forgetRequests();
    return arrived;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription("Measures what polls cost while the backend accepts and never answers.");
    const QCommandLineOption polls("polls", "Polls in silence; 1800 are an hour.", "N", "1800");
    const QCommandLineOption wallboxes("wallboxes", "How many wallboxes.", "N", "4");
    parser.addOptions({polls, wallboxes});
    parser.addHelpOption();
    parser.process(app);

    QLoggingCategory::setFilterRules("Vela.debug=false");
    Site site;
    for (int i = 1; i <= parser.value(wallboxes).toInt(); ++i) {
        site.backend.setWallbox(QString("EVSE-%1").arg(i, 2, 10, QChar('0')), 16);
        site.backend.setStatus(QString("EVSE-%1").arg(i, 2, 10, QChar('0')), "Charging");
    }
    bool good = site.addGateway().isEmpty();
    site.backend.forgetRequests();
    good = good && useAllConnections(site);
    for (const End &end : ends) {
        std::printf("%s polls in silence, then %s\n", qPrintable(parser.value(polls)), end.name);
        good = good && keepSilent(site, parser.value(polls).toInt(), end);
    }
    std::printf("%s\n", good ? "all has been given back" : "something is still held");
    return good ? EXIT_SUCCESS : EXIT_FAILURE;
}
