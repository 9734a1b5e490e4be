// The BLAS-only bound of the Error Correction run of run_bench.cpp (BM_ErrorCorrectionRun_Blas): the same run
// on the engine's buffers counts the tries of every unit, and the bound adds up, unit by unit, what the BLAS
// alone takes for that unit's work: iterations x (dsyrk of a Jacobian of the unit's parameters by the
// patterns) + tries x (copy of the kept triangle with the damping on its diagonal, dpotrf, dpotrs). The
// benchmark's time is that sum; the counter `per_try_bound_s` is the looser bound iterations x tries x (all).
#include <benchmark/benchmark.h>
#include <cblas.h>
#include <lapacke.h>

#include <algorithm>
#include <chrono>
#include <random>
#include <vector>

#include "engine/buffers.h"
#include "engine/runs.h"
#include "reference/samples.h"

namespace {

using engine::UINT;

// The engine's buffers, counting the solves (the tries) of every unit: each try is a solve of its own here,
// never one solved beside the try before it.
class CCountingBuffers : public engine::CNetworkBuffers {
public:
    std::vector<double> tries;  // element u - 1: the tries of the network of u units
    void SolveHessian(const double* diagonal, double damping, double* x, engine::CNextTry*) override {
        if (tries.size() < Units()) tries.resize(Units(), 0.0);
        if (Units() > 0) tries[Units() - 1] += 1.0;
        engine::CNetworkBuffers::SolveHessian(diagonal, damping, x, nullptr);
    }
};

// The fastest of a few rounds, on one BLAS thread and on the BLAS's default threads: on small matrices the
// BLAS's threads cost more than they save, and the bound takes whichever is faster.
template <typename Work>
double Fastest(Work work) {
    const int threads = openblas_get_num_threads();
    double best = 1e30;
    for (int count : {1, threads}) {
        openblas_set_num_threads(count);
        for (int round = 0; round < 3; ++round) {
            const auto start = std::chrono::steady_clock::now();
            work();
            best = std::min(best, std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
        }
    }
    openblas_set_num_threads(threads);
    return best;
}

// Seconds of the BLAS alone for one accumulation (dsyrk) and for one try (copy, dpotrf, dpotrs) at n
// parameters and the given patterns.
struct CUnitCost {
    double accumulation, attempt;
};

CUnitCost CostOf(int n, int patterns) {
    std::mt19937 random(n);
    std::uniform_real_distribution<double> value(-1.0, 1.0);
    std::vector<double> rows(static_cast<size_t>(n) * patterns), hessian(static_cast<size_t>(n) * n),
        factors(hessian.size()), step(n, 1.0);
    for (double& v : rows) v = value(random);
    auto syrk = [&] {
        cblas_dsyrk(CblasRowMajor, CblasUpper, CblasNoTrans, n, patterns, 1.0, rows.data(), patterns, 0.0,
                    hessian.data(), n);
    };
    syrk();
    CUnitCost cost;
    cost.accumulation = Fastest(syrk);
    // The row-major upper triangle that dsyrk writes is the column-major lower one that the routines read.
    cost.attempt = Fastest([&] {
        LAPACKE_dlacpy_work(LAPACK_COL_MAJOR, 'L', n, n, hessian.data(), n, factors.data(), n);
        for (int k = 0; k < n; ++k) factors[size_t(k) * n + k] += 0.01;
        std::fill(step.begin(), step.end(), 1.0);
        LAPACKE_dpotrf_work(LAPACK_COL_MAJOR, 'L', n, factors.data(), n);
        LAPACKE_dpotrs_work(LAPACK_COL_MAJOR, 'L', n, 1, factors.data(), n, step.data(), n);
        benchmark::DoNotOptimize(step.data());
    });
    return cost;
}

}  // namespace

// state.range: units, patterns, iterations per unit, as BM_ErrorCorrectionRun_Fast has them.
void ErrorCorrectionBound(benchmark::State& state) {
    const UINT units = static_cast<UINT>(state.range(0)), patterns = static_cast<UINT>(state.range(1));
    const UINT iterations = static_cast<UINT>(state.range(2));
    for (auto _ : state) {
        CCountingBuffers net;
        MakeSample(net, {patterns, 2, 0, engine::kErrorCorrection, 7});
        net.SetAlgorithm(engine::kErrorCorrection);
        engine::CFixedSettings settings;
        settings.algorithm = engine::kErrorCorrection;
        settings.iterations = iterations;
        settings.maxUnits = units;
        settings.desiredError = 0.0;
        engine::CProgressSink sink;
        engine::RunErrorCorrection(net, settings, sink, engine::CCancelToken::Never(), false);
        double bound = 0.0, perTry = 0.0, tries = 0.0;
        for (UINT u = 1; u <= net.tries.size(); ++u) {
            const CUnitCost cost = CostOf(static_cast<int>(4 * u + 1), static_cast<int>(patterns));
            bound += iterations * cost.accumulation + net.tries[u - 1] * cost.attempt;
            perTry += net.tries[u - 1] * (cost.accumulation + cost.attempt);
            tries += net.tries[u - 1];
        }
        state.SetIterationTime(bound);
        state.counters["per_try_bound_s"] = perTry;
        state.counters["tries_per_iteration"] = tries / (double(iterations) * std::max<size_t>(1, net.tries.size()));
    }
}
