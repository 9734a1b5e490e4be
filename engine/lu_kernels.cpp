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

struct Factorization {
    double* a;
    int n;
    int* indx;
    std::vector<double> vv;  // 1 / largest magnitude of each row, moved along with the rows
    const CCancelToken& cancel;
    double* At(int i, int j) const { return a + static_cast<size_t>(i) * n + j; }
};

// The implicit scaling. NaNs never pass the comparison, so a row of NaNs counts as a zero row.
void ScaleRows(Factorization& f) {
    for (int i = 0; i < f.n; ++i) {
        if ((i & 0xFF) == 0) f.cancel.ThrowIfAbandoned();
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
        f.cancel.ThrowIfAbandoned();
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
    // The right half's columns in strips that the shape fixes, side by side on the threads (see InEqualStrips).
    const UINT threads = static_cast<UINT>(ThreadCount());
    InEqualStrips(right, double(left) * left, 16, threads, [&](size_t s0, size_t sw) {
        InStrips(sw, double(left) * left, f.cancel, [&](size_t j0, size_t w) {
            cblas_dtrsm(CblasRowMajor, CblasLeft, CblasLower, CblasNoTrans, CblasUnit, left, static_cast<int>(w),
                        1.0, f.At(k0, k0), f.n, f.At(k0, k1 + static_cast<int>(s0 + j0)), f.n);
        });
    });
    if (k1 < f.n)
        InEqualStrips(right, 2.0 * below * left, 16, threads, [&](size_t s0, size_t sw) {
            InStrips(sw, 2.0 * below * left, f.cancel, [&](size_t j0, size_t w) {
                const int j = k1 + static_cast<int>(s0 + j0);
                cblas_dgemm(CblasRowMajor, CblasNoTrans, CblasNoTrans, f.n - k1, static_cast<int>(w), left, -1.0,
                            f.At(k1, k0), f.n, f.At(k0, j), f.n, 1.0, f.At(k1, j), f.n);
            });
        });
    f.cancel.ThrowIfAbandoned();
    FactorPanel(f, k1, right);
}

}  // namespace

void FactorLU(double* a, int n, int* indx, const CCancelToken& cancel) {
    if (n <= 0) return;
    Factorization f{a, n, indx, std::vector<double>(n), cancel};
    CBlasThreads single(0.0);  // every product on one BLAS thread, the strips on the threads (FactorPanel)
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

}  // namespace kernels
}  // namespace engine
