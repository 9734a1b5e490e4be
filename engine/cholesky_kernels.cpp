// The damped solve: a recursive Cholesky factorization of the damped quasi-Hessian, read from the triangle that
// the accumulation keeps, and the plain LU for a matrix that proves not positive definite.
//
// The matrix is row-major. Its strict upper triangle holds the quasi-Hessian and is only ever read; the factor
// L is written into the lower triangle and the diagonal. Each block of the lower triangle is loaded from the
// upper one (and each diagonal element from the kept diagonal plus the damping value) by the piece of work
// that first uses it, so a try restores nothing before it starts.
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

// Diagonal blocks this small are factored by LAPACK's Cholesky on one thread; larger ones split in two.
constexpr int kBaseBlock = 128;
// Triangular solves with a triangle this small go to the BLAS as they are; larger ones split into products.
constexpr int kBaseSolve = 32;
// Strips of rows shared among the threads are at least this tall: each packs the triangle or the panel anew.
constexpr size_t kMinStripRows = 96;
// Below this much work (some hundredths of a millisecond) a strip stays on the calling thread. Far lower than
// the LU's: a try of the Error Correction Algorithm at 401 parameters is half a millisecond, whose updates
// would otherwise run on one core while the others wait, and so would the second level of the recursion at
// 1201 parameters.
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

// Solves X L^T = B in place of B, for the lower triangle L (w x w) and B (rows x w), both at stride ld: the left
// columns first, then the right ones less the product of the left solution with L's lower left block, so that
// most of the work runs as a matrix product.
void SolveRightTransposed(const double* l, double* b, int rows, int w, int ld) {
    if (w <= kBaseSolve) {
        cblas_dtrsm(CblasRowMajor, CblasRight, CblasLower, CblasTrans, CblasNonUnit, rows, w, 1.0, l, ld, b, ld);
        return;
    }
    const int left = w / 2;
    const size_t down = static_cast<size_t>(left) * ld;
    SolveRightTransposed(l, b, rows, left, ld);
    cblas_dgemm(CblasRowMajor, CblasNoTrans, CblasTrans, rows, w - left, left, -1.0, b, ld, l + down, ld, 1.0,
                b + left, ld);
    SolveRightTransposed(l + down + left, b + left, rows, w - left, ld);
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

// The diagonal block k0 .. k0 + w - 1: its left half is factored, the rows of its right half solved with it,
// their product subtracted from the right half's diagonal block, and that block factored in turn. With
// loaded false nothing of the block has been loaded yet, and each piece loads its rows as it starts.
bool FactorBlock(const CCholesky& c, int k0, int w, bool loaded) {
    c.cancel.ThrowIfAbandoned();
    // A block whose updates are too small to share among threads (each about w^3 / 8 operations) gains nothing
    // from the splits either: LAPACK factors it whole. The Error Correction Algorithm's networks end here.
    if (w <= kBaseBlock || double(w) * w * w / 8 < 2 * kStripThreadWork) {
        if (!loaded) Load(c, k0, k0 + w, k0, k0 + w);
        return FactorSmall(c, k0, w);
    }
    const int h = std::max(kBaseBlock / 2, (w / 2 + 7) / 8 * 8);
    const int k1 = k0 + h, m = w - h;
    if (!FactorBlock(c, k0, h, loaded)) return false;
    // L21 = A21 L11^-T, by strips of rows (and within a strip, pieces of rows of bounded work).
    InRowStrips(
        m, [&](int r0, int r1) { return double(r1 - r0) * h * h; }, false,
        [&](int r0, int r1) {
            if (!loaded) Load(c, k1 + r0, k1 + r1, k0, k1);
            InStrips(
                static_cast<size_t>(r1 - r0), double(h) * h, c.cancel,
                [&](size_t i0, size_t count) {
                    SolveRightTransposed(c.At(k0, k0), c.At(k1 + r0 + static_cast<int>(i0), k0),
                                         static_cast<int>(count), h, c.n);
                },
                kPieceWork);
        });
    c.cancel.ThrowIfAbandoned();
    // A22 -= L21 L21^T on the lower triangle, by strips of rows: the part left of each strip's diagonal block
    // as a product (in pieces of bounded work), the diagonal block by a symmetric rank-k update.
    InRowStrips(
        m, [&](int r0, int r1) { return double(r1 - r0) * (r1 + r0) * h; }, true,
        [&](int r0, int r1) {
            const int rows = r1 - r0;
            if (!loaded) Load(c, k1 + r0, k1 + r1, k1, k1 + r1);
            InStrips(
                static_cast<size_t>(r0), 2.0 * rows * h, c.cancel,
                [&](size_t j0, size_t width) {
                    cblas_dgemm(CblasRowMajor, CblasNoTrans, CblasTrans, rows, static_cast<int>(width), h, -1.0,
                                c.At(k1 + r0, k0), c.n, c.At(k1 + static_cast<int>(j0), k0), c.n, 1.0,
                                c.At(k1 + r0, k1 + static_cast<int>(j0)), c.n);
                },
                kPieceWork);
            cblas_dsyrk(CblasRowMajor, CblasLower, CblasNoTrans, rows, h, -1.0, c.At(k1 + r0, k0), c.n, 1.0,
                        c.At(k1 + r0, k1 + r0), c.n);
        });
    c.cancel.ThrowIfAbandoned();
    return FactorBlock(c, k1, m, true);
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
    return FactorBlock(CCholesky{a, n, diagonal, damping, cancel}, 0, n, false);
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
