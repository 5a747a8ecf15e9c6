// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

// Repeats one workload and says what that took. For counting instructions, run it under callgrind with two
// numbers of repetitions: in the difference its start-up cancels.

#include "workload.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QFile>
#include <QLoggingCategory>
#include <QTextStream>
#include <QTimer>

#include <chrono>

#include <sys/resource.h>

namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;

/*! Processor time of this process so far, its own and the kernel's for it. */
microseconds processorTime()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return std::chrono::seconds(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec)
        + microseconds(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec);
}

/*! Resident memory of this process in kB, from a line like "VmRSS:    12345 kB". */
int residentMemory()
{
    QFile status(QStringLiteral("/proc/self/status"));
    if (!status.open(QIODevice::ReadOnly))
        return 0;
    const QList<QByteArray> lines = status.readAll().split('\n');
    for (const QByteArray &line : lines) {
        if (line.startsWith("VmRSS:"))
            return line.simplified().split(' ').value(1).toInt();
    }
    return 0;
}

void wait(milliseconds duration)
{
    QEventLoop loop;
    QTimer::singleShot(duration, Qt::PreciseTimer, &loop, &QEventLoop::quit);
    loop.exec();
}

/*! Runs \a workload \a repetitions times, with \a pause after each, and prints what that took. */
void repeat(Workload &workload, int repetitions, milliseconds pause)
{
    const microseconds before = processorTime();
    for (int i = 0; i < repetitions; ++i) {
        workload.run();
        if (pause.count() > 0)
            wait(pause);
    }
    const microseconds spent = processorTime() - before;
    QTextStream(stdout) << spent.count() / qMax(1, repetitions) << " us each, " << residentMemory()
                        << " kB resident, " << workload.connections() << " connections\n";
}

} // namespace

int main(int argc, char *argv[])
{
    const QCoreApplication application(argc, argv);
    QLoggingCategory::setFilterRules(QStringLiteral("*.debug=false"));
    const QStringList arguments = QCoreApplication::arguments();
    const std::optional<Yard> yard = yardNamed(arguments.value(3));
    const auto workload =
        yard ? makeWorkload(arguments.value(1), arguments.value(2).toInt(), *yard) : nullptr;
    if (!workload) {
        QTextStream(stderr) << "usage: vela-bench-repeat WORKLOAD WALLBOXES still|mixed|charging REPETITIONS "
                               "[PAUSE-MS]\nworkloads: "
                            << workloadNames().join(QLatin1Char(' ')) << '\n';
        return 2;
    }
    repeat(*workload, arguments.value(4).toInt(), milliseconds(arguments.value(5).toInt()));
    return 0;
}
