// Whole training runs as a user starts them, on the thread of the benchmark and without a window: the cost
// of an iteration with everything around it. Each runs on all cores (Fast) and on one (One).
//   FirstOrderRun/units/patterns/iterations        a first-order run of one trial
//   ErrorCorrectionRun/units/patterns/iterations   an Error Correction run up to that many units, each unit
//                                                  trained for that many iterations; its Blas variant is the
//                                                  BLAS-only bound of the same run (errorcorrection_bound.cpp)
// Two inputs, from the sample maker. VANTREL_BENCH_EC_ITERATIONS sets the iterations per unit of the Error
// Correction run (default 20; the application's default is 200, which takes minutes).
#include <benchmark/benchmark.h>

#include <cstdlib>
#include <vector>

#include "bench_cores.h"
#include "reference/dialogsample.h"
#include "workspace/workspace.h"

namespace {

constexpr UINT kInputs = 2;

void Prepare(CVantrelDlg& dlg, UINT units, UINT patterns, int algorithm) {
    MakeSample(dlg, {patterns, kInputs, units, algorithm, 7});
    dlg.m_bDataLoaded = true;
    dlg.m_bNetworkReady = true;
    dlg.m_bSaveResults = 0;
    dlg.m_nTrials = 1;
    dlg.m_dDesiredError = 0.0;  // never reached: every run does all its work
    dlg.m_dlgInitialization.m_nLoadFromFile = 1;  // the sample's network, not a draw seeded by the clock
}

void FirstOrderRun(benchmark::State& state, int cores) {
    CVantrelDlg dlg;
    Prepare(dlg, static_cast<UINT>(state.range(0)), static_cast<UINT>(state.range(1)), 3);
    dlg.m_nIterations = static_cast<UINT>(state.range(2));
    dlg.m_dLearningConstant = 1e-5;
    const std::vector<double> start(dlg.m_pParams, dlg.m_pParams + dlg.m_nParams);
    CBenchCores use(cores);
    for (auto _ : state) {
        std::copy(start.begin(), start.end(), dlg.m_pParams);
        dlg.UnpackParameters();
        dlg.m_bTraining = true;
        benchmark::DoNotOptimize(TrainFirstOrder(&dlg));
    }
}

void ErrorCorrectionRun(benchmark::State& state, int cores) {
    CVantrelDlg dlg;
    Prepare(dlg, 0, static_cast<UINT>(state.range(1)), 2);
    dlg.m_nMaxUnits = static_cast<UINT>(state.range(0));
    dlg.m_nIterations = static_cast<UINT>(state.range(2));
    CBenchCores use(cores);
    for (auto _ : state) {
        dlg.m_bTraining = true;
        benchmark::DoNotOptimize(TrainByErrorCorrection(&dlg));
    }
}

long ErrorCorrectionIterations() {
    const char* text = std::getenv("VANTREL_BENCH_EC_ITERATIONS");
    const long value = text ? std::atol(text) : 0;
    return value > 0 ? value : 20;
}

}  // namespace

void ErrorCorrectionBound(benchmark::State& state);  // errorcorrection_bound.cpp

void RegisterRunBenchmarks() {
    for (int cores : {0, 1}) {
        const char* suffix = cores == 0 ? "_Fast" : "_One";
        benchmark::RegisterBenchmark((std::string("BM_FirstOrderRun") + suffix).c_str(), FirstOrderRun, cores)
            ->Args({50, 10000, 20})->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(0.5)
            ->Repetitions(3)->ReportAggregatesOnly(true);
        benchmark::RegisterBenchmark((std::string("BM_ErrorCorrectionRun") + suffix).c_str(), ErrorCorrectionRun,
                                     cores)
            ->Args({100, 2000, ErrorCorrectionIterations()})->Unit(benchmark::kMillisecond)->UseRealTime()
            ->Iterations(1);
    }
    benchmark::RegisterBenchmark("BM_ErrorCorrectionRun_Blas", ErrorCorrectionBound)
        ->Args({100, 2000, ErrorCorrectionIterations()})->Unit(benchmark::kMillisecond)->UseManualTime()
        ->Iterations(1);
}
