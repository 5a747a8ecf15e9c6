// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

#include "soak.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>

#include <cstdio>
#include <cstdlib>

namespace {

// Between the first tenth and the last. A leak of one object in a hundred polls is beyond that.
constexpr qint64 heapAllowance = 64 * 1024;
constexpr qint64 residentAllowance = 2 * 1024 * 1024;

QString growth(const char *when, const QVector<Census> &tenths)
{
    const Census &first = tenths.first();
    for (const Census &tenth : tenths) {
        if (tenth.objects != first.objects || tenth.descriptors != first.descriptors
            || tenth.heap - first.heap > heapAllowance || tenth.resident - first.resident > residentAllowance)
            return QString("While %1 the process holds more than in the first tenth").arg(when);
    }
    return QString();
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
    std::printf("%d sessions; faults:", soak.sessions());
    for (auto it = figures.faults.cbegin(); it != figures.faults.cend(); ++it)
        std::printf(" %s %d;", qPrintable(it.key()), it.value());
    std::printf("\n");
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
