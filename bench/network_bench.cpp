// The second-order iteration's cost on networks of 101, 401 and 1201 parameters (two inputs; 25, 100 and 300
// units) and 1000 or 10000 patterns, against the practical limit of the same work on the optimised BLAS:
//   Fast  the workspace members as the application runs them, on all cores
//   One   the same on one core
//   Blas  the BLAS alone on prebuilt data, with its own default threads:
//         Accumulate  cblas_dsyrk of a Jacobian of the same shape, built beforehand
//         Iteration   that, plus LAPACKE dgetrf + dgetrs of the damped matrix (copied first, as every try does)
//         Invert      LAPACKE dgetrf + dgetri
// Fast's Iteration is the damped step of the run itself: one accumulation and one try (factor, solve, step,
// forward pass). After the usual table, a second one gives the ratios Fast / Blas and One / Fast.
//
// Run: build/bench/vantrel_bench   (a few minutes; --benchmark_filter=Iteration etc. for a part)
#include <benchmark/benchmark.h>
#include <cblas.h>
#include <lapacke.h>

#include <algorithm>
#include <limits>
#include <string>
#include <vector>

#include "bench_cores.h"
#include "network/kernels.h"
#include "reference/samples.h"
#include "training/training.h"
#include "workspace/workspace.h"

namespace {

constexpr UINT kInputs = 2;
constexpr double kTryDamping = 0.01;  // the damping of a trial's first try

void Sample(CVantrelDlg& dlg, const benchmark::State& state) {
    const UINT params = static_cast<UINT>(state.range(0));
    const UINT patterns = static_cast<UINT>(state.range(1));
    MakeSample(dlg, {patterns, kInputs, UnitsForParams(params, kInputs), 0, params});
}

// The whole transposed Jacobian of the sample, one row per parameter, and its errors.
struct CPrebuiltJacobian {
    explicit CPrebuiltJacobian(const CVantrelDlg& dlg)
        : n(static_cast<int>(dlg.m_nParams)), patterns(static_cast<int>(dlg.m_nPatterns)),
          rows(static_cast<size_t>(n) * patterns), errors(patterns) {
        kernels::FillJacobianTransposed(ViewOf(dlg, false), 0, dlg.m_nPatterns, rows.data(), patterns,
                                        errors.data());
    }
    void Syrk(double* hessian) const {
        cblas_dsyrk(CblasRowMajor, CblasUpper, CblasNoTrans, n, patterns, 1.0, rows.data(), patterns, 0.0, hessian,
                    n);
    }
    int n, patterns;
    std::vector<double> rows, errors;
};

// ---- accumulation -----------------------------------------------------------------------------------------

void Accumulate(benchmark::State& state, int cores) {
    CVantrelDlg dlg;
    Sample(dlg, state);
    CBenchCores use(cores);
    for (auto _ : state) {
        dlg.AccumulateSecondOrder();
        benchmark::DoNotOptimize(dlg.m_pHessian);
    }
}

void BM_Accumulate_Fast(benchmark::State& state) { Accumulate(state, 0); }
void BM_Accumulate_One(benchmark::State& state) { Accumulate(state, 1); }

void BM_Accumulate_Blas(benchmark::State& state) {
    CVantrelDlg dlg;
    Sample(dlg, state);
    const CPrebuiltJacobian jacobian(dlg);
    std::vector<double> hessian(static_cast<size_t>(jacobian.n) * jacobian.n);
    for (auto _ : state) {
        jacobian.Syrk(hessian.data());
        benchmark::ClobberMemory();
    }
}

// ---- inversion of the sample's damped quasi-Hessian -----------------------------------------------------------

std::vector<double> DampedQuasiHessian(CVantrelDlg& dlg, const benchmark::State& state) {
    Sample(dlg, state);
    dlg.AccumulateSecondOrder();
    const size_t n = dlg.m_nParams;
    std::vector<double> saved(dlg.m_pHessian, dlg.m_pHessian + n * n);
    for (size_t k = 0; k < n; ++k) saved[k * n + k] += kSampleDamping;
    return saved;
}

void BM_Invert_Fast(benchmark::State& state) {
    CVantrelDlg dlg;
    const std::vector<double> saved = DampedQuasiHessian(dlg, state);
    for (auto _ : state) {
        std::copy(saved.begin(), saved.end(), dlg.m_pHessian);  // the previous round destroyed it
        dlg.InvertHessian();
        benchmark::DoNotOptimize(dlg.m_pHessianInv);
    }
}

// A symmetric matrix is its own transpose, so the column-major routines take the row-major block as it is.
void BM_Invert_Blas(benchmark::State& state) {
    CVantrelDlg dlg;
    const std::vector<double> saved = DampedQuasiHessian(dlg, state);
    const int n = dlg.m_nParams;
    std::vector<lapack_int> ipiv(n);
    double size = 0.0;
    LAPACKE_dgetri_work(LAPACK_COL_MAJOR, n, dlg.m_pHessianInv, n, ipiv.data(), &size, -1);
    std::vector<double> work(std::max<size_t>(static_cast<size_t>(size), n));
    for (auto _ : state) {
        std::copy(saved.begin(), saved.end(), dlg.m_pHessianInv);
        LAPACKE_dgetrf_work(LAPACK_COL_MAJOR, n, n, dlg.m_pHessianInv, n, ipiv.data());
        LAPACKE_dgetri_work(LAPACK_COL_MAJOR, n, dlg.m_pHessianInv, n, ipiv.data(), work.data(),
                            static_cast<lapack_int>(work.size()));
        benchmark::DoNotOptimize(dlg.m_pHessianInv);
    }
}

// ---- one whole second-order iteration ---------------------------------------------------------------------------

// The operations of the run's damped step; a previous error of infinity makes the first try succeed, so each
// round is one accumulation and one try.
const training::DampedStepOps kOps{[](CVantrelDlg& dlg) { dlg.AccumulateSecondOrder(); },
                                   [](CVantrelDlg& dlg, double* x) { dlg.SolveHessian(x); },
                                   [](CVantrelDlg& dlg) {
                                       dlg.UnpackParameters();
                                       return dlg.ComputeError();
                                   }};

void Iteration(benchmark::State& state, int cores) {
    CVantrelDlg dlg;
    Sample(dlg, state);
    const size_t n = dlg.m_nParams;
    const std::vector<double> start(dlg.m_pParams, dlg.m_pParams + n);
    std::vector<double> saved(n * n);
    CBenchCores use(cores);
    for (auto _ : state) {
        std::copy(start.begin(), start.end(), dlg.m_pParams);  // every round times the same work
        dlg.UnpackParameters();
        const training::DampedStepResult step = training::DampedIteration(
            dlg, kOps, saved.data(), std::numeric_limits<double>::infinity(), kTryDamping);
        benchmark::DoNotOptimize(step.error);
    }
}

void BM_Iteration_Fast(benchmark::State& state) { Iteration(state, 0); }
void BM_Iteration_One(benchmark::State& state) { Iteration(state, 1); }

void BM_Iteration_Blas(benchmark::State& state) {
    CVantrelDlg dlg;
    Sample(dlg, state);
    const CPrebuiltJacobian jacobian(dlg);
    const int n = jacobian.n;
    std::vector<double> hessian(static_cast<size_t>(n) * n), factors(hessian.size()), step(n);
    std::vector<lapack_int> ipiv(n);
    // The product writes the upper triangle only; the lower one, mirrored once here, stays the same.
    jacobian.Syrk(hessian.data());
    kernels::MirrorUpperToLower(hessian.data(), n);
    for (auto _ : state) {
        jacobian.Syrk(hessian.data());
        std::copy(hessian.begin(), hessian.end(), factors.begin());
        for (int k = 0; k < n; ++k) factors[static_cast<size_t>(k) * n + k] += kTryDamping;
        std::fill(step.begin(), step.end(), 1.0);
        // A symmetric matrix is its own transpose: the column-major routines take the row-major block as it is.
        LAPACKE_dgetrf_work(LAPACK_COL_MAJOR, n, n, factors.data(), n, ipiv.data());
        LAPACKE_dgetrs_work(LAPACK_COL_MAJOR, 'N', n, 1, factors.data(), n, ipiv.data(), step.data(), n);
        benchmark::DoNotOptimize(step.data());
    }
}

// ---- shapes and order ---------------------------------------------------------------------------------------

using BenchmarkFunction = void (*)(benchmark::State&);

struct Variant {
    const char* name;
    BenchmarkFunction function;
};

// The variants of one shape run back to back, so that a change in the load of the shared machine touches
// them alike; each is repeated and the median kept.
template <size_t Count>
void RegisterWork(const char* work, const Variant (&variants)[Count], bool inversionOnly) {
    for (int params : {101, 401, 1201}) {
        for (int patterns : {1000, 10000}) {
            if (inversionOnly && patterns != 1000) continue;  // the inversion does not see the patterns
            for (const Variant& variant : variants) {
                const std::string name = std::string("BM_") + work + "_" + variant.name;
                benchmark::RegisterBenchmark(name.c_str(), variant.function)
                    ->Args({params, patterns})
                    ->Unit(benchmark::kMillisecond)
                    ->UseRealTime()
                    ->MinTime(0.3)
                    ->Repetitions(3)
                    ->ReportAggregatesOnly(true);
            }
        }
    }
}

}  // namespace

void RegisterNetworkBenchmarks() {
    RegisterWork("Accumulate",
                 {{"Fast", BM_Accumulate_Fast}, {"One", BM_Accumulate_One}, {"Blas", BM_Accumulate_Blas}}, false);
    RegisterWork("Iteration", {{"Fast", BM_Iteration_Fast}, {"One", BM_Iteration_One}, {"Blas", BM_Iteration_Blas}},
                 false);
    RegisterWork("Invert", {{"Fast", BM_Invert_Fast}, {"Blas", BM_Invert_Blas}}, true);
}
