// The second-order iteration's cost on networks of 101, 401 and 1201 parameters (two inputs; 25, 100 and 300
// units) and 1000 or 10000 patterns, against the practical limit of the same work on the optimised BLAS:
//   Fast  the engine as the application runs it, on all cores
//   One   the same on one core
//   LU    Iteration only: the same on all cores with every try factored by the LU, as before the Cholesky
//   Blas  the BLAS alone on prebuilt data, with its own default threads:
//         Accumulate  cblas_dsyrk of a Jacobian of the same shape, built beforehand
//         Iteration   that, plus for each try a copy of the kept triangle, LAPACKE dpotrf and dpotrs
// An Iteration round is four iterations of a trial, with the damping rule's tries (counter `tries`,
// per iteration); its time is per iteration, and `peak_share` is its rate (n^2 P for the accumulation, n^3 / 3
// per try) over the rate of a 2000 x 2000 dgemm on the same cores. Factor times FactorLU alone on a damped
// quasi-Hessian against LAPACKE dgetrf, Cholesky the damped Cholesky against dpotrf. After the usual table, a
// second one gives the ratios Fast / Blas, One / Fast and Fast / LU.
//
// Run: build/bench/vantrel_bench   (a few minutes; --benchmark_filter=Iteration etc. for a part)
#include <benchmark/benchmark.h>
#include <cblas.h>
#include <lapacke.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <map>
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

// ---- second-order iterations ------------------------------------------------------------------------------------

// A round is four iterations of a trial from the sample's network, with the damping rule at work: the tries
// that each iteration makes are those of a real run. The rounds start where the first ten iterations of the
// trial have left the network and the damping value, which by then has settled into the rule's rhythm.
constexpr int kTrialIterations = 4;
constexpr int kSettleIterations = 10;

// The engine's buffers with the tries of before: each factors the whole damped matrix by the LU (the fallback
// of the damped solve), rebuilt from the kept triangle first.
class CLUTries : public CNetworkBuffers {
public:
    void SolveHessian(const double* diagonal, double damping, double* x, engine::CNextTry*) override {
        const engine::CStepArrays s = Step();
        m_whole.resize(size_t(s.nParams) * s.nParams);
        engine::kernels::SolveDampedByLU(s.pHessian, static_cast<int>(s.nParams), diagonal, damping, s.pGradient,
                                         x, m_whole.data(), engine::CCancelToken::Never());
    }

private:
    std::vector<double> m_whole;
};

// Iterations of a trial from the network as it stands, the error before them and the damping value;
// returns the tries they made, and leaves the error and the damping value after them.
int Iterate(CNetworkBuffers& net, int iterations, double& error, double& damping) {
    int tries = 0;
    for (int k = 0; k < iterations; ++k) {
        const engine::CDampedStep step =
            engine::DampedIteration(net, engine::CDampedForm{}, error, damping, engine::CCancelToken::Never());
        error = step.error;
        damping = step.damping;
        tries += step.tries;
    }
    return tries;
}

// Where every round starts: the network, its error and the damping value after the settling iterations.
struct CTrialStart {
    explicit CTrialStart(CNetworkBuffers& net) : error(net.ComputeError()), damping(kTryDamping) {
        Iterate(net, kSettleIterations, error, damping);
        params.assign(net.Step().pParams, net.Step().pParams + net.Step().nParams);
    }
    std::vector<double> params;
    double error, damping;
};

// One round; returns the tries it made.
int Trial(CNetworkBuffers& net, const CTrialStart& start) {
    std::copy(start.params.begin(), start.params.end(), net.Step().pParams);
    net.UnpackParameters();
    double error = start.error, damping = start.damping;
    return Iterate(net, kTrialIterations, error, damping);
}

// GFLOP/s of a 2000 x 2000 dgemm on the BLAS's threads as they stand: the peak that the iterations are
// measured against.
double DgemmPeak() {
    static std::map<int, double> measured;  // by the BLAS's thread count
    double& peak = measured[openblas_get_num_threads()];
    if (peak > 0) return peak;
    constexpr int n = 2000;
    std::vector<double> a(size_t(n) * n, 0.5), b(a), c(a);
    double best = 1e30;
    for (int round = 0; round < 3; ++round) {
        const auto start = std::chrono::steady_clock::now();
        cblas_dgemm(CblasRowMajor, CblasNoTrans, CblasNoTrans, n, n, n, 1.0, a.data(), n, b.data(), n, 0.0, c.data(),
                    n);
        best = std::min(best, std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
    peak = 2.0 * n * n * n / best * 1e-9;
    return peak;
}

// Counters of an iteration: its tries, its rate counted as n^2 P for the accumulation and n^3 / 3 per try (the
// Cholesky's flops, whatever factors), and that rate's share of the dgemm peak on the same cores.
void IterationCounters(benchmark::State& state, double tries, double secondsPerIteration, double peak) {
    const double n = static_cast<double>(state.range(0)), patterns = static_cast<double>(state.range(1));
    const double perIteration = tries / kTrialIterations;
    const double gflops = (n * n * patterns + perIteration * n * n * n / 3.0) / secondsPerIteration * 1e-9;
    state.counters["tries"] = perIteration;
    state.counters["GFLOPs"] = gflops;
    state.counters["peak_share"] = gflops / peak;
}

// Seconds per iteration of each round, by hand: a round is kTrialIterations iterations.
template <typename Round>
void TimeRounds(benchmark::State& state, double peak, Round round) {
    double tries = 0.0, seconds = 0.0;
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        tries = round();
        const double elapsed = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        state.SetIterationTime(elapsed / kTrialIterations);
        seconds += elapsed;
    }
    IterationCounters(state, tries, seconds / (double(state.iterations()) * kTrialIterations), peak);
}

void Iteration(benchmark::State& state, CNetworkBuffers& net, int cores) {
    Sample(net, state);
    const CTrialStart start(net);
    CBenchCores use(cores);
    TimeRounds(state, DgemmPeak(), [&] { return Trial(net, start); });
}

void BM_Iteration_Fast(benchmark::State& state) {
    CNetworkBuffers net;
    Iteration(state, net, 0);
}

void BM_Iteration_One(benchmark::State& state) {
    CNetworkBuffers net;
    Iteration(state, net, 1);
}

void BM_Iteration_LU(benchmark::State& state) {
    CLUTries net;
    Iteration(state, net, 0);
}

// The BLAS alone on the same round: for each iteration dsyrk of the prebuilt Jacobian, and for each of the
// tries that the engine's round made (counted beforehand) a copy of the kept triangle with the damping on its
// diagonal, dpotrf and dpotrs.
void BM_Iteration_Blas(benchmark::State& state) {
    CNetworkBuffers net;
    Sample(net, state);
    const CPrebuiltJacobian jacobian(net);
    const int tries = Trial(net, CTrialStart(net));
    const int n = jacobian.n;
    std::vector<double> hessian(static_cast<size_t>(n) * n), factors(hessian.size()), step(n);
    const double peak = DgemmPeak();
    // The row-major upper triangle that dsyrk writes is the column-major lower one that the routines read.
    auto attempt = [&] {
        LAPACKE_dlacpy_work(LAPACK_COL_MAJOR, 'L', n, n, hessian.data(), n, factors.data(), n);
        for (int k = 0; k < n; ++k) factors[static_cast<size_t>(k) * n + k] += kTryDamping;
        std::fill(step.begin(), step.end(), 1.0);
        LAPACKE_dpotrf_work(LAPACK_COL_MAJOR, 'L', n, factors.data(), n);
        LAPACKE_dpotrs_work(LAPACK_COL_MAJOR, 'L', n, 1, factors.data(), n, step.data(), n);
        benchmark::DoNotOptimize(step.data());
    };
    TimeRounds(state, peak, [&] {
        for (int k = 0; k < kTrialIterations; ++k) jacobian.Syrk(hessian.data());
        for (int t = 0; t < tries; ++t) attempt();
        return tries;
    });
}

// ---- the factorization alone ------------------------------------------------------------------------------

// A damped quasi-Hessian of the sample (its first try's matrix), copied back before every round: FactorLU
// against LAPACK's dgetrf on the same matrix, which pivots by magnitude alone. The Cholesky factorization
// needs nothing copied back: it reads the kept triangle and the undamped diagonal; LAPACK's dpotrf gets a
// copy of the triangle, as a caller of it who tries one matrix more than once must make.
struct CDampedMatrix {
    explicit CDampedMatrix(const benchmark::State& state) {
        CNetworkBuffers net;
        MakeSample(net, {1000, kInputs, UnitsForParams(static_cast<UINT>(state.range(0)), kInputs), 0,
                         static_cast<UINT>(state.range(0))});
        net.Accumulate(false, true);
        n = static_cast<int>(net.Step().nParams);
        matrix.assign(net.Step().pHessian, net.Step().pHessian + static_cast<size_t>(n) * n);
        for (int k = 0; k < n; ++k) {
            diagonal.push_back(matrix[static_cast<size_t>(k) * n + k]);
            matrix[static_cast<size_t>(k) * n + k] += kTryDamping;
        }
        factors = matrix;
    }
    int n;
    std::vector<double> matrix, factors, diagonal;
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

void Cholesky(benchmark::State& state, int cores) {
    CDampedMatrix m(state);
    CBenchCores use(cores);
    for (auto _ : state) {
        engine::kernels::FactorDampedCholesky(m.factors.data(), m.n, m.diagonal.data(), kTryDamping,
                                              engine::CCancelToken::Never());
        benchmark::DoNotOptimize(m.factors.data());
    }
}

void BM_Cholesky_Fast(benchmark::State& state) { Cholesky(state, 0); }
void BM_Cholesky_One(benchmark::State& state) { Cholesky(state, 1); }

void BM_Cholesky_Blas(benchmark::State& state) {
    CDampedMatrix m(state);
    for (auto _ : state) {
        LAPACKE_dlacpy_work(LAPACK_COL_MAJOR, 'L', m.n, m.n, m.matrix.data(), m.n, m.factors.data(), m.n);
        LAPACKE_dpotrf_work(LAPACK_COL_MAJOR, 'L', m.n, m.factors.data(), m.n);
        benchmark::DoNotOptimize(m.factors.data());
    }
}

// ---- shapes and order ---------------------------------------------------------------------------------------

using BenchmarkFunction = void (*)(benchmark::State&);

struct Variant {
    const char* name;
    BenchmarkFunction function;
};

// Each is repeated and the median kept. A benchmark of manual time sets each round's time itself.
void Register(const std::string& name, BenchmarkFunction function, const std::vector<int64_t>& shape,
              bool manualTime = false) {
    benchmark::internal::Benchmark* b = benchmark::RegisterBenchmark(name.c_str(), function);
    b->Args(shape)->Unit(benchmark::kMillisecond)->MinTime(0.3)->Repetitions(3)->ReportAggregatesOnly(true);
    if (manualTime)
        b->UseManualTime();
    else
        b->UseRealTime();
}

// The variants of one shape run back to back, so that a change in the load of the shared machine touches
// them alike.
template <size_t Count>
void RegisterWork(const char* work, const Variant (&variants)[Count], bool manualTime = false) {
    for (int params : {101, 401, 1201})
        for (int patterns : {1000, 10000})
            for (const Variant& variant : variants)
                Register(std::string("BM_") + work + "_" + variant.name, variant.function, {params, patterns},
                         manualTime);
}

// The factorizations at the iteration's sizes and at one larger, where the updates split into strips.
void RegisterFactorBenchmarks() {
    for (int params : {401, 1201, 2001}) {
        for (const Variant& variant : {Variant{"Fast", BM_Factor_Fast}, Variant{"One", BM_Factor_One},
                                       Variant{"Blas", BM_Factor_Blas}})
            Register(std::string("BM_Factor_") + variant.name, variant.function, {params});
        for (const Variant& variant : {Variant{"Fast", BM_Cholesky_Fast}, Variant{"One", BM_Cholesky_One},
                                       Variant{"Blas", BM_Cholesky_Blas}})
            Register(std::string("BM_Cholesky_") + variant.name, variant.function, {params});
    }
}

}  // namespace

void RegisterNetworkBenchmarks() {
    RegisterWork("Accumulate",
                 {{"Fast", BM_Accumulate_Fast}, {"One", BM_Accumulate_One}, {"Blas", BM_Accumulate_Blas}});
    RegisterWork("Iteration",
                 {{"Fast", BM_Iteration_Fast}, {"One", BM_Iteration_One}, {"LU", BM_Iteration_LU},
                  {"Blas", BM_Iteration_Blas}},
                 true);
    RegisterFactorBenchmarks();
}
