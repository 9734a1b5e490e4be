// Blocked accumulation of gradient and quasi-Hessian, and the forward pass of the error measure.
//
// A block holds the kChunkPatterns patterns of one chunk side by side: the inputs transposed, so that each
// unit's distances, activations and Jacobian entries run over contiguous patterns (vector instructions, one
// call of ExpArray per unit and chunk). The Jacobian is kept transposed, one row per parameter, which is the
// shape the symmetric rank-k update takes without a copy.
//
// Every sum over patterns is one fixed tree: each chunk is summed on its own, in pattern order within it, and
// chunk sums are added pairwise by a binary tree over the chunk indices. The parts that threads take are
// aligned subtrees of it, and so are the partitions of a cluster, so the sums come out the same on any number
// of cores and workers.
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

// From this many floating-point operations on (about a tenth of a millisecond) the chunks fall into parts for
// the kept threads.
constexpr double kParallelWork = 1.0e7;

// The forward pass alone splits from this much work on (some hundredths of a millisecond): each try of the
// Error Correction Algorithm's networks of some tens of units makes one, and ForwardWork counts an exp as
// a few operations where it takes the time of some tens.
constexpr double kParallelForwardWork = 2.0e6;

// At most this many parts at a time.
constexpr UINT kMaxParts = 8;

// The chunks of the patterns, and the parts that threads take: aligned runs of `span` chunks, a power of two,
// so that every part is one subtree of the tree over the chunk indices. Every boundary follows from the shape,
// the work and the memory alone, never from the number of threads; and since the tree is fixed, not even they
// change a sum.
struct CChunkParts {
    UINT chunks = 0, span = 1, count = 1;
    UINT FirstChunk(UINT part) const { return part * span; }
    UINT EndChunk(UINT part) const { return std::min(chunks, (part + 1) * span); }
};

UINT ChunksOf(UINT patterns) { return static_cast<UINT>((uint64_t(patterns) + kChunkPatterns - 1) / kChunkPatterns); }

UINT CeilLog2(UINT count) {
    UINT levels = 0;
    while ((uint64_t(1) << levels) < count) ++levels;
    return levels;
}

// Parts of at least `span` chunks each; parallelWork: the work from which the chunks fall into parts.
CChunkParts PartsOf(UINT patterns, double work, UINT span = 1, double parallelWork = kParallelWork) {
    CChunkParts parts;
    parts.chunks = ChunksOf(patterns);
    const UINT most = work >= parallelWork ? kMaxParts : 1;
    parts.span = span;
    while ((uint64_t(parts.chunks) + parts.span - 1) / parts.span > most) parts.span *= 2;
    parts.count = std::max<UINT>(1, (parts.chunks + parts.span - 1) / parts.span);
    return parts;
}

double ForwardWork(const CNetworkView& net) {
    return static_cast<double>(net.nPatterns) * net.layout.nUnits * (3.0 * net.layout.nInputs + 25.0);
}

// The sum of count values by the tree: the first half of the next power of two, plus the rest where there is
// any. Every sum of this file over chunks or parts goes this way.
double TreeSum(const double* values, UINT count) {
    struct Node {
        static double Sum(const double* v, UINT count, UINT lo, UINT size) {
            if (size == 1) return v[lo];
            const UINT half = size / 2;
            if (lo + half >= count) return Sum(v, count, lo, half);
            return Sum(v, count, lo, half) + Sum(v, count, lo + half, half);
        }
    };
    return count == 0 ? 0.0 : Node::Sum(values, count, 0, UINT(1) << CeilLog2(count));
}

// The sums of one subtree: a gradient of n and a quasi-Hessian's upper triangle of n x n (or none).
struct CSums {
    double* gradient = nullptr;
    double* hessian = nullptr;
};

// left += right over the gradient and the upper triangle: the tree's one addition.
void AddSums(const CSums& left, const CSums& right, size_t n) {
    for (size_t k = 0; k < n; ++k) left.gradient[k] += right.gradient[k];
    if (!left.hessian) return;
    for (size_t i = 0; i < n; ++i) {
        double* to = left.hessian + i * n;
        const double* from = right.hessian + i * n;
        for (size_t j = i; j < n; ++j) to[j] += from[j];
    }
}

void CopySums(const CSums& to, const CSums& from, size_t n) {
    std::copy_n(from.gradient, n, to.gradient);
    if (!to.hessian) return;
    for (size_t i = 0; i < n; ++i) std::copy(from.hessian + i * n + i, from.hessian + (i + 1) * n, to.hessian + i * n + i);
}

// What one worker computes in, kept per calling thread: a fresh block of this size would come from the system
// page by page on every iteration. A block of rows for one chunk, and the partial sums of the subtree under
// way, one per level of it.
struct CWorkerScratch {
    CBlockScratch block;
    std::vector<double> levels;  // (n + n x n) per level
};

struct CPartScratch {
    std::vector<CWorkerScratch> workers = std::vector<CWorkerScratch>(kMaxParts);
    std::vector<double> parts;      // parts 1 .. count - 1: n each, and from part 2 on n x n each
    std::vector<double> chunkSums;  // the sum of e * e of every chunk: a double per 512 patterns
};

CPartScratch& ScratchOfParts() {
    thread_local CPartScratch scratch;
    return scratch;
}

// Levels a worker keeps for a subtree of span chunks: one per level below the top, and one for the chunk
// under way.
UINT LevelsOf(UINT span) { return span <= 1 ? 0 : CeilLog2(span) + 1; }

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

// Adds the parts' sums by the tree over the part indices (aligned subtrees, so this is the tree over the
// chunks), into part 0: each node adds its right half into its left. add(left, right) does one addition.
template <class Add>
UINT CombineParts(UINT lo, UINT size, UINT count, const Add& add) {
    if (size == 1) return lo;
    const UINT half = size / 2;
    const UINT left = CombineParts(lo, half, count, add);
    if (lo + half >= count) return left;
    add(left, CombineParts(lo + half, half, count, add));
    return left;
}

template <class Add>
void CombineParts(UINT count, const Add& add) {
    if (count > 1) CombineParts(0, UINT(1) << CeilLog2(count), count, add);
}

// The parts' quasi-Hessians (upper triangles) added by the tree into parts[0], then mirrored onto its lower
// triangle. Bands of rows go to the threads, first for the sums, then for the mirror, which reads the summed
// rows of other bands; every element is computed the same way wherever its band runs.
void AddAndMirror(const std::vector<double*>& parts, size_t n, const CCancelToken& cancel) {
    double* hessian = parts[0];
    const UINT bands = static_cast<UINT>((n + kMirrorTile - 1) / kMirrorTile);
    // Below this many elements (about a tenth of a millisecond of copying) one thread does it all.
    constexpr double kBandThreadElements = 2e5;
    const UINT workers = double(n) * n >= kBandThreadElements ? static_cast<UINT>(ThreadCount()) : 1;
    if (parts.size() > 1) {
        RunParts(bands, workers, [&](UINT band, UINT) {
            const size_t ib = band * kMirrorTile, iEnd = std::min(ib + kMirrorTile, n);
            CombineParts(static_cast<UINT>(parts.size()), [&](UINT left, UINT right) {
                for (size_t i = ib; i < iEnd; ++i)
                    for (size_t j = i; j < n; ++j) parts[left][i * n + j] += parts[right][i * n + j];
            });
        });
    }
    cancel.ThrowIfAbandoned();
    RunParts(bands, workers, [&](UINT band, UINT) {
        const size_t ib = band * kMirrorTile;
        MirrorBand(hessian, n, ib, std::min(ib + kMirrorTile, n));
    });
}

// The sums of one chunk into `to`: its Jacobian block, e * J into the gradient, J J^T into the upper triangle
// (both overwritten), and its sum of e * e in pattern order into chunkSums.
void SumChunk(const CNetworkView& net, UINT chunk, size_t n, CBlockScratch& s, const CSums& to, UINT strips,
              double* chunkSums, const CCancelToken& cancel) {
    const UINT first = chunk * kChunkPatterns, count = std::min(kChunkPatterns, net.nPatterns - first);
    ForwardBlock(net, first, count, s, true, cancel);
    chunkSums[chunk] = BlockErrors(net, first, count, s);
    if (n == 0) return;
    cblas_dgemv(CblasRowMajor, CblasNoTrans, static_cast<int>(n), static_cast<int>(count), 1.0, s.rows.data(),
                static_cast<int>(s.lanes), s.e.data(), 1, 0.0, to.gradient, 1);
    if (to.hessian) AddRankK(s.rows.data(), s.lanes, count, n, 0.0, to.hessian, strips, cancel);
}

// The sums of the chunks first .. end - 1 (an aligned subtree, or what of one the patterns reach) into `to`,
// by the tree: each chunk's sums into a free level, and two of the same level added left + right as soon as
// both are there; what stays at the end is added from the lowest level up.
void SumSubtree(const CNetworkView& net, UINT first, UINT end, size_t n, CWorkerScratch& w, const CSums& to,
                UINT strips, double* chunkSums, const CCancelToken& cancel) {
    if (end - first == 1) return SumChunk(net, first, n, w.block, to, strips, chunkSums, cancel);
    const size_t square = to.hessian ? n * n : 0, stride = n + square;
    auto level = [&](UINT k) { return CSums{w.levels.data() + k * stride, to.hessian ? w.levels.data() + k * stride + n : nullptr}; };
    const UINT depth = LevelsOf(end - first);
    std::vector<int> held(depth, -1);  // the level buffer that holds a finished subtree of 2^l chunks
    std::vector<bool> busy(depth, false);
    auto freeBuffer = [&] {
        UINT k = 0;
        while (busy[k]) ++k;
        busy[k] = true;
        return k;
    };
    for (UINT chunk = first; chunk < end && !cancel.Abandoned(); ++chunk) {
        UINT right = freeBuffer();
        SumChunk(net, chunk, n, w.block, level(right), strips, chunkSums, cancel);
        UINT l = 0;
        for (; held[l] >= 0; ++l) {
            const UINT left = static_cast<UINT>(held[l]);
            AddSums(level(left), level(right), n);
            busy[right] = false;
            right = left;
            held[l] = -1;
        }
        held[l] = static_cast<int>(right);
    }
    int sum = -1;
    for (UINT l = 0; l < depth; ++l) {
        if (held[l] < 0) continue;
        if (sum >= 0) AddSums(level(static_cast<UINT>(held[l])), level(static_cast<UINT>(sum)), n);
        sum = held[l];
    }
    if (sum >= 0) CopySums(to, level(static_cast<UINT>(sum)), n);
}

}  // namespace

void FillJacobianTransposed(const CNetworkView& net, UINT first, UINT count, double* rows, size_t ld,
                            double* errors) {
    CBlockScratch s;
    const size_t rowCount = net.layout.Count();
    const UINT block = kChunkPatterns;
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
    const size_t n = nParams, rowCount = RowWidth(net, nParams), square = hessian ? n * n : 0;
    const double flops = ForwardWork(net) + static_cast<double>(net.nPatterns) * n * ((hessian ? n : 0.0) + 6.0);
    // The workers' rows and levels, the parts' sums beyond the caller's (part 1's quasi-Hessian goes to the
    // spare), and a BLAS buffer for each worker's thread, refused before they are taken when they can't fit.
    // Fewer, longer parts take less: a part holds a level more for each doubling.
    auto need = [&](const CChunkParts& p, UINT workers) {
        const double partSquares = p.count > 2 ? double(p.count - 2) * square : 0.0;
        return workers * (double(rowCount) * Padded(kChunkPatterns) + LevelsOf(p.span) * double(n + square)) +
               (p.count - 1.0) * n + partSquares;
    };
    CChunkParts parts = PartsOf(net.nPatterns, flops);
    UINT workers = std::min<UINT>(parts.count, static_cast<UINT>(ThreadCount()));
    while (!DoublesFit(need(parts, workers)) && parts.count > 1) {
        parts = PartsOf(net.nPatterns, flops, parts.span * 2);
        workers = std::min<UINT>(parts.count, static_cast<UINT>(ThreadCount()));
    }
    if (!DoublesFit(need(parts, workers)) || !BlasBuffersFit(static_cast<int>(workers))) throw std::bad_alloc();
    // Threads for the strips of one chunk's update: those that the parts leave over.
    const UINT strips = std::max<UINT>(1, static_cast<UINT>(ThreadCount()) / workers);

    CPartScratch& scratch = ScratchOfParts();
    const size_t levelDoubles = LevelsOf(parts.span) * (n + square);
    for (UINT w = 0; w < workers; ++w) {
        CWorkerScratch& worker = scratch.workers[w];
        worker.block.Reserve(net.layout.nInputs, rowCount, kChunkPatterns);
        FillFixedRows(net, rowCount, worker.block);
        if (worker.levels.size() < levelDoubles) worker.levels.resize(levelDoubles);
    }
    const size_t partDoubles = (parts.count - 1) * n + (parts.count > 2 ? (parts.count - 2) * square : 0);
    if (scratch.parts.size() < partDoubles) scratch.parts.resize(partDoubles);
    scratch.chunkSums.assign(parts.chunks, 0.0);
    std::vector<CSums> sums(parts.count);
    for (UINT part = 0; part < parts.count; ++part) {
        double* g = part == 0 ? gradient : scratch.parts.data() + (part - 1) * n;
        double* h = part == 0 ? hessian : part == 1 ? spare : scratch.parts.data() + (parts.count - 1) * n + (part - 2) * square;
        sums[part] = CSums{g, hessian ? h : nullptr};
    }
    if (parts.chunks == 0) {
        // No pattern: every sum is 0.0.
        std::fill_n(gradient, n, 0.0);
        if (hessian) std::fill_n(hessian, n * n, 0.0);
        return 0.0;
    }
    {
        // Every product on one BLAS thread (see AddRankK); threads that the parts leave over share the strips
        // of the chunks' updates instead.
        CSingleBlasThread single;
        RunParts(parts.count, workers, [&](UINT part, UINT worker) {
            SumSubtree(net, parts.FirstChunk(part), parts.EndChunk(part), n, scratch.workers[worker], sums[part],
                       strips, scratch.chunkSums.data(), cancel);
        });
    }
    cancel.ThrowIfAbandoned();  // the parts stopped early: what they hold is incomplete

    std::vector<double*> gradients;
    for (const CSums& part : sums) gradients.push_back(part.gradient);
    AddByTree(gradients.data(), parts.count, n);
    if (hessian) {
        std::vector<double*> squares;
        for (const CSums& part : sums) squares.push_back(part.hessian);
        AddAndMirror(squares, n, cancel);
    }
    return TreeSum(scratch.chunkSums.data(), parts.chunks);
}

void AddByTree(double* const* sums, UINT count, size_t length) {
    CombineParts(count, [&](UINT left, UINT right) {
        for (size_t k = 0; k < length; ++k) sums[left][k] += sums[right][k];
    });
}

double SumSquaredErrors(const CNetworkView& net, double* outputs, const CCancelToken& cancel) {
    // The chunks of the accumulation, so that both sum the squares in the same order.
    const CChunkParts parts = PartsOf(net.nPatterns, ForwardWork(net), 1, kParallelForwardWork);
    const UINT workers = std::min<UINT>(parts.count, static_cast<UINT>(ThreadCount()));
    CPartScratch& scratch = ScratchOfParts();
    for (UINT w = 0; w < workers; ++w) scratch.workers[w].block.Reserve(net.layout.nInputs, 0, kChunkPatterns);
    scratch.chunkSums.assign(parts.chunks, 0.0);
    RunParts(parts.count, workers, [&](UINT part, UINT worker) {
        CBlockScratch& s = scratch.workers[worker].block;
        for (UINT c = parts.FirstChunk(part); c < parts.EndChunk(part) && !cancel.Abandoned(); ++c) {
            const UINT first = c * kChunkPatterns, count = std::min(kChunkPatterns, net.nPatterns - first);
            ForwardBlock(net, first, count, s, false, cancel);
            scratch.chunkSums[c] = BlockErrors(net, first, count, s);
            if (outputs) std::copy(s.y.data(), s.y.data() + count, outputs + first);
        }
    });
    cancel.ThrowIfAbandoned();
    return TreeSum(scratch.chunkSums.data(), parts.chunks);
}

void MirrorUpperToLower(double* a, size_t n, const CCancelToken& cancel) {
    for (size_t ib = 0; ib < n; ib += kMirrorTile) {
        cancel.ThrowIfAbandoned();
        MirrorBand(a, n, ib, std::min(ib + kMirrorTile, n));
    }
}

}  // namespace kernels
}  // namespace engine
