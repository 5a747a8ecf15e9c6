// SPDX-FileCopyrightText: 2026 The Vela authors
// SPDX-License-Identifier: MIT

// Wall times of the workloads, by Google Benchmark. A busy machine shows in them; instructions are steadier.

#include "workload.h"

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QLoggingCategory>

namespace {

void repeat(benchmark::State &state, const QString &name, Yard yard)
{
    const auto workload = makeWorkload(name, int(state.range(0)), yard);
    for ([[maybe_unused]] const auto step : state)
        workload->run();
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void registerWorkload(const QString &name, Yard yard)
{
    const QString title = name + QLatin1Char('/') + nameOf(yard);
    benchmark::RegisterBenchmark(title.toUtf8().constData(), repeat, name, yard)
        ->ArgName("wallboxes")
        ->Arg(4)
        ->Arg(32)
        ->Arg(1000)
        ->Unit(benchmark::kMicrosecond)
        ->UseRealTime();
}

} // namespace

int main(int argc, char *argv[])
{
    benchmark::Initialize(&argc, argv);
    const QCoreApplication application(argc, argv);
    QLoggingCategory::setFilterRules(QStringLiteral("*.debug=false"));
    const QStringList names = workloadNames();
    for (const Yard yard : {Yard::Still, Yard::Mixed, Yard::Charging}) {
        for (const QString &name : names)
            registerWorkload(name, yard);
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
}
