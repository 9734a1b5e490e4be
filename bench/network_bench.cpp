// The second-order iteration's cost on networks of 101, 401 and 1201 parameters (two inputs; 25, 100 and 300
// units) and 1000 or 10000 patterns. Each piece is timed three ways in one run:
//   Fast   the workspace members as the application runs them
//   Plain  the per-pattern loops and the unblocked decomposition with one substitution per column
//   Blas   the same work straight on OpenBLAS: rows built the same way into cblas_dsyrk and cblas_dgemv on a
//          preallocated matrix; LAPACKE dgetrf + dgetri (column-major, no copies) for the inversion
// After the usual table, a second one gives the ratios Fast / Blas and Plain / Fast of each shape.
//
// Run: build-net/bench/vantrel_bench   (about two minutes; --benchmark_filter=Invert etc. for a part)
#include <benchmark/benchmark.h>
#include <cblas.h>
#include <lapacke.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "network/kernels.h"
#include "reference/reference.h"
#include "ratio_reporter.h"
#include "workspace/blocks.h"
#include "workspace/workspace.h"

namespace {

constexpr UINT kInputs = 2;
constexpr double kTryDamping = 0.01;  // the damping of a trial's first try

void Sample(CVantrelDlg& dlg, const benchmark::State& state) {
    const UINT params = static_cast<UINT>(state.range(0));
    const UINT patterns = static_cast<UINT>(state.range(1));
    MakeSample(dlg, {patterns, kInputs, UnitsForParams(params, kInputs), 0, params});
}

// ---- the three accumulations -------------------------------------------------------------------------------

void PlainAccumulate(CVantrelDlg& dlg) {
    ReplaceBlocks(dlg, {Block::Gradient, Block::Hessian, Block::HessianInv}, CountsOf(dlg));
    reference::Accumulate(ViewOf(dlg, false), dlg.m_nParams, dlg.m_pHessian, dlg.m_pGradient);
}

// Upper triangle and gradient into blocks that are already there; the rows as the fast kernel builds them.
struct BlasAccumulator {
    explicit BlasAccumulator(const CVantrelDlg& dlg)
        : net(ViewOf(dlg, false)), n(dlg.m_nParams), ld(kernels::RowWidth(net, n)),
          block(std::min(kernels::kRowBlock, net.nPatterns)), rows(block * ld), errors(block) {}

    void Run(double* hessian, double* gradient) {
        std::fill(gradient, gradient + n, 0.0);
        for (UINT first = 0; first < net.nPatterns; first += block) {
            const UINT count = std::min(block, net.nPatterns - first);
            kernels::FillJacobianRows(net, first, count, rows.data(), ld, errors.data());
            cblas_dgemv(CblasRowMajor, CblasTrans, count, n, 1.0, rows.data(), ld, errors.data(), 1, 1.0, gradient, 1);
            cblas_dsyrk(CblasRowMajor, CblasUpper, CblasTrans, n, count, 1.0, rows.data(), ld, first ? 1.0 : 0.0,
                        hessian, n);
        }
    }

    CNetworkView net;
    int n;
    size_t ld;
    UINT block;
    std::vector<double> rows, errors;
};

void BM_Accumulate_Fast(benchmark::State& state) {
    CVantrelDlg dlg;
    Sample(dlg, state);
    for (auto _ : state) {
        dlg.AccumulateSecondOrder();
        benchmark::DoNotOptimize(dlg.m_pHessian);
    }
}

void BM_Accumulate_Plain(benchmark::State& state) {
    CVantrelDlg dlg;
    Sample(dlg, state);
    for (auto _ : state) {
        PlainAccumulate(dlg);
        benchmark::DoNotOptimize(dlg.m_pHessian);
    }
}

void BM_Accumulate_Blas(benchmark::State& state) {
    CVantrelDlg dlg;
    Sample(dlg, state);
    BlasAccumulator blas(dlg);
    std::vector<double> hessian(static_cast<size_t>(blas.n) * blas.n), gradient(blas.n);
    for (auto _ : state) {
        blas.Run(hessian.data(), gradient.data());
        benchmark::ClobberMemory();
    }
}

// ---- the three inversions, of the sample's damped quasi-Hessian ---------------------------------------------

std::vector<double> DampedQuasiHessian(CVantrelDlg& dlg, const benchmark::State& state) {
    Sample(dlg, state);
    dlg.AccumulateSecondOrder();
    const size_t n = dlg.m_nParams;
    std::vector<double> saved(dlg.m_pHessian, dlg.m_pHessian + n * n);
    for (size_t k = 0; k < n; ++k) saved[k * n + k] += kSampleDamping;
    return saved;
}

// Every variant first restores the matrix that the previous round destroyed.
void BM_Invert_Fast(benchmark::State& state) {
    CVantrelDlg dlg;
    const std::vector<double> saved = DampedQuasiHessian(dlg, state);
    for (auto _ : state) {
        std::copy(saved.begin(), saved.end(), dlg.m_pHessian);
        dlg.InvertHessian();
        benchmark::DoNotOptimize(dlg.m_pHessianInv);
    }
}

void BM_Invert_Plain(benchmark::State& state) {
    CVantrelDlg dlg;
    const std::vector<double> saved = DampedQuasiHessian(dlg, state);
    for (auto _ : state) {
        std::copy(saved.begin(), saved.end(), dlg.m_pHessian);
        reference::Invert(dlg.m_pHessian, dlg.m_nParams, dlg.m_pHessianInv);
        benchmark::DoNotOptimize(dlg.m_pHessianInv);
    }
}

// A symmetric matrix is its own transpose, so the column-major routines take the row-major block as it is.
void LapackInvert(double* a, int n, std::vector<lapack_int>& ipiv, std::vector<double>& work) {
    LAPACKE_dgetrf_work(LAPACK_COL_MAJOR, n, n, a, n, ipiv.data());
    LAPACKE_dgetri_work(LAPACK_COL_MAJOR, n, a, n, ipiv.data(), work.data(), static_cast<lapack_int>(work.size()));
}

std::vector<double> LapackWork(int n) {
    double size = 0.0;
    std::vector<lapack_int> ipiv(n);
    std::vector<double> probe(1);
    LAPACKE_dgetri_work(LAPACK_COL_MAJOR, n, probe.data(), n, ipiv.data(), &size, -1);
    return std::vector<double>(std::max<size_t>(static_cast<size_t>(size), n));
}

void BM_Invert_Blas(benchmark::State& state) {
    CVantrelDlg dlg;
    const std::vector<double> saved = DampedQuasiHessian(dlg, state);
    const int n = dlg.m_nParams;
    std::vector<lapack_int> ipiv(n);
    std::vector<double> work = LapackWork(n);
    for (auto _ : state) {
        std::copy(saved.begin(), saved.end(), dlg.m_pHessianInv);
        LapackInvert(dlg.m_pHessianInv, n, ipiv, work);
        benchmark::DoNotOptimize(dlg.m_pHessianInv);
    }
}

// ---- one whole second-order iteration: accumulate, then one try -----------------------------------------------

// The try after the accumulation: restore the saved quasi-Hessian, damp it, invert, step from m_pDelta, unpack
// and measure the error. invert leaves the inverse in m_pHessianInv; stepBlas chooses cblas_dgemv for the step.
template <typename Invert>
double Try(CVantrelDlg& dlg, const std::vector<double>& saved, Invert invert, bool stepBlas) {
    const int n = dlg.m_nParams;
    std::copy(saved.begin(), saved.end(), dlg.m_pHessian);
    for (int k = 0; k < n; ++k) dlg.m_pHessian[static_cast<size_t>(k) * n + k] += kTryDamping;
    invert();
    if (stepBlas) {
        std::copy(dlg.m_pDelta, dlg.m_pDelta + n, dlg.m_pParams);
        cblas_dgemv(CblasRowMajor, CblasNoTrans, n, n, -1.0, dlg.m_pHessianInv, n, dlg.m_pGradient, 1, 1.0,
                    dlg.m_pParams, 1);
    } else {
        for (int r = 0; r < n; ++r) {
            double sum = 0.0;
            for (int c = 0; c < n; ++c) sum += dlg.m_pHessianInv[static_cast<size_t>(r) * n + c] * dlg.m_pGradient[c];
            dlg.m_pParams[r] = dlg.m_pDelta[r] - sum;
        }
    }
    dlg.UnpackParameters();
    return dlg.ComputeError();
}

// Each round starts from the sample's own parameters, so every round times the same work.
void Restart(CVantrelDlg& dlg, const std::vector<double>& start, std::vector<double>& saved) {
    std::copy(start.begin(), start.end(), dlg.m_pParams);
    dlg.UnpackParameters();
    saved.resize(static_cast<size_t>(dlg.m_nParams) * dlg.m_nParams);
}

void SaveIterationStart(CVantrelDlg& dlg, std::vector<double>& saved) {
    std::copy(dlg.m_pParams, dlg.m_pParams + dlg.m_nParams, dlg.m_pDelta);
    std::copy(dlg.m_pHessian, dlg.m_pHessian + saved.size(), saved.begin());
}

void BM_Iteration_Fast(benchmark::State& state) {
    CVantrelDlg dlg;
    Sample(dlg, state);
    const std::vector<double> start(dlg.m_pParams, dlg.m_pParams + dlg.m_nParams);
    std::vector<double> saved;
    for (auto _ : state) {
        Restart(dlg, start, saved);
        dlg.AccumulateSecondOrder();
        SaveIterationStart(dlg, saved);
        benchmark::DoNotOptimize(Try(dlg, saved, [&] { dlg.InvertHessian(); }, true));
    }
}

void BM_Iteration_Plain(benchmark::State& state) {
    CVantrelDlg dlg;
    Sample(dlg, state);
    const std::vector<double> start(dlg.m_pParams, dlg.m_pParams + dlg.m_nParams);
    std::vector<double> saved;
    for (auto _ : state) {
        Restart(dlg, start, saved);
        PlainAccumulate(dlg);
        SaveIterationStart(dlg, saved);
        auto invert = [&] { reference::Invert(dlg.m_pHessian, dlg.m_nParams, dlg.m_pHessianInv); };
        benchmark::DoNotOptimize(Try(dlg, saved, invert, false));
    }
}

void BM_Iteration_Blas(benchmark::State& state) {
    CVantrelDlg dlg;
    Sample(dlg, state);
    const int n = dlg.m_nParams;
    const std::vector<double> start(dlg.m_pParams, dlg.m_pParams + n);
    std::vector<double> saved;
    BlasAccumulator blas(dlg);
    dlg.AccumulateSecondOrder();  // allocates gradient, quasi-Hessian and inverse once
    std::vector<lapack_int> ipiv(n);
    std::vector<double> work = LapackWork(n);
    for (auto _ : state) {
        Restart(dlg, start, saved);
        blas.Run(dlg.m_pHessian, dlg.m_pGradient);
        kernels::MirrorUpperToLower(dlg.m_pHessian, n);  // the solve needs the whole matrix
        SaveIterationStart(dlg, saved);
        auto invert = [&] {
            std::copy(dlg.m_pHessian, dlg.m_pHessian + saved.size(), dlg.m_pHessianInv);
            LapackInvert(dlg.m_pHessianInv, n, ipiv, work);
        };
        benchmark::DoNotOptimize(Try(dlg, saved, invert, true));
    }
}

// ---- shapes and order ---------------------------------------------------------------------------------------

using BenchmarkFunction = void (*)(benchmark::State&);

struct Variant {
    const char* name;
    BenchmarkFunction function;
    bool plain;
};

// Fast and Blas of one shape run back to back, so that a change in the load of the shared machine touches
// both alike; each is repeated and the median kept. The plain loops run once per shape, for at least the
// minimum time (so the largest shapes, seconds a round, run one round).
void RegisterWork(const char* work, const Variant (&variants)[3], bool inversionOnly) {
    for (int params : {101, 401, 1201}) {
        for (int patterns : {1000, 10000}) {
            if (inversionOnly && patterns != 1000) continue;  // the inversion does not see the patterns
            for (const Variant& variant : variants) {
                const std::string name = std::string("BM_") + work + "_" + variant.name;
                auto* b = benchmark::RegisterBenchmark(name.c_str(), variant.function);
                b->Args({params, patterns})->Unit(benchmark::kMillisecond)->UseRealTime();
                if (variant.plain)
                    b->MinTime(0.2);
                else
                    b->MinTime(0.3)->Repetitions(3)->ReportAggregatesOnly(true);
            }
        }
    }
}

}  // namespace

void RegisterNetworkBenchmarks() {
    RegisterWork("Accumulate",
                 {{"Fast", BM_Accumulate_Fast, false}, {"Blas", BM_Accumulate_Blas, false},
                  {"Plain", BM_Accumulate_Plain, true}},
                 false);
    RegisterWork("Invert",
                 {{"Fast", BM_Invert_Fast, false}, {"Blas", BM_Invert_Blas, false}, {"Plain", BM_Invert_Plain, true}},
                 true);
    RegisterWork("Iteration",
                 {{"Fast", BM_Iteration_Fast, false}, {"Blas", BM_Iteration_Blas, false},
                  {"Plain", BM_Iteration_Plain, true}},
                 false);
}
