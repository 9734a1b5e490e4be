// The damped solve: a blocked Cholesky factorization of the damped quasi-Hessian, read from the triangle that
// the accumulation keeps, and the plain LU for a matrix that proves not positive definite.
//
// The matrix is row-major and symmetric as the accumulation leaves it. Its strict lower triangle is only ever
// read; the factor is written over the diagonal and the upper triangle, which, read column by column, is the
// lower triangle of a column-major matrix: the layout in which the BLAS's Cholesky factorization runs fastest
// (half as fast again as in the other triangle, on the orders of the Error Correction Algorithm's networks).
// A try first loads its triangle from the kept one (and each diagonal element from the kept diagonal plus the
// damping value) in strips on the threads, so that it needs no copy of the matrix apart and nothing is
// restored after it. Below, (i, j) is the element of row i and column j of that column-major matrix.
#include <cblas.h>
#include <lapack.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <limits>
#include <vector>

#include "engine/kernels.h"
#include "engine/parallel.h"

namespace engine {
namespace kernels {

namespace {

// Columns of a step: each step factors a diagonal block this wide on one thread, then solves the rows below it
// with that block and subtracts their product from the rest of the matrix, both shared among the threads. The
// subtraction, nearly all the work, is then a rank-96 update, which the BLAS runs near its peak; wider steps
// leave more of the work to the one-thread factorization of the block and the triangular products, which run
// well below it, and narrower ones make the update's products thin.
constexpr int kStepColumns = 96;
// A matrix of up to this order is factored whole by LAPACK on one thread, which leaves the other free for the
// next try's (SolveDampedWithNext). Alone, the steps' one-thread parts and hand-offs cost about what the second
// thread saves here (401: 448 microseconds in steps, 416 whole; 441: 527 and 533; 481: 615 and 648), and the
// next try then comes for little more. The Error Correction Algorithm's networks of up to 120 units end here.
constexpr int kWholeOrder = 480;
// Strips shared among the threads are at least this long: each packs the step's columns anew, and fewer,
// longer strips keep the products large.
constexpr size_t kMinStripRows = 128;
// Below this much work (some hundredths of a millisecond) a strip stays on the calling thread.
constexpr double kStripThreadWork = 2.0e6;
// From this order on a try hands the next try's factorization to a kept thread (SolveDampedWithNext): below it
// the factorization takes a few microseconds, about what the hand-over costs.
constexpr int kNextTryOrder = 48;
// Pieces of at most this much work between two looks at the cancel token: about a hundredth of a second.
constexpr double kPieceWork = 1e9;
// Tiles of the transposed loads: rows written and columns read both stay within the cache.
constexpr int kLoadTile = 32;

struct CCholesky {
    double* a;            // the factors, over the diagonal and the upper triangle
    const double* kept;   // the matrix, in its strict lower triangle: a itself, or another block
    int n;
    const double* diagonal;
    double damping;
    const CCancelToken& cancel;
    // Column-major: the factor's column j runs along the stored row j.
    double* At(int i, int j) const { return a + static_cast<size_t>(j) * n + i; }
};

// Rows i0 .. i1 - 1, columns j0 .. j1 - 1 of the factor's triangle from the kept matrix: (i, j) below the
// diagonal is the kept (j, i), the diagonal the kept diagonal plus the damping value. Elements above the
// diagonal, the kept ones, are left alone.
void Load(const CCholesky& c, int i0, int i1, int j0, int j1) {
    for (int ib = i0; ib < i1; ib += kLoadTile)
        for (int jb = j0; jb < j1; jb += kLoadTile) {
            const int iEnd = std::min(ib + kLoadTile, i1), jEnd = std::min(jb + kLoadTile, j1);
            for (int i = ib; i < iEnd; ++i) {
                const double* kept = c.kept + static_cast<size_t>(i) * c.n;  // the kept (j, i), j < i
                const int below = std::min(jEnd, i);
                for (int j = jb; j < below; ++j) *c.At(i, j) = kept[j];
                if (i >= jb && i < jEnd) *c.At(i, i) = c.diagonal[i] + c.damping;
            }
        }
}

// The diagonal block k0 .. k0 + w - 1 by LAPACK's Cholesky on one BLAS thread. false when a diagonal element
// of L is not a positive finite number: the matrix is not positive definite, or holds NaNs or infinities (each
// element of a row of L enters that row's diagonal element), whose ends the LU decides.
bool FactorSmall(const CCholesky& c, int k0, int w) {
    const char lower = 'L';
    const lapack_int order = w, ld = c.n;
    lapack_int info = 0;
    LAPACK_dpotrf(&lower, &order, c.At(k0, k0), &ld, &info);
    if (info != 0) return false;
    for (int i = k0; i < k0 + w; ++i)
        if (!(*c.At(i, i) > 0.0 && *c.At(i, i) < std::numeric_limits<double>::infinity())) return false;
    return true;
}

// How the work of one row or column of a strip grows along its index: evenly, growing (the rows of a lower
// triangle) or shrinking (its columns).
enum class Spread { Even, Growing, Shrinking };

// Strips of the indices 0 .. count - 1 of a piece of work that costs work(i0, i1) for the indices i0 .. i1 - 1:
// a power of two of them (at most eight), of about equal work, each at least kMinStripRows long, on up to
// ThreadCount() threads. Only the shape decides the strips, so the results are the same on any number of
// threads.
template <class Work, class Strip>
void InThreadStrips(int count, Work work, Spread spread, Strip strip) {
    const size_t byWork = static_cast<size_t>(work(0, count) / kStripThreadWork);
    const size_t byLength = static_cast<size_t>(count) / kMinStripRows;
    UINT strips = 1;
    while (strips < 8 && strips * 2 <= std::min(byWork, byLength)) strips *= 2;
    // Where each index's work grows linearly with it, strip i ends at count sqrt((i + 1) / strips); where it
    // shrinks, at the mirror of that.
    auto edge = [&](UINT i) {
        if (i >= strips) return count;
        const double f = double(i) / strips;
        const double share = spread == Spread::Growing     ? std::sqrt(f)
                             : spread == Spread::Shrinking ? 1.0 - std::sqrt(1.0 - f)
                                                           : f;
        return static_cast<int>(count * share) / 8 * 8;
    };
    RunParts(strips, static_cast<UINT>(ThreadCount()), [&](UINT i, UINT) {
        const int i0 = edge(i), i1 = edge(i + 1);
        if (i1 > i0) strip(i0, i1);
    });
}

// The inverse of the factored diagonal block k0 .. k0 + w - 1 (lower, column-major, w x w at stride w;
// nothing above its diagonal is written or read), by LAPACK on one BLAS thread.
void InvertDiagonalBlock(const CCholesky& c, int k0, int w, double* inverse) {
    for (int j = 0; j < w; ++j) std::copy(c.At(k0 + j, k0 + j), c.At(k0 + w, k0 + j), inverse + size_t(j) * w + j);
    const char lower = 'L', nonUnit = 'N';
    const lapack_int order = w, ld = w;
    lapack_int info = 0;
    LAPACK_dtrtri(&lower, &nonUnit, &order, inverse, &ld, &info);  // its diagonal is positive: info stays 0
}

// The rows k1 .. n - 1 below the diagonal block k0 .. k1 - 1, factored already: L21 = A21 L11^-T by strips
// of rows, then A22 -= L21 L21^T on the lower triangle by strips of columns, whose elements lie together in
// memory (the diagonal block of a strip by a symmetric rank-k update, the rows below it as a product in pieces
// of bounded work). L21 is A21 times the block's inverse, transposed: the BLAS's triangular product runs at
// three times the speed of its triangular solve for a block this narrow, and the inverse of a positive
// definite matrix's Cholesky block is as well conditioned as the block.
void UpdateBelow(const CCholesky& c, int k0, int k1, double* inverse) {
    const int w = k1 - k0, m = c.n - k1;
    InvertDiagonalBlock(c, k0, w, inverse);
    InThreadStrips(
        m, [&](int r0, int r1) { return double(r1 - r0) * w * w; }, Spread::Even,
        [&](int r0, int r1) {
            cblas_dtrmm(CblasColMajor, CblasRight, CblasLower, CblasTrans, CblasNonUnit, r1 - r0, w, 1.0, inverse,
                        w, c.At(k1 + r0, k0), c.n);
        });
    c.cancel.ThrowIfAbandoned();
    InThreadStrips(
        m, [&](int j0, int j1) { return double(j1 - j0) * (2.0 * m - j0 - j1) * w; }, Spread::Shrinking,
        [&](int j0, int j1) {
            const int cols = j1 - j0;
            cblas_dsyrk(CblasColMajor, CblasLower, CblasNoTrans, cols, w, -1.0, c.At(k1 + j0, k0), c.n, 1.0,
                        c.At(k1 + j0, k1 + j0), c.n);
            InStrips(
                static_cast<size_t>(m - j1), 2.0 * cols * w, c.cancel,
                [&](size_t offset, size_t rows) {
                    const int i0 = k1 + j1 + static_cast<int>(offset);
                    cblas_dgemm(CblasColMajor, CblasNoTrans, CblasTrans, static_cast<int>(rows), cols, w, -1.0,
                                c.At(i0, k0), c.n, c.At(k1 + j0, k0), c.n, 1.0, c.At(i0, k1 + j0), c.n);
                },
                kPieceWork);
        });
}

// The inverse of a step's diagonal block, kept with the thread for its next try.
std::vector<double>& StepScratch() {
    thread_local std::vector<double> inverse;
    return inverse;
}

// The scratch of the fallback's row swaps, kept with the thread for its next try.
std::vector<int>& PivotScratch() {
    thread_local std::vector<int> indx;
    return indx;
}

// FactorDampedCholesky with the kept triangle read from c.kept.
bool Factor(const CCholesky& c) {
    const int n = c.n;
    if (n <= 0) return true;
    CSingleBlasThread single;  // every product on one BLAS thread, the strips on the threads (InThreadStrips)
    c.cancel.ThrowIfAbandoned();
    if (n <= kWholeOrder) {
        Load(c, 0, n, 0, n);
        return FactorSmall(c, 0, n);
    }
    // The first step's update reaches every element of the lower triangle: all of it is loaded first.
    InThreadStrips(
        n, [&](int r0, int r1) { return double(r1 - r0) * (r1 + r0) / 2; }, Spread::Growing,
        [&](int r0, int r1) { Load(c, r0, r1, 0, r1); });
    std::vector<double>& inverse = StepScratch();
    inverse.resize(size_t(kStepColumns) * kStepColumns);
    for (int k0 = 0; k0 < n; k0 += kStepColumns) {
        c.cancel.ThrowIfAbandoned();
        const int k1 = std::min(k0 + kStepColumns, n);
        if (!FactorSmall(c, k0, k1 - k0)) return false;
        if (k1 < n) UpdateBelow(c, k0, k1, inverse.data());
    }
    return true;
}

}  // namespace

bool FactorDampedCholesky(double* a, int n, const double* diagonal, double damping, const CCancelToken& cancel) {
    return Factor(CCholesky{a, a, n, diagonal, damping, cancel});
}

void SolveWithCholesky(const double* l, int n, const double* b, double* x) {
    if (n <= 0) return;
    CSingleBlasThread single;  // two passes over the factor: memory-bound, one thread reads as fast as two
    std::copy(b, b + n, x);
    cblas_dtrsv(CblasColMajor, CblasLower, CblasNoTrans, CblasNonUnit, n, l, n, x, 1);
    cblas_dtrsv(CblasColMajor, CblasLower, CblasTrans, CblasNonUnit, n, l, n, x, 1);
}

void SolveDampedByLU(const double* a, int n, const double* diagonal, double damping, const double* b, double* x,
                     double* spare, const CCancelToken& cancel) {
    const size_t size = static_cast<size_t>(std::max(n, 0));
    for (size_t i = 0; i < size; ++i) {
        double* row = spare + i * size;
        std::copy(a + i * size, a + i * size + i, row);
        row[i] = diagonal[i] + damping;
        for (size_t j = i + 1; j < size; ++j) row[j] = a[j * size + i];
    }
    std::vector<int>& indx = PivotScratch();
    if (indx.size() < size) indx.resize(size);
    FactorLU(spare, n, indx.data(), cancel);
    SolveWithFactors(spare, n, indx.data(), b, x);
}

void SolveDamped(double* a, int n, const double* diagonal, double damping, const double* b, double* x,
                 double* spare, const CCancelToken& cancel) {
    if (FactorDampedCholesky(a, n, diagonal, damping, cancel))
        SolveWithCholesky(a, n, b, x);
    else
        SolveDampedByLU(a, n, diagonal, damping, b, x, spare, cancel);
}

bool SolveDampedWithNext(double* a, int n, const double* diagonal, double damping, const double* b, double* x,
                         double nextDamping, double* nextX, double* spare, const CCancelToken& cancel) {
    // Only where a try's factorization keeps to one thread is a thread free for the next one's; below
    // kNextTryOrder handing it over costs more than it saves.
    if (n < kNextTryOrder || n > kWholeOrder || ThreadCount() < 2) {
        SolveDamped(a, n, diagonal, damping, b, x, spare, cancel);
        return false;
    }
    CSingleBlasThread single;  // for this thread's products and the helper's
    cancel.ThrowIfAbandoned();
    // The next try's factors go to the spare, loaded from the kept triangle before another thread starts: row
    // by row, what this thread writes of the matrix shares cache lines with the kept elements that load reads,
    // and both threads at it at once took a third longer (order 101: 36 against 26 microseconds).
    const CCholesky mine{a, a, n, diagonal, damping, cancel}, next{spare, a, n, diagonal, nextDamping, cancel};
    Load(next, 0, n, 0, n);
    std::atomic<bool> taken{false};
    bool factored = false, nextSolved = false;
    CWorkerPool::OfProcess().Share(
        [&](UINT worker) {
            if (worker == 0) {
                Load(mine, 0, n, 0, n);
                factored = FactorSmall(mine, 0, n);
                // A helper that comes only now finds the next try taken: this one does not wait for it.
                taken.store(true);
                return;
            }
            // An abandoned run asks for no further try; the run's own thread throws for it.
            if (taken.exchange(true) || cancel.Abandoned()) return;
            if (FactorSmall(next, 0, n)) {
                SolveWithCholesky(spare, n, b, nextX);
                nextSolved = true;
            }
        },
        1);
    // The fallback takes the spare for its own, now that the next try's factors are no longer read.
    if (factored)
        SolveWithCholesky(a, n, b, x);
    else
        SolveDampedByLU(a, n, diagonal, damping, b, x, spare, cancel);
    return nextSolved;
}

}  // namespace kernels
}  // namespace engine
