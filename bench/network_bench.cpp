// The second-order iteration's cost on networks of 101, 401 and 1201 parameters (two inputs; 25, 100 and 300
// units) and 1000 or 10000 patterns, against the practical limit of the same work on the optimised BLAS:
//   Fast  the engine as the application runs it, on all cores
//   One   the same on one core
//   Blas  the BLAS alone on prebuilt data, with its own default threads:
//         Accumulate  cblas_dsyrk of a Jacobian of the same shape, built beforehand
//         Iteration   that, plus LAPACKE dgetrf + dgetrs of the damped matrix (copied first, as every try does)
// Fast's Iteration is the damped step of the run itself: one accumulation and one try (factor, solve, step,
// forward pass). Factor times FactorLU alone on a damped quasi-Hessian against LAPACKE dgetrf. After the usual table, a second one gives the ratios Fast / Blas and One / Fast.
//
// Run: build/bench/vantrel_bench   (a few minutes; --benchmark_filter=Iteration etc. for a part)
#include <benchmark/benchmark.h>
#include <cblas.h>
#include <lapacke.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "bench_cores.h"
#include "engine/kernels.h"
#include "engine/runs.h"
#include "reference/samples.h"

namespace {

using engine::CNetworkBuffers;
using engine::UINT;

constexpr UINT kInputs = 2;
constexpr double kTryDamping = 0.01;  // the damping of a trial's first try

void Sample(CNetworkBuffers& net, const benchmark::State& state) {
    const UINT params = static_cast<UINT>(state.range(0));
    const UINT patterns = static_cast<UINT>(state.range(1));
    MakeSample(net, {patterns, kInputs, UnitsForParams(params, kInputs), 0, params});
}

// The whole transposed Jacobian of the sample, one row per parameter, and its errors.
struct CPrebuiltJacobian {
    explicit CPrebuiltJacobian(CNetworkBuffers& net)
        : n(static_cast<int>(net.Step().nParams)), patterns(static_cast<int>(net.Patterns())),
          rows(static_cast<size_t>(n) * patterns), errors(patterns) {
        engine::kernels::FillJacobianTransposed(engine::ViewOf(net.Network(), net.PatternArrays(), false), 0,
                                                net.Patterns(), rows.data(), patterns, errors.data());
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
    CNetworkBuffers net;
    Sample(net, state);
    CBenchCores use(cores);
    for (auto _ : state) {
        net.Accumulate(false, true);
        benchmark::DoNotOptimize(net.Step().pHessian);
    }
}

void BM_Accumulate_Fast(benchmark::State& state) { Accumulate(state, 0); }
void BM_Accumulate_One(benchmark::State& state) { Accumulate(state, 1); }

void BM_Accumulate_Blas(benchmark::State& state) {
    CNetworkBuffers net;
    Sample(net, state);
    const CPrebuiltJacobian jacobian(net);
    std::vector<double> hessian(static_cast<size_t>(jacobian.n) * jacobian.n);
    for (auto _ : state) {
        jacobian.Syrk(hessian.data());
        benchmark::ClobberMemory();
    }
}

// ---- one whole second-order iteration ---------------------------------------------------------------------------

// The run's damped step; a previous error of infinity makes the first try succeed, so each round is one
// accumulation and one try.
void Iteration(benchmark::State& state, int cores) {
    CNetworkBuffers net;
    Sample(net, state);
    const size_t n = net.Step().nParams;
    const std::vector<double> start(net.Step().pParams, net.Step().pParams + n);
    CBenchCores use(cores);
    for (auto _ : state) {
        std::copy(start.begin(), start.end(), net.Step().pParams);  // every round times the same work
        net.UnpackParameters();
        const engine::CDampedStep step = engine::DampedIteration(
            net, engine::CDampedForm{}, std::numeric_limits<double>::infinity(), kTryDamping,
            engine::CCancelToken::Never());
        benchmark::DoNotOptimize(step.error);
    }
}

void BM_Iteration_Fast(benchmark::State& state) { Iteration(state, 0); }
void BM_Iteration_One(benchmark::State& state) { Iteration(state, 1); }

void BM_Iteration_Blas(benchmark::State& state) {
    CNetworkBuffers net;
    Sample(net, state);
    const CPrebuiltJacobian jacobian(net);
    const int n = jacobian.n;
    std::vector<double> hessian(static_cast<size_t>(n) * n), factors(hessian.size()), step(n);
    std::vector<lapack_int> ipiv(n);
    // The product writes the upper triangle only; the lower one, mirrored once here, stays the same.
    jacobian.Syrk(hessian.data());
    engine::kernels::MirrorUpperToLower(hessian.data(), n, engine::CCancelToken::Never());
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

// ---- the factorization alone ------------------------------------------------------------------------------

// A damped quasi-Hessian of the sample (its first try's matrix), copied back before every round: FactorLU
// against LAPACK's dgetrf on the same matrix, which pivots by magnitude alone.
struct CDampedMatrix {
    explicit CDampedMatrix(const benchmark::State& state) {
        CNetworkBuffers net;
        MakeSample(net, {1000, kInputs, UnitsForParams(static_cast<UINT>(state.range(0)), kInputs), 0,
                         static_cast<UINT>(state.range(0))});
        net.Accumulate(false, true);
        n = static_cast<int>(net.Step().nParams);
        matrix.assign(net.Step().pHessian, net.Step().pHessian + static_cast<size_t>(n) * n);
        for (int k = 0; k < n; ++k) matrix[static_cast<size_t>(k) * n + k] += kTryDamping;
        factors = matrix;
    }
    int n;
    std::vector<double> matrix, factors;
};

void Factor(benchmark::State& state, int cores) {
    CDampedMatrix m(state);
    std::vector<int> indx(m.n);
    CBenchCores use(cores);
    for (auto _ : state) {
        std::copy(m.matrix.begin(), m.matrix.end(), m.factors.begin());
        engine::kernels::FactorLU(m.factors.data(), m.n, indx.data(), engine::CCancelToken::Never());
        benchmark::DoNotOptimize(m.factors.data());
    }
}

void BM_Factor_Fast(benchmark::State& state) { Factor(state, 0); }
void BM_Factor_One(benchmark::State& state) { Factor(state, 1); }

void BM_Factor_Blas(benchmark::State& state) {
    CDampedMatrix m(state);
    std::vector<lapack_int> ipiv(m.n);
    for (auto _ : state) {
        std::copy(m.matrix.begin(), m.matrix.end(), m.factors.begin());
        LAPACKE_dgetrf_work(LAPACK_COL_MAJOR, m.n, m.n, m.factors.data(), m.n, ipiv.data());
        benchmark::DoNotOptimize(m.factors.data());
    }
}

// ---- shapes and order ---------------------------------------------------------------------------------------

using BenchmarkFunction = void (*)(benchmark::State&);

struct Variant {
    const char* name;
    BenchmarkFunction function;
};

// Each is repeated and the median kept.
void Register(const std::string& name, BenchmarkFunction function, const std::vector<int64_t>& shape) {
    benchmark::RegisterBenchmark(name.c_str(), function)
        ->Args(shape)
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime()
        ->MinTime(0.3)
        ->Repetitions(3)
        ->ReportAggregatesOnly(true);
}

// The variants of one shape run back to back, so that a change in the load of the shared machine touches
// them alike.
template <size_t Count>
void RegisterWork(const char* work, const Variant (&variants)[Count]) {
    for (int params : {101, 401, 1201})
        for (int patterns : {1000, 10000})
            for (const Variant& variant : variants)
                Register(std::string("BM_") + work + "_" + variant.name, variant.function, {params, patterns});
}

// The factorization at the iteration's sizes and at one larger, where the updates split into strips.
void RegisterFactorBenchmarks() {
    for (int params : {401, 1201, 2001})
        for (const Variant& variant : {Variant{"Fast", BM_Factor_Fast}, Variant{"One", BM_Factor_One},
                                       Variant{"Blas", BM_Factor_Blas}})
            Register(std::string("BM_Factor_") + variant.name, variant.function, {params});
}

}  // namespace

void RegisterNetworkBenchmarks() {
    RegisterWork("Accumulate",
                 {{"Fast", BM_Accumulate_Fast}, {"One", BM_Accumulate_One}, {"Blas", BM_Accumulate_Blas}});
    RegisterWork("Iteration", {{"Fast", BM_Iteration_Fast}, {"One", BM_Iteration_One}, {"Blas", BM_Iteration_Blas}});
    RegisterFactorBenchmarks();
}
