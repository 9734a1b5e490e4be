// Recursive blocked LU with implicit scaled partial pivoting, and the inverse from its factors.
#include <cblas.h>
#include <lapacke.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "network/kernels.h"
#include "network/matrix.h"

namespace kernels {

namespace {

// Panels this narrow are factored column by column; wider ones split in two.
constexpr int kBasePanel = 16;

struct Factorization {
    double* a;
    int n;
    int* indx;
    std::vector<double> vv;  // 1 / largest magnitude of each row, moved along with the rows
    double* At(int i, int j) const { return a + static_cast<size_t>(i) * n + j; }
};

// The implicit scaling. NaNs never pass the comparison, so a row of NaNs counts as a zero row.
void ScaleRows(Factorization& f) {
    for (int i = 0; i < f.n; ++i) {
        if ((i & 0xFF) == 0) AfxThrowIfAbandoned();
        const double* row = f.At(i, 0);
        double big = 0.0;
        for (int j = 0; j < f.n; ++j) {
            const double t = std::fabs(row[j]);
            if (t > big) big = t;
        }
        if (big == 0.0) throw CSingularMatrixException();
        f.vv[i] = 1.0 / big;
    }
}

// Step k of the plain decomposition as far as column k itself: pivot search, whole-row swap, indx, TINY and
// the multipliers below the diagonal. Updating the columns right of k is left to the caller.
void EliminateColumn(Factorization& f, int k) {
    // A column with no positive scaled candidate (all 0 or NaN) keeps its own row as pivot: the matrix has no
    // inverse, and the run meets huge values or NaNs instead of an undefined row index.
    int imax = k;
    double big = 0.0;
    for (int i = k; i < f.n; ++i) {
        const double t = f.vv[i] * std::fabs(*f.At(i, k));
        if (t > big) {
            big = t;
            imax = i;
        }
    }
    if (imax != k) {
        std::swap_ranges(f.At(imax, 0), f.At(imax, 0) + f.n, f.At(k, 0));
        f.vv[imax] = f.vv[k];
    }
    f.indx[k] = imax;
    double* pivot = f.At(k, k);
    if (*pivot == 0.0) *pivot = kTinyPivot;
    for (int i = k + 1; i < f.n; ++i) *f.At(i, k) = *f.At(i, k) / *pivot;
}

// Columns k0 .. k0 + width - 1, rows k0 .. n - 1, one column at a time with rank-1 updates inside the panel.
void FactorNarrowPanel(Factorization& f, int k0, int width) {
    const int end = k0 + width;
    for (int k = k0; k < end; ++k) {
        AfxThrowIfAbandoned();
        EliminateColumn(f, k);
        const double* pivotRow = f.At(k, 0);
        for (int i = k + 1; i < f.n; ++i) {
            double* row = f.At(i, 0);
            const double t = row[k];
            for (int j = k + 1; j < end; ++j) row[j] -= t * pivotRow[j];
        }
    }
}

// Columns k0 .. k0 + width - 1 with all rows from k0 down. The left half is factored first; the right half
// gets its updates from the left half by a triangular solve and a matrix product, then is factored itself.
// Row swaps always take whole rows, so the columns outside the panel follow them at once.
void FactorPanel(Factorization& f, int k0, int width) {
    if (width <= kBasePanel) {
        FactorNarrowPanel(f, k0, width);
        return;
    }
    const int left = width / 2;
    const int k1 = k0 + left;
    const int right = width - left;
    FactorPanel(f, k0, left);
    const double below = f.n - k1;
    CBlasThreads threads(static_cast<double>(left) * right * (left + 2.0 * below));
    InStrips(right, double(left) * left, [&](size_t j0, size_t w) {
        cblas_dtrsm(CblasRowMajor, CblasLeft, CblasLower, CblasNoTrans, CblasUnit, left, static_cast<int>(w), 1.0,
                    f.At(k0, k0), f.n, f.At(k0, k1 + static_cast<int>(j0)), f.n);
    });
    if (k1 < f.n)
        InStrips(right, 2.0 * below * left, [&](size_t j0, size_t w) {
            const int j = k1 + static_cast<int>(j0);
            cblas_dgemm(CblasRowMajor, CblasNoTrans, CblasNoTrans, f.n - k1, static_cast<int>(w), left, -1.0,
                        f.At(k1, k0), f.n, f.At(k0, j), f.n, 1.0, f.At(k1, j), f.n);
        });
    AfxThrowIfAbandoned();
    FactorPanel(f, k1, right);
}

// Column swaps of the row pivots, last step first, done row by row to stay within the cache: turns
// U^-1 L^-1 into U^-1 L^-1 P, the inverse of the matrix that P A = L U describes.
void SwapColumnsBack(double* a, int n, const int* indx) {
    for (int i = 0; i < n; ++i) {
        if ((i & 0xFF) == 0) AfxThrowIfAbandoned();
        double* row = a + static_cast<size_t>(i) * n;
        for (int k = n - 1; k >= 0; --k)
            if (indx[k] != k) std::swap(row[k], row[indx[k]]);
    }
}

}  // namespace

void FactorLU(double* a, int n, int* indx) {
    if (n <= 0) return;
    Factorization f{a, n, indx, std::vector<double>(n)};
    ScaleRows(f);
    FactorPanel(f, 0, n);
}

void SolveWithFactors(const double* lu, int n, const int* indx, const double* b, double* x) {
    if (n <= 0) return;
    CBlasThreads single(0.0);  // two passes over the factors: memory-bound, one thread reads as fast as two
    std::copy(b, b + n, x);
    for (int k = 0; k < n; ++k)
        if (indx[k] != k) std::swap(x[k], x[indx[k]]);
    cblas_dtrsv(CblasRowMajor, CblasLower, CblasNoTrans, CblasUnit, n, lu, n, x, 1);
    cblas_dtrsv(CblasRowMajor, CblasUpper, CblasNoTrans, CblasNonUnit, n, lu, n, x, 1);
}

void InvertFromFactors(const double* lu, int n, const int* indx, double* inverse) {
    if (n <= 0) return;
    // inverse = L: the multipliers, a unit diagonal and zeros above it.
    for (int i = 0; i < n; ++i) {
        const double* from = lu + static_cast<size_t>(i) * n;
        double* row = inverse + static_cast<size_t>(i) * n;
        std::copy(from, from + i, row);
        row[i] = 1.0;
        std::fill(row + i + 1, row + n, 0.0);
    }
    // L^-1 in place. A row-major lower triangle is a column-major upper one, and the inverse of the
    // transpose is the transpose of the inverse, so LAPACK's column-major routine serves without copying.
    // With a unit diagonal it never meets a zero pivot, and the _work form skips LAPACKE's scan for NaNs:
    // a NaN matrix inverts to NaNs like any other.
    CBlasThreads threads(4.0 / 3.0 * n * n * n);
    LAPACKE_dtrtri_work(LAPACK_COL_MAJOR, 'U', 'U', n, inverse, n);
    // U^-1 L^-1: each column solved against U, as the plain substitution does it.
    cblas_dtrsm(CblasRowMajor, CblasLeft, CblasUpper, CblasNoTrans, CblasNonUnit, n, n, 1.0, lu, n, inverse, n);
    SwapColumnsBack(inverse, n, indx);
}

}  // namespace kernels
