// The damped solve: a blocked Cholesky factorization of the damped quasi-Hessian, read from the triangle that
// the accumulation keeps, and the plain LU for a matrix that proves not positive definite.
//
// The matrix is row-major. Its strict upper triangle holds the quasi-Hessian and is only ever read; the factor
// L is written into the lower triangle and the diagonal. A try first loads the lower triangle from the upper one
// (and each diagonal element from the kept diagonal plus the damping value) in strips of rows on the threads,
// so that it needs no copy of the matrix apart and nothing is restored after it.
#include <cblas.h>
#include <lapack.h>

#include <algorithm>
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
// A matrix of up to this order is factored whole by LAPACK on one thread: its steps' updates are too small to
// share (each costs less than handing a strip to a kept thread). The Error Correction Algorithm's small
// networks end here.
constexpr int kWholeOrder = 192;
// Strips of rows shared among the threads are at least this tall: each packs the step's columns anew, and
// fewer, taller strips keep the products large.
constexpr size_t kMinStripRows = 128;
// Below this much work (some hundredths of a millisecond) a strip stays on the calling thread.
constexpr double kStripThreadWork = 2.0e6;
// Pieces of at most this much work between two looks at the cancel token: about a hundredth of a second.
constexpr double kPieceWork = 1e9;
// Tiles of the transposed loads: rows written and columns read both stay within the cache.
constexpr int kLoadTile = 32;

struct CCholesky {
    double* a;
    int n;
    const double* diagonal;
    double damping;
    const CCancelToken& cancel;
    double* At(int i, int j) const { return a + static_cast<size_t>(i) * n + j; }
};

// Rows i0 .. i1 - 1, columns j0 .. j1 - 1 of the lower triangle from the kept matrix: a[i][j] = a[j][i] below
// the diagonal, the kept diagonal plus the damping value on it. Elements above the diagonal are left alone.
void Load(const CCholesky& c, int i0, int i1, int j0, int j1) {
    for (int ib = i0; ib < i1; ib += kLoadTile)
        for (int jb = j0; jb < j1; jb += kLoadTile) {
            const int iEnd = std::min(ib + kLoadTile, i1), jEnd = std::min(jb + kLoadTile, j1);
            for (int i = ib; i < iEnd; ++i) {
                double* row = c.At(i, 0);
                const int below = std::min(jEnd, i);
                for (int j = jb; j < below; ++j) row[j] = c.a[static_cast<size_t>(j) * c.n + i];
                if (i >= jb && i < jEnd) row[i] = c.diagonal[i] + c.damping;
            }
        }
}

// The diagonal block k0 .. k0 + w - 1 by LAPACK's Cholesky on one BLAS thread: its column-major upper
// triangle is the row-major lower one. false when a diagonal element of L is not a positive finite number:
// the matrix is not positive definite, or holds NaNs or infinities (each element of a row of L enters that
// row's diagonal element), whose ends the LU decides.
bool FactorSmall(const CCholesky& c, int k0, int w) {
    const char upper = 'U';
    const lapack_int order = w, ld = c.n;
    lapack_int info = 0;
    LAPACK_dpotrf(&upper, &order, c.At(k0, k0), &ld, &info);
    if (info != 0) return false;
    for (int i = k0; i < k0 + w; ++i)
        if (!(*c.At(i, i) > 0.0 && *c.At(i, i) < std::numeric_limits<double>::infinity())) return false;
    return true;
}

// Strips of rows 0 .. rows - 1 of a piece of work that costs rowWork(r0, r1) for the rows r0 .. r1 - 1: a power
// of two of them (at most eight), of about equal work, each at least kMinStripRows tall, on up to ThreadCount()
// threads. Only the shape decides the strips, so the results are the same on any number of threads.
template <class RowWork, class Strip>
void InRowStrips(int rows, RowWork rowWork, bool growing, Strip strip) {
    const double work = rowWork(0, rows);
    const size_t byWork = static_cast<size_t>(work / kStripThreadWork);
    const size_t byRows = static_cast<size_t>(rows) / kMinStripRows;
    UINT strips = 1;
    while (strips < 8 && strips * 2 <= std::min(byWork, byRows)) strips *= 2;
    // Where each row's work grows with its index (a triangle), strip i ends at rows sqrt((i + 1) / strips).
    auto edge = [&](UINT i) {
        if (i >= strips) return rows;
        const double share = growing ? std::sqrt(double(i) / strips) : double(i) / strips;
        return static_cast<int>(rows * share) / 8 * 8;
    };
    RunParts(strips, static_cast<UINT>(ThreadCount()), [&](UINT i, UINT) {
        const int r0 = edge(i), r1 = edge(i + 1);
        if (r1 > r0) strip(r0, r1);
    });
}

// The inverse of the factored diagonal block k0 .. k0 + w - 1 (lower, w x w at stride w; nothing above its
// diagonal is written or read), by LAPACK on one BLAS thread.
void InvertDiagonalBlock(const CCholesky& c, int k0, int w, double* inverse) {
    for (int i = 0; i < w; ++i) std::copy(c.At(k0 + i, k0), c.At(k0 + i, k0 + i + 1), inverse + size_t(i) * w);
    const char upper = 'U', nonUnit = 'N';
    const lapack_int order = w, ld = w;
    lapack_int info = 0;
    LAPACK_dtrtri(&upper, &nonUnit, &order, inverse, &ld, &info);  // its diagonal is positive: info stays 0
}

// The rows k1 .. n - 1 below the diagonal block k0 .. k1 - 1, factored already: L21 = A21 L11^-T, then
// A22 -= L21 L21^T on the lower triangle, each by strips of rows (the part of an update strip left of its
// diagonal block as a product in pieces of bounded work, the diagonal block by a symmetric rank-k update).
// L21 is A21 times the block's inverse, transposed: the BLAS's triangular product runs at three times the
// speed of its triangular solve for a block this narrow, and the inverse of a positive definite matrix's
// Cholesky block is as well conditioned as the block.
void UpdateBelow(const CCholesky& c, int k0, int k1, double* inverse) {
    const int w = k1 - k0, m = c.n - k1;
    InvertDiagonalBlock(c, k0, w, inverse);
    InRowStrips(
        m, [&](int r0, int r1) { return double(r1 - r0) * w * w; }, false,
        [&](int r0, int r1) {
            cblas_dtrmm(CblasRowMajor, CblasRight, CblasLower, CblasTrans, CblasNonUnit, r1 - r0, w, 1.0, inverse,
                        w, c.At(k1 + r0, k0), c.n);
        });
    c.cancel.ThrowIfAbandoned();
    InRowStrips(
        m, [&](int r0, int r1) { return double(r1 - r0) * (r1 + r0) * w; }, true,
        [&](int r0, int r1) {
            const int rows = r1 - r0;
            InStrips(
                static_cast<size_t>(r0), 2.0 * rows * w, c.cancel,
                [&](size_t j0, size_t width) {
                    cblas_dgemm(CblasRowMajor, CblasNoTrans, CblasTrans, rows, static_cast<int>(width), w, -1.0,
                                c.At(k1 + r0, k0), c.n, c.At(k1 + static_cast<int>(j0), k0), c.n, 1.0,
                                c.At(k1 + r0, k1 + static_cast<int>(j0)), c.n);
                },
                kPieceWork);
            cblas_dsyrk(CblasRowMajor, CblasLower, CblasNoTrans, rows, w, -1.0, c.At(k1 + r0, k0), c.n, 1.0,
                        c.At(k1 + r0, k1 + r0), c.n);
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

}  // namespace

bool FactorDampedCholesky(double* a, int n, const double* diagonal, double damping, const CCancelToken& cancel) {
    if (n <= 0) return true;
    CSingleBlasThread single;  // every product on one BLAS thread, the strips on the threads (InRowStrips)
    const CCholesky c{a, n, diagonal, damping, cancel};
    cancel.ThrowIfAbandoned();
    if (n <= kWholeOrder) {
        Load(c, 0, n, 0, n);
        return FactorSmall(c, 0, n);
    }
    // The first step's update reaches every element of the lower triangle: all of it is loaded first.
    InRowStrips(
        n, [&](int r0, int r1) { return double(r1 - r0) * (r1 + r0) / 2; }, true,
        [&](int r0, int r1) { Load(c, r0, r1, 0, r1); });
    std::vector<double>& inverse = StepScratch();
    inverse.resize(size_t(kStepColumns) * kStepColumns);
    for (int k0 = 0; k0 < n; k0 += kStepColumns) {
        cancel.ThrowIfAbandoned();
        const int k1 = std::min(k0 + kStepColumns, n);
        if (!FactorSmall(c, k0, k1 - k0)) return false;
        if (k1 < n) UpdateBelow(c, k0, k1, inverse.data());
    }
    return true;
}

void SolveWithCholesky(const double* l, int n, const double* b, double* x) {
    if (n <= 0) return;
    CSingleBlasThread single;  // two passes over the factor: memory-bound, one thread reads as fast as two
    std::copy(b, b + n, x);
    cblas_dtrsv(CblasRowMajor, CblasLower, CblasNoTrans, CblasNonUnit, n, l, n, x, 1);
    cblas_dtrsv(CblasRowMajor, CblasLower, CblasTrans, CblasNonUnit, n, l, n, x, 1);
}

void SolveDampedByLU(const double* a, int n, const double* diagonal, double damping, const double* b, double* x,
                     double* spare, const CCancelToken& cancel) {
    const size_t size = static_cast<size_t>(std::max(n, 0));
    for (size_t i = 0; i < size; ++i) {
        double* row = spare + i * size;
        for (size_t j = 0; j < i; ++j) row[j] = a[j * size + i];
        row[i] = diagonal[i] + damping;
        std::copy(a + i * size + i + 1, a + (i + 1) * size, row + i + 1);
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

}  // namespace kernels
}  // namespace engine
