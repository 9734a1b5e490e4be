// Recursive blocked LU with implicit scaled partial pivoting, and the solve with its factors.
#include <cblas.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "engine/kernels.h"
#include "engine/matrix.h"
#include "engine/parallel.h"

namespace engine {
namespace kernels {

namespace {

// Panels this narrow are factored column by column; wider ones split in two.
constexpr int kBasePanel = 16;

// The updates of a panel's right half run in strips at least this wide (the triangular solve's, by columns)
// or this tall (the product's, by rows), since each strip packs its share of the other operand anew, and in
// pieces of at most this much work between two looks at the cancel token: about a hundredth of a second.
constexpr size_t kMinStripWidth = 256;
constexpr size_t kMinStripRows = 256;
constexpr double kPieceWork = 1e9;

struct Factorization {
    double* a;
    int n;
    int* indx;
    std::vector<double> vv;     // 1 / largest magnitude of each row, moved along with the rows
    std::vector<double> panel;  // the narrow panel under way (CPanel)
    const CCancelToken& cancel;
    double* At(int i, int j) const { return a + static_cast<size_t>(i) * n + j; }
};

// The largest of scale[i] * |v[i]| over i < count (scale null: 1), or 0.0 when none is positive; NaNs never
// pass the comparison. Four running maxima side by side, so that the comparisons run as vector instructions
// rather than as one chain: the largest value is the same in any order.
double LargestScaled(const double* v, const double* scale, int count) {
    double big[4] = {0.0, 0.0, 0.0, 0.0};
    const int whole = count / 4 * 4;
    for (int i = 0; i < whole; i += 4)
        for (int l = 0; l < 4; ++l) {
            const double t = (scale ? scale[i + l] : 1.0) * std::fabs(v[i + l]);
            big[l] = t > big[l] ? t : big[l];
        }
    for (int i = whole; i < count; ++i) {
        const double t = (scale ? scale[i] : 1.0) * std::fabs(v[i]);
        big[0] = t > big[0] ? t : big[0];
    }
    const double a = big[0] > big[1] ? big[0] : big[1], b = big[2] > big[3] ? big[2] : big[3];
    return a > b ? a : b;
}

// The implicit scaling. A row of NaNs counts as a zero row.
void ScaleRows(Factorization& f) {
    for (int i = 0; i < f.n; ++i) {
        if ((i & 0xFF) == 0) f.cancel.ThrowIfAbandoned();
        const double big = LargestScaled(f.At(i, 0), nullptr, f.n);
        if (big == 0.0) throw CSingularMatrixException();
        f.vv[i] = 1.0 / big;
    }
}

// A narrow panel (columns k0 .. k0 + width - 1, rows k0 .. n - 1) copied out column by column, so that the
// pivot search, the multipliers and the rank-1 updates run over contiguous memory; the row swaps of its steps
// are applied to the columns outside it once it is done. Nothing outside the panel is read meanwhile, so the
// factors are those of whole-row swaps made at once.
struct CPanel {
    int k0, width, rows;
    std::vector<double>& columns;  // column c of the panel at columns[c * rows], its row i - k0 at offset i - k0
    double* Column(int c) { return columns.data() + static_cast<size_t>(c) * rows; }
};

// Step k of the plain decomposition within the panel: pivot search, row swap, indx, TINY and the multipliers
// below the diagonal. The rank-1 update of the panel's columns right of k is left to the caller.
void EliminateColumn(Factorization& f, CPanel& p, int k) {
    const int c = k - p.k0, top = k - p.k0;
    const double* column = p.Column(c);
    // The first row of the largest scaled magnitude, found as the first that equals the largest. A column with
    // no positive scaled candidate (all 0 or NaN) keeps its own row as pivot: the matrix has no inverse, and the
    // run meets huge values or NaNs instead of an undefined row index.
    int imax = k;
    const double big = LargestScaled(column + top, f.vv.data() + k, f.n - k);
    if (big > 0.0)
        while (!(f.vv[imax] * std::fabs(column[imax - p.k0]) == big)) ++imax;
    if (imax != k) {
        for (int j = 0; j < p.width; ++j) std::swap(p.Column(j)[top], p.Column(j)[imax - p.k0]);
        f.vv[imax] = f.vv[k];
    }
    f.indx[k] = imax;
    double* below = p.Column(c);
    if (below[top] == 0.0) below[top] = kTinyPivot;
    const double pivot = below[top];
    for (int i = top + 1; i < p.rows; ++i) below[i] = below[i] / pivot;
}

// Columns k0 .. k0 + width - 1, rows k0 .. n - 1, one column at a time with rank-1 updates inside the panel.
void FactorNarrowPanel(Factorization& f, int k0, int width) {
    CPanel p{k0, width, f.n - k0, f.panel};
    p.columns.resize(static_cast<size_t>(width) * p.rows);
    for (int i = 0; i < p.rows; ++i) {
        const double* row = f.At(k0 + i, k0);
        for (int c = 0; c < width; ++c) p.Column(c)[i] = row[c];
    }
    for (int c = 0; c < width; ++c) {
        f.cancel.ThrowIfAbandoned();
        EliminateColumn(f, p, k0 + c);
        const double* multipliers = p.Column(c);
        for (int j = c + 1; j < width; ++j) {
            double* column = p.Column(j);
            const double u = column[c];  // the pivot row's entry
            for (int i = c + 1; i < p.rows; ++i) column[i] -= multipliers[i] * u;
        }
    }
    for (int i = 0; i < p.rows; ++i) {
        double* row = f.At(k0 + i, k0);
        for (int c = 0; c < width; ++c) row[c] = p.Column(c)[i];
    }
    // The same swaps, in their order, on the columns left and right of the panel.
    const int end = k0 + width;
    for (int k = k0; k < end; ++k) {
        const int imax = f.indx[k];
        if (imax == k) continue;
        std::swap_ranges(f.At(imax, 0), f.At(imax, k0), f.At(k, 0));
        std::swap_ranges(f.At(imax, end), f.At(imax, 0) + f.n, f.At(k, end));
    }
}

// Solves L X = B in place of B, for the unit lower triangle L (m x m) and B (m x w), both at stride ld: the top
// half first, then the bottom half's right-hand sides less the product of L's lower left block with the top
// half's solution. Most of the work thus runs as a matrix product, which the BLAS does several times faster
// than its triangular solve.
void SolveUnitLower(const double* l, double* b, int m, int w, int ld) {
    constexpr int kBaseSolve = 32;
    if (m <= kBaseSolve) {
        cblas_dtrsm(CblasRowMajor, CblasLeft, CblasLower, CblasNoTrans, CblasUnit, m, w, 1.0, l, ld, b, ld);
        return;
    }
    const int top = m / 2;
    const size_t down = static_cast<size_t>(top) * ld;
    SolveUnitLower(l, b, top, w, ld);
    cblas_dgemm(CblasRowMajor, CblasNoTrans, CblasNoTrans, m - top, w, top, -1.0, l + down, ld, b, ld, 1.0, b + down,
                ld);
    SolveUnitLower(l + down + top, b + down, m - top, w, ld);
}

// Columns k0 .. k0 + width - 1 with all rows from k0 down. The left half is factored first; the right half
// gets its updates from the left half by a triangular solve and a matrix product, then is factored itself.
// Row swaps always take whole rows: the columns outside a narrow panel follow them once it is factored.
void FactorPanel(Factorization& f, int k0, int width) {
    if (width <= kBasePanel) {
        FactorNarrowPanel(f, k0, width);
        return;
    }
    const int left = width / 2;
    const int k1 = k0 + left;
    const int right = width - left;
    FactorPanel(f, k0, left);
    // The right half's columns in strips that the shape fixes, side by side on the threads (see InEqualStrips).
    const UINT threads = static_cast<UINT>(ThreadCount());
    InEqualStrips(right, double(left) * left, kMinStripWidth, threads, [&](size_t s0, size_t sw) {
        InStrips(
            sw, double(left) * left, f.cancel,
            [&](size_t j0, size_t w) {
                SolveUnitLower(f.At(k0, k0), f.At(k0, k1 + static_cast<int>(s0 + j0)), left, static_cast<int>(w),
                               f.n);
            },
            kPieceWork);
    });
    // The update of the rows below in strips of rows: the tall blocks of the lower levels split as well as the
    // wide ones of the top, and each strip packs only its own rows of the left operand.
    if (k1 < f.n)
        InEqualStrips(f.n - k1, 2.0 * right * left, kMinStripRows, threads, [&](size_t r0, size_t rows) {
            InStrips(
                right, 2.0 * rows * left, f.cancel,
                [&](size_t j0, size_t w) {
                    const int i = k1 + static_cast<int>(r0), j = k1 + static_cast<int>(j0);
                    cblas_dgemm(CblasRowMajor, CblasNoTrans, CblasNoTrans, static_cast<int>(rows),
                                static_cast<int>(w), left, -1.0, f.At(i, k0), f.n, f.At(k0, j), f.n, 1.0, f.At(i, j),
                                f.n);
                },
                kPieceWork);
        });
    f.cancel.ThrowIfAbandoned();
    FactorPanel(f, k1, right);
}

}  // namespace

void FactorLU(double* a, int n, int* indx, const CCancelToken& cancel) {
    if (n <= 0) return;
    Factorization f{a, n, indx, std::vector<double>(n), {}, cancel};
    CSingleBlasThread single;  // every product on one BLAS thread, the strips on the threads (FactorPanel)
    ScaleRows(f);
    FactorPanel(f, 0, n);
}

void SolveWithFactors(const double* lu, int n, const int* indx, const double* b, double* x) {
    if (n <= 0) return;
    CSingleBlasThread single;  // two passes over the factors: memory-bound, one thread reads as fast as two
    std::copy(b, b + n, x);
    for (int k = 0; k < n; ++k)
        if (indx[k] != k) std::swap(x[k], x[indx[k]]);
    cblas_dtrsv(CblasRowMajor, CblasLower, CblasNoTrans, CblasUnit, n, lu, n, x, 1);
    cblas_dtrsv(CblasRowMajor, CblasUpper, CblasNoTrans, CblasNonUnit, n, lu, n, x, 1);
}

}  // namespace kernels
}  // namespace engine
