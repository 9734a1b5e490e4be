// Blocked accumulation of gradient and quasi-Hessian, and the forward pass of the error measure.
//
// A block holds BlockPatterns patterns side by side: the inputs transposed, so that each unit's distances,
// activations and Jacobian entries run over contiguous patterns (vector instructions, one call of ExpArray per
// unit and block). The Jacobian is kept transposed, one row per parameter, which is the shape the symmetric
// rank-k update takes without a copy.
//
// When the work is worth it the blocks fall into parts, each summed on its own (the second into the caller's
// spare, the others into the kernel's) and added in their order at the end; the parts go to as many threads as
// there are cores. The parts follow from the shape alone, and the squares of the errors are added block by
// block in pattern order, so the results are the same on any number of cores.
#include <cblas.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <new>
#include <vector>

#include "engine/kernels.h"
#include "engine/memory.h"
#include "engine/parallel.h"

namespace engine {
namespace kernels {

size_t RowWidth(const CNetworkView& net, UINT nParams) {
    return std::max<size_t>(nParams, net.layout.Count());
}

UINT BlockPatterns(const CParamLayout& layout, UINT patterns) {
    const size_t rows = std::max<size_t>(1, layout.Count());
    const size_t most = std::clamp<size_t>((size_t(1) << 20) / rows, 256, 2048) / 4 * 4;
    const size_t eighth = (patterns / size_t(8) + 4) / 4 * 4;
    return static_cast<UINT>(std::min(most, std::max<size_t>(eighth, 512)));
}

namespace {

// The forward pass runs over whole groups of four patterns, so that every pattern's exp takes the same path
// wherever it stands in its block; the lanes past the block's last pattern are computed and ignored.
size_t Padded(size_t count) { return (count + 3) / 4 * 4; }

// What one worker computes a block in; sized by the caller before the parts are shared, and only ever grown.
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
        const double negInv = -1.0 / sh;
        for (size_t r = 0; r < m; ++r) arg[r] = dist[r] * negInv;
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

// From this many floating-point operations on (about a tenth of a millisecond) the patterns fall into parts for
// the kept threads: with threads started anew for each pass the threshold had to be 4e8, and every network of
// the Error Correction Algorithm ran on one core.
constexpr double kParallelWork = 1.0e7;

// The forward pass alone splits from this much work on (some hundredths of a millisecond): each try of the
// Error Correction Algorithm's networks of some tens of units makes one, and ForwardWork counts an exp as
// a few operations where it takes the time of some tens.
constexpr double kParallelForwardWork = 2.0e6;

// At most this many parts, and no more spare quasi-Hessians than fit in this many doubles (32 MiB).
constexpr UINT kMaxParts = 8;
constexpr double kSpareDoubles = 4.0 * 1024 * 1024;

// The patterns in blocks of `block`, and the blocks in `count` parts of consecutive blocks, each summed on its
// own: part 0 into the caller's arrays, the others into spares, added in the order of the parts at the end.
// Every boundary follows from the shape and the work alone, never from the number of threads, so the sums
// come out the same on any number of cores.
struct CParts {
    UINT blocks, count;
    UINT FirstBlock(UINT part) const { return static_cast<UINT>(uint64_t(blocks) * part / count); }
};

// work: floating-point operations of the whole pass; squareDoubles: the spare storage one more part takes;
// parallelWork: the work from which the blocks fall into parts.
CParts PartsOf(UINT patterns, UINT block, double work, double squareDoubles, double parallelWork = kParallelWork) {
    const UINT blocks = (patterns + block - 1) / block;
    double most = work >= parallelWork ? std::min(blocks, kMaxParts) : 1;
    if (squareDoubles > 0) most = std::min(most, 1.0 + std::floor(kSpareDoubles / squareDoubles));
    // A power of two, so that two or four threads share the parts evenly.
    UINT count = 1;
    while (count * 2 <= most) count *= 2;
    return CParts{blocks, count};
}

double ForwardWork(const CNetworkView& net) {
    return static_cast<double>(net.nPatterns) * net.layout.nUnits * (3.0 * net.layout.nInputs + 25.0);
}

// What one worker computes in, kept per calling thread: a fresh block of this size would come from the system
// page by page on every iteration. Blocks of rows, whatever the number of patterns; a helper's goes with the
// calling thread's set, not with the helper.
struct CPartScratch {
    std::vector<CBlockScratch> workers = std::vector<CBlockScratch>(kMaxParts);
    std::vector<double> gradients;  // parts 1 .. count - 1, n each
    std::vector<double> squares;    // parts 2 .. count - 1, n x n each (part 1 sums into the caller's spare)
    std::vector<double> blockSums;  // the sum of e * e of every block: a double per 256 patterns or more
};

CPartScratch& ScratchOfParts() {
    thread_local CPartScratch scratch;
    return scratch;
}

// The sum of the blocks' sums of e * e, in the order of the blocks.
double SumInOrder(const std::vector<double>& blockSums, UINT blocks) {
    double sum = 0.0;
    for (UINT b = 0; b < blocks; ++b) sum += blockSums[b];
    return sum;
}

// At most this many column strips of one rank-k update side by side; within a strip, pieces of this much work
// (some tens of milliseconds), each of which packs its rows anew.
constexpr UINT kMaxStrips = 8;
constexpr double kUpdatePieceWork = 2e9;

// A rank-k update splits into strips from this much work on (about twenty milliseconds): the strips of one
// part's update are worth it only where the parts leave threads over, on many cores.
constexpr double kStripsWork = 1.6e9;

// hessian (upper triangle, n x n) = beta * hessian + rows rows^T over count patterns (rows: n x count at
// stride lanes). The columns fall into strips of about equal work, fixed by the shape, each a product of its
// own on one BLAS thread, up to `threads` strips at a time: the BLAS's own threads would split the work by
// their number, and the sums would then differ from one machine to the next. Within a strip, pieces of
// bounded work, so that an abandoned run stops soon.
void AddRankK(const double* rows, size_t lanes, UINT count, size_t n, double beta, double* hessian, UINT threads,
              const CCancelToken& cancel) {
    const int ld = static_cast<int>(lanes), k = static_cast<int>(count), size = static_cast<int>(n);
    // Each strip packs the rows left of it anew: strips of fewer than 512 columns cost more than they share.
    const double work = double(count) * n * n;
    const UINT strips = work >= kStripsWork ? std::clamp<UINT>(static_cast<UINT>(n / 512), 1, kMaxStrips) : 1;
    // Strip i ends at n sqrt((i + 1) / strips): the triangle's columns grow longer to the right.
    auto edge = [&](UINT i) {
        return i >= strips ? n : static_cast<size_t>(double(n) * std::sqrt(double(i) / strips)) / 8 * 8;
    };
    RunParts(strips, threads, [&](UINT strip, UINT) {
        const size_t from = edge(strip), to = edge(strip + 1);
        if (to <= from) return;
        InStrips(
            to - from, 2.0 * count * to, cancel, [&](size_t offset, size_t w) {
            const size_t j0 = from + offset;
            const int first = static_cast<int>(j0), width = static_cast<int>(w);
            if (first > 0)
                cblas_dgemm(CblasRowMajor, CblasNoTrans, CblasTrans, first, width, k, 1.0, rows, ld,
                            rows + j0 * lanes, ld, beta, hessian + j0, size);
            cblas_dsyrk(CblasRowMajor, CblasUpper, CblasNoTrans, width, k, 1.0, rows + j0 * lanes, ld, beta,
                        hessian + j0 * n + j0, size);
            },
            kUpdatePieceWork);
    });
}

// Rows of this many make a band of the mirror; tiles of this size keep both the rows written and the columns
// read within the cache.
constexpr size_t kMirrorTile = 64;

// The rows ib .. iEnd - 1 of a's lower triangle from its upper one, tile by tile.
void MirrorBand(double* a, size_t n, size_t ib, size_t iEnd) {
    for (size_t jb = 0; jb <= ib; jb += kMirrorTile) {
        for (size_t i = ib; i < iEnd; ++i) {
            const size_t jEnd = std::min(jb + kMirrorTile, i);
            for (size_t j = jb; j < jEnd; ++j) a[i * n + j] = a[j * n + i];
        }
    }
}

// hessian's upper triangle plus those of the other parts, added in their order, then mirrored onto its lower
// triangle. Bands of rows go to the threads, first for the sums, then for the mirror, which reads the summed
// rows of other bands; every element is computed the same way wherever its band runs.
void AddAndMirror(double* hessian, size_t n, const std::vector<const double*>& others, const CCancelToken& cancel) {
    const UINT bands = static_cast<UINT>((n + kMirrorTile - 1) / kMirrorTile);
    // Below this many elements (about a tenth of a millisecond of copying) one thread does it all.
    constexpr double kBandThreadElements = 2e5;
    const UINT workers = double(n) * n >= kBandThreadElements ? static_cast<UINT>(ThreadCount()) : 1;
    RunParts(bands, workers, [&](UINT band, UINT) {
        const size_t ib = band * kMirrorTile, iEnd = std::min(ib + kMirrorTile, n);
        for (const double* h : others)
            for (size_t i = ib; i < iEnd; ++i)
                for (size_t j = i; j < n; ++j) hessian[i * n + j] += h[i * n + j];
    });
    cancel.ThrowIfAbandoned();
    RunParts(bands, workers, [&](UINT band, UINT) {
        const size_t ib = band * kMirrorTile;
        MirrorBand(hessian, n, ib, std::min(ib + kMirrorTile, n));
    });
}

}  // namespace

void FillJacobianTransposed(const CNetworkView& net, UINT first, UINT count, double* rows, size_t ld,
                            double* errors) {
    CBlockScratch s;
    const size_t rowCount = net.layout.Count();
    const UINT block = BlockPatterns(net.layout, net.nPatterns);
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
    const UINT block = BlockPatterns(net.layout, net.nPatterns);
    const double flops = ForwardWork(net) + static_cast<double>(net.nPatterns) * n * ((hessian ? n : 0.0) + 6.0);
    const CParts parts = PartsOf(net.nPatterns, block, flops, hessian ? double(n) * n : 0.0);
    const UINT workers = std::min<UINT>(parts.count, static_cast<UINT>(ThreadCount()));
    // Threads for the strips of one part's updates: those that the parts leave over.
    const UINT strips = std::max<UINT>(1, static_cast<UINT>(ThreadCount()) / workers);
    // The workers' rows, the parts' gradients and the spares beyond the caller's, and a BLAS buffer for each
    // worker's thread, refused before they are taken when they can't fit.
    const double squares = hessian && parts.count > 2 ? double(parts.count - 2) * n * n : 0.0;
    if (!DoublesFit(workers * double(rowCount) * Padded(block) + parts.count * double(n) + squares) ||
        !BlasBuffersFit(static_cast<int>(workers)))
        throw std::bad_alloc();
    CPartScratch& scratch = ScratchOfParts();
    for (UINT w = 0; w < workers; ++w) {
        scratch.workers[w].Reserve(net.layout.nInputs, rowCount, block);
        FillFixedRows(net, rowCount, scratch.workers[w]);
    }
    scratch.gradients.resize(std::max<size_t>(scratch.gradients.size(), (parts.count - 1) * n));
    if (squares > 0) scratch.squares.resize(std::max<size_t>(scratch.squares.size(), (parts.count - 2) * n * n));
    scratch.blockSums.assign(parts.blocks, 0.0);
    auto gradientOf = [&](UINT part) { return part == 0 ? gradient : scratch.gradients.data() + (part - 1) * n; };
    auto squareOf = [&](UINT part) {
        return part == 0 ? hessian : part == 1 ? spare : scratch.squares.data() + (part - 2) * n * n;
    };

    auto sumPart = [&](UINT part, UINT worker) {
        CBlockScratch& s = scratch.workers[worker];
        double* g = gradientOf(part);
        std::fill(g, g + n, 0.0);
        bool written = false;
        for (UINT b = parts.FirstBlock(part); b < parts.FirstBlock(part + 1) && !cancel.Abandoned(); ++b) {
            const UINT first = b * block, count = std::min(block, net.nPatterns - first);
            ForwardBlock(net, first, count, s, true, cancel);
            scratch.blockSums[b] = BlockErrors(net, first, count, s);
            if (n == 0) continue;
            cblas_dgemv(CblasRowMajor, CblasNoTrans, static_cast<int>(n), static_cast<int>(count), 1.0,
                        s.rows.data(), static_cast<int>(s.lanes), s.e.data(), 1, 1.0, g, 1);
            // The first block of a part overwrites (beta 0): no triangle needs clearing beforehand.
            if (hessian)
                AddRankK(s.rows.data(), s.lanes, count, n, written ? 1.0 : 0.0, squareOf(part), strips, cancel);
            written = true;
        }
        if (!written && hessian) std::fill(squareOf(part), squareOf(part) + n * n, 0.0);
    };
    {
        // Every product on one BLAS thread (see AddRankK); threads that the parts leave over share the strips
        // of their updates instead.
        CSingleBlasThread single;
        RunParts(parts.count, workers, sumPart);
    }
    cancel.ThrowIfAbandoned();  // the parts stopped early: what they hold is incomplete

    for (UINT part = 1; part < parts.count; ++part) {
        const double* g = gradientOf(part);
        for (size_t k = 0; k < n; ++k) gradient[k] += g[k];
    }
    if (hessian) {
        std::vector<const double*> others;
        for (UINT part = 1; part < parts.count; ++part) others.push_back(squareOf(part));
        AddAndMirror(hessian, n, others, cancel);
    }
    return SumInOrder(scratch.blockSums, parts.blocks);
}

double SumSquaredErrors(const CNetworkView& net, double* outputs, const CCancelToken& cancel) {
    // The blocks of the accumulation, so that both sum the squares in the same order.
    const UINT block = BlockPatterns(net.layout, net.nPatterns);
    const CParts parts = PartsOf(net.nPatterns, block, ForwardWork(net), 0.0, kParallelForwardWork);
    const UINT workers = std::min<UINT>(parts.count, static_cast<UINT>(ThreadCount()));
    CPartScratch& scratch = ScratchOfParts();
    for (UINT w = 0; w < workers; ++w) scratch.workers[w].Reserve(net.layout.nInputs, 0, block);
    scratch.blockSums.assign(parts.blocks, 0.0);
    RunParts(parts.count, workers, [&](UINT part, UINT worker) {
        CBlockScratch& s = scratch.workers[worker];
        for (UINT b = parts.FirstBlock(part); b < parts.FirstBlock(part + 1) && !cancel.Abandoned(); ++b) {
            const UINT first = b * block, count = std::min(block, net.nPatterns - first);
            ForwardBlock(net, first, count, s, false, cancel);
            scratch.blockSums[b] = BlockErrors(net, first, count, s);
            if (outputs) std::copy(s.y.data(), s.y.data() + count, outputs + first);
        }
    });
    cancel.ThrowIfAbandoned();
    return SumInOrder(scratch.blockSums, parts.blocks);
}

void MirrorUpperToLower(double* a, size_t n, const CCancelToken& cancel) {
    for (size_t ib = 0; ib < n; ib += kMirrorTile) {
        cancel.ThrowIfAbandoned();
        MirrorBand(a, n, ib, std::min(ib + kMirrorTile, n));
    }
}

}  // namespace kernels
}  // namespace engine
