// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "soak.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace {

constexpr int compared = 3; // tenths at either end
// From one end to the other. A leak of 16 bytes a poll is beyond that in the short form already.
constexpr qint64 heapAllowance = qint64(32) * 1024;
constexpr qint64 residentAllowance = qint64(1024) * 1024;

/*! By how much even the least of the last tenths is above the greatest of the first ones. A single census may
    catch buffers that come and go, some 50 kB of them; what leaks is still there in the next. */
qint64 growthOf(const QVector<Census> &tenths, qint64 Census::*amount)
{
    const auto less = [amount](const Census &a, const Census &b) { return a.*amount < b.*amount; };
    const int few = qMin(compared, tenths.size());
    const auto greatest = std::max_element(tenths.cbegin(), tenths.cbegin() + few, less);
    const auto least = std::min_element(tenths.cend() - few, tenths.cend(), less);
    return (*least).*amount - (*greatest).*amount;
}

QString growth(const char *when, const QVector<Census> &tenths)
{
    const Census &first = tenths.constFirst();
    const bool sameCounts = std::all_of(tenths.cbegin(), tenths.cend(), [&first](const Census &tenth) {
        return tenth.objects == first.objects && tenth.descriptors == first.descriptors;
    });
    if (sameCounts && growthOf(tenths, &Census::heap) <= heapAllowance
        && growthOf(tenths, &Census::resident) <= residentAllowance)
        return QString();
    return QString("While %1 the process holds more and more").arg(when);
}

void print(const char *when, const QVector<Census> &tenths)
{
    std::printf("%-8s tenth   objects  descriptors   heap kB  resident kB\n", when);
    for (int i = 0; i < tenths.size(); ++i)
        std::printf("%14d %9d %12d %9.1f %12.0f\n", i + 1, tenths[i].objects, tenths[i].descriptors,
                    double(tenths[i].heap) / 1024, double(tenths[i].resident) / 1024);
}

void print(const Soak &soak, qint64 milliseconds)
{
    const Soak::Figures &figures = soak.figures();
    std::printf("%d polls of 32 wallboxes in %.0f s, %d of them failed; %d lives\n", figures.polls,
                double(milliseconds) / 1000, figures.failedPolls, figures.lives);
    std::printf("%d actions, %d requests with limits, %d lost to faults; limits renewed %d times\n",
                figures.actions, figures.limits, figures.lostLimits, figures.renewals);
    std::printf("limits due in silence, and not sent: %d times\n", figures.silentRenewals);
    std::printf("%d sessions; faults:", soak.yard().sessions());
    for (auto it = figures.faults.cbegin(); it != figures.faults.cend(); ++it)
        std::printf(" %s %d;", qPrintable(it.key()), it.value());
    std::printf(
        "\n%d replies came after that of a later poll; sessions drew %.3f kWh, totals grew by %.3f kWh\n",
        figures.overtaken, soak.yard().drawn(), soak.yard().counted());
    print("working", figures.working);
    print("resting", figures.resting);
}

} // namespace

int main(int argc, char **argv)
{
    // The daemon stores its things after each poll.
    if (qEnvironmentVariableIsEmpty("TMPDIR") && QFileInfo("/dev/shm").isWritable())
        qputenv("TMPDIR", "/dev/shm");
    QCoreApplication app(argc, argv);
    QCommandLineParser parser;
    parser.setApplicationDescription(
        "Polls the plugin as fast as it can, and judges what it does and holds.");
    const QCommandLineOption polls("polls", "How often to poll, at least.", "N", "200000");
    const QCommandLineOption seed("seed", "What happens at random is the same for the same number.", "N",
                                  "1");
    parser.addOptions({polls, seed});
    parser.addHelpOption();
    parser.process(app);

    std::printf("seed %s, storage below %s\n", qPrintable(parser.value(seed)), qPrintable(QDir::tempPath()));
    QElapsedTimer timer;
    timer.start();
    Soak soak(parser.value(polls).toInt(), parser.value(seed).toUInt());
    QString error = soak.run();
    print(soak, timer.elapsed());
    if (error.isEmpty())
        error = growth("working", soak.figures().working);
    if (error.isEmpty())
        error = growth("resting", soak.figures().resting);
    std::printf("%s\n", error.isEmpty() ? "all as it must be" : qPrintable(error));
    return error.isEmpty() ? EXIT_SUCCESS : EXIT_FAILURE;
}
