// Blocked accumulation of gradient and quasi-Hessian, and the forward pass of the error measure.
//
// A block holds BlockPatterns patterns side by side: the inputs transposed, so that each unit's distances,
// activations and Jacobian entries run over contiguous patterns (vector instructions, one call of ExpArray per
// unit and block). The Jacobian is kept transposed, one row per parameter, which is the shape the symmetric
// rank-k update takes without a copy.
//
// The patterns fall into two halves, each summed on its own (the second into spare
// storage) and added at the end; the halves run on two threads when the work is worth it. The split depends on
// the number of patterns alone, so the results are the same on one core as on two.
#include <cblas.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <condition_variable>
#include <cstring>
#include <functional>
#include <memory>
#include <mutex>
#include <new>
#include <system_error>
#include <thread>
#include <vector>

#include "engine/kernels.h"
#include "engine/memory.h"

namespace engine {
namespace kernels {

size_t RowWidth(const CNetworkView& net, UINT nParams) {
    return std::max<size_t>(nParams, net.layout.Count());
}

UINT BlockPatterns(const CParamLayout& layout) {
    const size_t rows = std::max<size_t>(1, layout.Count());
    return static_cast<UINT>(std::clamp<size_t>((size_t(1) << 20) / rows, 256, 2048) / 4 * 4);
}

namespace {

// The forward pass runs over whole groups of four patterns, so that every pattern's exp takes the same path
// wherever it stands in its block; the lanes past the block's last pattern are computed and ignored.
size_t Padded(size_t count) { return (count + 3) / 4 * 4; }

// What one half of the patterns works in; sized by the caller before any thread starts, and only ever grown.
// Every array holds `lanes` patterns side by side.
struct CBlockScratch {
    void Reserve(size_t inputs, size_t rowCount, size_t blockPatterns) {
        lanes = Padded(blockPatterns);
        for (std::vector<double>* v : {&dist, &arg, &phi, &y, &e})
            if (v->size() < lanes) v->resize(lanes);
        if (x.size() < inputs * lanes) x.resize(inputs * lanes);
        if (rows.size() < rowCount * lanes) rows.resize(rowCount * lanes);
    }
    size_t lanes = 0;
    std::vector<double> x;  // input i of pattern r at x[i * lanes + r]
    std::vector<double> dist, arg, phi, y, e;
    std::vector<double> rows;  // the transposed Jacobian: parameter k of pattern r at rows[k * lanes + r]
};

// Outputs of patterns first .. first + count - 1 into s.y; with rows, also their Jacobian entries (rows 0 to
// layout.Count() - 1; entries of e = target - output, in the order of the packed vector). Built twice, and
// chosen at run time: with AVX2 where the processor has it, else with the instructions every x86-64 has. Both
// give the same numbers; only the width of the vectors differs.
inline __attribute__((always_inline)) void ForwardBlockBody(const CNetworkView& net, UINT first, UINT count,
                                                            CBlockScratch& s, bool rows, const CCancelToken& cancel) {
    const CParamLayout& layout = net.layout;
    const size_t n = layout.nInputs, m = Padded(count);
    for (size_t i = 0; i < n; ++i) {
        double* xi = s.x.data() + i * s.lanes;
        for (size_t r = 0; r < count; ++r) xi[r] = net.pInputs[(first + r) * n + i];
        std::fill(xi + count, xi + m, 0.0);
    }
    double* y = s.y.data();
    std::fill(y, y + m, net.pOutputWeights[0]);
    double *dist = s.dist.data(), *phi = s.phi.data(), *arg = s.arg.data();
    for (UINT h = 0; h < layout.nUnits; ++h) {
        // A block of millions of units takes a while; what an abandoned run leaves here is never used.
        if ((h & 0xFFFF) == 0xFFFF && cancel.Abandoned()) return;
        const double* v = net.pInputWeights + h * n;
        const double* c = net.pCenters + h * n;
        const double sh = net.pWidths[h];
        const double w = net.pOutputWeights[h + 1];
        std::fill(dist, dist + m, 0.0);
        for (size_t i = 0; i < n; ++i) {
            const double* xi = s.x.data() + i * s.lanes;
            for (size_t r = 0; r < m; ++r) {
                const double a = v[i] * xi[r] - c[i];
                dist[r] += a * a;
            }
        }
        for (size_t r = 0; r < m; ++r) arg[r] = -dist[r] / sh;
        ExpArray(arg, phi, m);
        for (size_t r = 0; r < m; ++r) y[r] += w * phi[r];
        if (!rows) continue;

        if (h + 1 < layout.OutputWeightCount()) {
            double* row = s.rows.data() + (h + 1) * s.lanes;
            for (size_t r = 0; r < m; ++r) row[r] = -phi[r];
        }
        // The factors that every entry of the unit shares, taken out of the loops over the patterns:
        // -(w phi D) / S^2, -2 a w phi / S and 2 a w x phi / S.
        const double widthFactor = -w / (sh * sh), centerFactor = -2 * w / sh;
        double* widthRow = s.rows.data() + (layout.Widths() + h) * s.lanes;
        for (size_t r = 0; r < m; ++r) widthRow[r] = widthFactor * phi[r] * dist[r];
        for (size_t i = 0; i < n; ++i) {
            const double* xi = s.x.data() + i * s.lanes;
            double* centerRow = s.rows.data() + (layout.Centers() + h * n + i) * s.lanes;
            for (size_t r = 0; r < m; ++r) centerRow[r] = centerFactor * phi[r] * (v[i] * xi[r] - c[i]);
            if (!layout.bImproved) continue;
            double* weightRow = s.rows.data() + (layout.InputWeights() + h * n + i) * s.lanes;
            for (size_t r = 0; r < m; ++r) weightRow[r] = -centerRow[r] * xi[r];
        }
    }
}

void ForwardBlockDefault(const CNetworkView& net, UINT first, UINT count, CBlockScratch& s, bool rows,
                         const CCancelToken& cancel) {
    ForwardBlockBody(net, first, count, s, rows, cancel);
}

// AVX2 without FMA: a fused multiply-add would round otherwise than the default build does.
__attribute__((target("avx2"))) void ForwardBlockAvx2(const CNetworkView& net, UINT first, UINT count,
                                                      CBlockScratch& s, bool rows, const CCancelToken& cancel) {
    ForwardBlockBody(net, first, count, s, rows, cancel);
}

using ForwardFunction = void (*)(const CNetworkView&, UINT, UINT, CBlockScratch&, bool, const CCancelToken&);

// Chosen by an ordinary call at the first block rather than by a resolver that the loader runs before main: a
// sanitizer's run-time is not ready that early, and its instrumented resolver would crash the start.
ForwardFunction ChooseForward() {
    __builtin_cpu_init();
    return __builtin_cpu_supports("avx2") ? ForwardBlockAvx2 : ForwardBlockDefault;
}

void ForwardBlock(const CNetworkView& net, UINT first, UINT count, CBlockScratch& s, bool rows,
                  const CCancelToken& cancel) {
    static const ForwardFunction forward = ChooseForward();
    forward(net, first, count, s, rows, cancel);
}

// The rows that no unit writes: the bias (-1.0), output weights beyond the units' own and rows past the
// layout's length (0.0). The same for every block, so they are filled once per scratch.
void FillFixedRows(const CNetworkView& net, size_t rowCount, CBlockScratch& s) {
    const CParamLayout& layout = net.layout;
    const size_t outputs = layout.OutputWeightCount();
    const size_t used = std::min<size_t>(outputs, layout.nUnits + 1);
    double* rows = s.rows.data();
    if (used > 0) std::fill(rows, rows + s.lanes, -1.0);
    std::fill(rows + used * s.lanes, rows + outputs * s.lanes, 0.0);
    std::fill(rows + layout.Count() * s.lanes, rows + rowCount * s.lanes, 0.0);
}

// Sum of e * e over the block, in pattern order; e = target - output into s.e.
double BlockErrors(const CNetworkView& net, UINT first, UINT count, CBlockScratch& s) {
    double sum = 0.0;
    for (UINT r = 0; r < count; ++r) {
        s.e[r] = net.pTargets[first + r] - s.y[r];
        sum += s.e[r] * s.e[r];
    }
    return sum;
}

// Patterns [first, end) in the half `part` of two; below kSplitPatterns the second half is empty.
struct CHalf {
    UINT first, end;
};

CHalf HalfOf(UINT patterns, int part) {
    const UINT middle = patterns >= kSplitPatterns ? (patterns + 1) / 2 : patterns;
    return part == 0 ? CHalf{0, middle} : CHalf{middle, patterns};
}

// What the two threads of RunHalves share: the claim on the second half, and its end.
struct CSecondHalf {
    std::atomic<bool> claimed{false};
    std::mutex mutex;
    std::condition_variable ended;
    bool done = false;
};

// Runs work(0) and work(1), the second on a thread of its own when parallel and the system gives one. The
// second half goes to whichever thread comes to it first: on a machine whose cores are busy with other work, a
// new thread may not run for a long while, and this one then does both halves instead of waiting for it. The
// halves are fixed, so the result is the same either way.
template <typename Work>
void RunHalves(bool parallel, Work work) {
    if (parallel && ThreadCount() >= 2) {
        auto shared = std::make_shared<CSecondHalf>();
        const std::function<void()> second = [&] { work(1); };
        const std::function<void()>* run = &second;  // touched only by the thread that claims the half
        try {
            std::thread([shared, run] {
                if (shared->claimed.exchange(true)) return;
                (*run)();
                const std::lock_guard<std::mutex> lock(shared->mutex);
                shared->done = true;
                shared->ended.notify_one();
            }).detach();
        } catch (const std::system_error&) {
            // No thread to be had: this one claims the half below.
        }
        work(0);
        if (shared->claimed.exchange(true)) {
            std::unique_lock<std::mutex> lock(shared->mutex);
            shared->ended.wait(lock, [&] { return shared->done; });
        } else {
            work(1);
        }
        return;
    }
    work(0);
    work(1);
}

// Below this many floating-point operations a second thread costs more than it saves.
constexpr double kParallelWork = 2.0e7;

double ForwardWork(const CNetworkView& net) {
    return static_cast<double>(net.nPatterns) * net.layout.nUnits * (3.0 * net.layout.nInputs + 25.0);
}

std::vector<CBlockScratch>& ScratchOfHalves() {
    // Kept per calling thread: a fresh block of this size would come from the system page by page on every
    // iteration. It is two blocks of rows whatever the number of patterns, and a worker's goes with its thread.
    thread_local std::vector<CBlockScratch> halves(2);
    return halves;
}

// hessian (upper triangle, n x n) = beta * hessian + rows rows^T over count patterns (rows: n x count at
// stride lanes), in column strips of bounded work.
void AddRankK(const double* rows, size_t lanes, UINT count, size_t n, double beta, double* hessian,
              const CCancelToken& cancel) {
    const int ld = static_cast<int>(lanes), k = static_cast<int>(count), size = static_cast<int>(n);
    InStrips(n, 2.0 * count * n, cancel, [&](size_t j0, size_t w) {
        const int first = static_cast<int>(j0), width = static_cast<int>(w);
        if (first > 0)
            cblas_dgemm(CblasRowMajor, CblasNoTrans, CblasTrans, first, width, k, 1.0, rows, ld, rows + j0 * lanes,
                        ld, beta, hessian + j0, size);
        cblas_dsyrk(CblasRowMajor, CblasUpper, CblasNoTrans, width, k, 1.0, rows + j0 * lanes, ld, beta,
                    hessian + j0 * n + j0, size);
    });
}

}  // namespace

void FillJacobianTransposed(const CNetworkView& net, UINT first, UINT count, double* rows, size_t ld,
                            double* errors) {
    CBlockScratch s;
    const size_t rowCount = net.layout.Count();
    const UINT block = BlockPatterns(net.layout);
    s.Reserve(net.layout.nInputs, rowCount, block);
    FillFixedRows(net, rowCount, s);
    for (UINT done = 0; done < count; done += block) {
        const UINT part = std::min(block, count - done);
        ForwardBlock(net, first + done, part, s, true, CCancelToken::Never());
        BlockErrors(net, first + done, part, s);
        for (size_t k = 0; k < rowCount; ++k)
            std::copy(s.rows.data() + k * s.lanes, s.rows.data() + k * s.lanes + part, rows + k * ld + done);
        std::copy(s.e.data(), s.e.data() + part, errors + done);
    }
}

double AccumulateDerivatives(const CNetworkView& net, UINT nParams, double* hessian, double* gradient,
                             double* spare, const CCancelToken& cancel) {
    KeepFreedBlocks();
    const size_t n = nParams, rowCount = RowWidth(net, nParams);
    // The two halves' rows and the second gradient, and a BLAS buffer for each half's thread, refused before
    // they are taken when they can't fit.
    const UINT block = BlockPatterns(net.layout);
    if (!DoublesFit(2.0 * rowCount * Padded(block) + n) || !BlasBuffersFit(std::min(ThreadCount(), 2)))
        throw std::bad_alloc();
    std::vector<CBlockScratch>& halves = ScratchOfHalves();
    std::vector<double> secondGradient(n);
    for (CBlockScratch& s : halves) {
        s.Reserve(net.layout.nInputs, rowCount, block);
        FillFixedRows(net, rowCount, s);
    }
    double sums[2] = {0.0, 0.0};
    double* gradients[2] = {gradient, secondGradient.data()};
    double* hessians[2] = {hessian, spare};
    bool written[2] = {false, false};

    auto work = [&](int part) {
        CBlockScratch& s = halves[part];
        const CHalf half = HalfOf(net.nPatterns, part);
        std::fill(gradients[part], gradients[part] + n, 0.0);
        for (UINT first = half.first; first < half.end && !cancel.Abandoned(); first += block) {
            const UINT count = std::min(block, half.end - first);
            ForwardBlock(net, first, count, s, true, cancel);
            sums[part] += BlockErrors(net, first, count, s);
            if (n == 0) continue;
            cblas_dgemv(CblasRowMajor, CblasNoTrans, static_cast<int>(n), static_cast<int>(count), 1.0,
                        s.rows.data(), static_cast<int>(s.lanes), s.e.data(), 1, 1.0, gradients[part], 1);
            // The first block of a half overwrites (beta 0): neither triangle needs clearing beforehand.
            if (hessian)
                AddRankK(s.rows.data(), s.lanes, count, n, written[part] ? 1.0 : 0.0, hessians[part], cancel);
            written[part] = true;
        }
    };
    const double work2 = ForwardWork(net) + static_cast<double>(net.nPatterns) * n * ((hessian ? n : 0.0) + 6.0);
    {
        // Each half runs its products on its own thread; more BLAS threads would only contend for the cores.
        CBlasThreads single(0.0);
        RunHalves(work2 >= kParallelWork && net.nPatterns >= kSplitPatterns, work);
    }
    cancel.ThrowIfAbandoned();  // the halves stopped early: what they hold is incomplete

    for (size_t k = 0; k < n; ++k) gradient[k] += secondGradient[k];
    if (!hessian) return sums[0] + sums[1];
    if (!written[0]) std::fill(hessian, hessian + n * n, 0.0);
    if (written[1])
        for (size_t i = 0; i < n; ++i)
            for (size_t j = i; j < n; ++j) hessian[i * n + j] += spare[i * n + j];
    if (written[0]) MirrorUpperToLower(hessian, n, cancel);
    if (spare) std::fill(spare, spare + n * n, 0.0);
    return sums[0] + sums[1];
}

double SumSquaredErrors(const CNetworkView& net, double* outputs, const CCancelToken& cancel) {
    std::vector<CBlockScratch>& halves = ScratchOfHalves();
    // The blocks of the accumulation, so that both sum the squares in the same order.
    const UINT block = BlockPatterns(net.layout);
    for (CBlockScratch& s : halves) s.Reserve(net.layout.nInputs, 0, block);
    double sums[2] = {0.0, 0.0};
    auto work = [&](int part) {
        CBlockScratch& s = halves[part];
        const CHalf half = HalfOf(net.nPatterns, part);
        for (UINT first = half.first; first < half.end && !cancel.Abandoned(); first += block) {
            const UINT count = std::min(block, half.end - first);
            ForwardBlock(net, first, count, s, false, cancel);
            sums[part] += BlockErrors(net, first, count, s);
            if (outputs) std::copy(s.y.data(), s.y.data() + count, outputs + first);
        }
    };
    RunHalves(ForwardWork(net) >= kParallelWork && net.nPatterns >= kSplitPatterns, work);
    cancel.ThrowIfAbandoned();
    return sums[0] + sums[1];
}

void MirrorUpperToLower(double* a, size_t n, const CCancelToken& cancel) {
    // Tiles keep both the rows written and the columns read within the cache.
    const size_t tile = 64;
    for (size_t ib = 0; ib < n; ib += tile) {
        cancel.ThrowIfAbandoned();
        const size_t iEnd = std::min(ib + tile, n);
        for (size_t jb = 0; jb <= ib; jb += tile) {
            for (size_t i = ib; i < iEnd; ++i) {
                const size_t jEnd = std::min(jb + tile, i);
                for (size_t j = jb; j < jEnd; ++j) a[i * n + j] = a[j * n + i];
            }
        }
    }
}

}  // namespace kernels
}  // namespace engine
