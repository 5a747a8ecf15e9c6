// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

// Repeats one workload and prints what that took. To count instructions, run it under callgrind with two numbers of
// repetitions: the start-up cancels out in the difference.

#include "replies.h"
#include "workload.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QLoggingCategory>

#include <chrono>
#include <cstdio>
#include <sys/resource.h>
#include <thread>

namespace {

/*! User and system time of this process so far, in µs. */
qint64 processorTime(const rusage &usage)
{
    return (usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) * 1000000LL + usage.ru_utime.tv_usec
        + usage.ru_stime.tv_usec;
}

/*! Repeats \a workload, with a \a pause in ms after each, and prints what each has taken. */
void repeat(const std::function<void()> &workload, int repetitions, int pause)
{
    rusage before{};
    getrusage(RUSAGE_SELF, &before);
    QElapsedTimer timer;
    qint64 wallTime = 0; // in ns
    for (int i = 0; i < repetitions; ++i) {
        timer.start();
        workload();
        wallTime += timer.nsecsElapsed();
        if (pause > 0) // so that caches get cold, as between real polls
            std::this_thread::sleep_for(std::chrono::milliseconds(pause));
    }
    rusage after{};
    getrusage(RUSAGE_SELF, &after);
    std::printf("%lld us processor time, %lld us wall time each, %ld kB resident\n",
                (processorTime(after) - processorTime(before)) / repetitions, wallTime / 1000 / repetitions,
                after.ru_maxrss);
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    QLoggingCategory::setFilterRules("*.debug=false");
    const QStringList arguments = QCoreApplication::arguments();
    const QString name = arguments.value(1);
    const int wallboxes = arguments.value(2).toInt();
    const QString report = arguments.value(3);
    if (name == "backend")
        return runBackend(wallboxes, report);
    if (!workloads().contains(name) || wallboxes <= 0 || !reports().contains(report)
        || arguments.value(4).toInt() <= 0) {
        std::fprintf(stderr, "usage: vela-bench %s WALLBOXES %s REPETITIONS [PAUSE-MS]\n",
                     qPrintable(workloads().join('|')), qPrintable(reports().join('|')));
        return 2;
    }
    repeat(makeWorkload(name, wallboxes, report), arguments.value(4).toInt(), arguments.value(5).toInt());
    return 0;
}
