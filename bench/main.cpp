// Benchmark entry: the usual console table, then the ratio table of CRatioReporter.
#include <benchmark/benchmark.h>

#include <unistd.h>

#include <QCoreApplication>

#include <cstdio>

#include "engine/blas_setup.h"
#include "ratio_reporter.h"

void RegisterNetworkBenchmarks();  // network_bench.cpp
void RegisterRunBenchmarks();      // run_bench.cpp

int main(int argc, char** argv) {
    engine::StartWithBlasSettings(argv);  // ours and the BLAS-only references alike
    // An application object gives the read-out benchmark the window queue that a run posts into.
    QCoreApplication application(argc, argv);
    RegisterNetworkBenchmarks();
    RegisterRunBenchmarks();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    CRatioReporter reporter(isatty(fileno(stdout)) ? benchmark::ConsoleReporter::OO_Defaults
                                                   : benchmark::ConsoleReporter::OO_Tabular);
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
