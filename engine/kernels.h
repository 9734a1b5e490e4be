// Fast dense kernels behind the accumulators, the error measure and the inversion.
//
// Accumulation: the Jacobian is built a chunk of patterns at a time, transposed (one row per parameter, the
// patterns side by side, so that each unit's entries and its one exp per pattern run over contiguous memory
// with vector instructions), and gives the chunk's upper triangle of the quasi-Hessian by a symmetric rank-k
// update, its gradient by a matrix-vector product; the chunks' sums are added by a fixed tree, and the lower
// triangle is mirrored once at the end. When the work is large enough the chunks fall into up to eight parts,
// aligned subtrees summed apart on as many threads as there are cores. Memory is a block of rows per thread,
// a partial sum per level of a part's subtree and one per part: it grows with the logarithm of the patterns.
//
// Factorization: a damped step factors the damped quasi-Hessian by a blocked Cholesky factorization, which
// reads the triangle that the accumulation keeps and writes its factor beside it, so that every try of an
// iteration starts from the same sums without restoring them. A damped matrix that proves not positive
// definite (a network gone NaN) is factored by the recursive right-looking LU instead, whose one-column steps
// keep the pivot rule of the plain algorithm (implicit scaling, whole-row swaps, indx, the TINY replacement,
// the singular-matrix failure). Both do their updates as triangular products or solves and matrix products on
// the optimised BLAS.
//
// Results agree with the plain per-pattern loops and the plain decomposition (reference/reference.h) up to
// rounding, measured normwise; they do not depend on the number of cores.
#pragma once

#include <algorithm>
#include <cstddef>

#include "engine/cancel.h"
#include "engine/network.h"

namespace engine {
namespace kernels {

// Work of one strip of a dense product, in floating-point operations: a few hundredths of a second.
constexpr double kStripWork = 2e8;

// Calls strip(first, width) for the columns 0 .. cols - 1 of a dense product, in strips of about kStripWork
// operations each (columnWork per column): one call on a large matrix runs for minutes. An abandoned run's
// strips stop early, and the product is then incomplete; it may run on a helper thread, so the caller throws
// (cancel.ThrowIfAbandoned) once it is back on the run's own.
template <class Strip>
void InStrips(size_t cols, double columnWork, const CCancelToken& cancel, Strip strip,
              double stripWork = kStripWork) {
    const size_t width = columnWork * cols <= stripWork
                             ? std::max<size_t>(cols, 1)
                             : std::max<size_t>(1, static_cast<size_t>(stripWork / std::max(columnWork, 1.0)));
    for (size_t first = 0; first < cols && !cancel.Abandoned(); first += width)
        strip(first, std::min(width, cols - first));
}

// Patterns per chunk: every sum over patterns is taken chunk by chunk, each chunk in pattern order, and the
// chunks' sums added by one binary tree over their indices (the first half of the next power of two, plus the
// rest). A run of chunks that starts at a multiple of a power of two and spans it is a subtree: summed
// anywhere, a thread, a cluster's worker, it gives the same bits.
constexpr UINT kChunkPatterns = 512;

// Number of rows of the transposed Jacobian: the packed vector's length, or the layout's when that is
// longer, so that there is a row for every entry of the form.
size_t RowWidth(const CNetworkView& net, UINT nParams);

// The transposed Jacobian of e = target - output for the patterns first .. first + count - 1: the entry of
// parameter k for pattern first + r at rows[k * ld + r] (k below layout.Count()), its error at errors[r].
void FillJacobianTransposed(const CNetworkView& net, UINT first, UINT count, double* rows, size_t ld,
                            double* errors);

// gradient[k] = sum of e * J[k] over all patterns. With hessian not null also hessian[i * nParams + j] = sum
// of J[i] * J[j], both triangles; every element of hessian is written, so it needs no clearing beforehand.
// spare (nParams x nParams, needed with hessian) holds the second part's sum on the way: no defined value after.
// Returns the sum of e * e over the patterns, the same value as SumSquaredErrors on the same network.
// Throws CCancelled when cancel is abandoned on the way (gradient and hessian are then incomplete), and
// std::bad_alloc when its scratch does not fit in memory.
double AccumulateDerivatives(const CNetworkView& net, UINT nParams, double* hessian, double* gradient,
                             double* spare, const CCancelToken& cancel);

// The sums of count aligned subtrees of one span, in their order (sums[k] holds `length` doubles: a gradient,
// a quasi-Hessian, a sum of e * e), added by the tree over their indices into sums[0]: the additions that
// AccumulateDerivatives makes above its parts, so that sums taken apart, on a cluster's workers say, end as
// the same bits as the whole.
void AddByTree(double* const* sums, UINT count, size_t length);

// Sum over the patterns of (output - target) squared; with outputs not null each output is stored there.
double SumSquaredErrors(const CNetworkView& net, double* outputs, const CCancelToken& cancel);

// exp of count values (in and out may be the same array), by vector instructions where the processor has them.
void ExpArray(const double* in, double* out, size_t count);

// Threads the kernels use: as many as the process has cores, or `count` after LimitThreads(count) (0: the
// cores again), more than the cores too. For benchmarks that compare one core with all, and for tests that
// hold the results of many threads against one.
int ThreadCount();
void LimitThreads(int count);

// For its lifetime, keeps the BLAS to one thread; when the last of the objects alive at once (on any thread)
// ends, the BLAS gets back the count it had before the first. The kernels split their products into pieces
// that the shape fixes and share them among their own threads: the BLAS's threads would split the work by
// their number, and the sums would then differ from one machine to the next.
class CSingleBlasThread {
public:
    CSingleBlasThread();
    ~CSingleBlasThread();
    CSingleBlasThread(const CSingleBlasThread&) = delete;
    CSingleBlasThread& operator=(const CSingleBlasThread&) = delete;
};

// Copies the upper triangle of the n x n row-major matrix a onto its lower triangle.
void MirrorUpperToLower(double* a, size_t n, const CCancelToken& cancel);

// LU decomposition of the n x n row-major matrix a in place, with indx as LUdcmp fills it. Raises
// CSingularMatrixException (matrix.h), a untouched, when a row has no element of non-zero magnitude, and
// CCancelled when cancel is abandoned on the way.
void FactorLU(double* a, int n, int* indx, const CCancelToken& cancel);

// The solution x of A x = b for the matrix A whose factors FactorLU left in lu: the row swaps of indx in
// their order, then the two triangular solves, as the plain substitution does for one right-hand side.
void SolveWithFactors(const double* lu, int n, const int* indx, const double* b, double* x);

// The damped matrix of a try: A + damping I for the symmetric A of order n whose strict lower triangle `a`
// holds (row-major; the accumulation leaves both triangles) and whose diagonal is `diagonal`; A's own diagonal
// and upper triangle in `a` are not read.
//
// FactorDampedCholesky writes the Cholesky factor L of the damped matrix (A + damping I = L L^T) over a's
// diagonal and upper triangle, column by column (l[j * n + i] = L(i, j) for i >= j: L^T, read row-major),
// leaving the strict lower triangle as it was, and returns true; false when the damped matrix is not
// positive definite (a diagonal element of L would not be a positive finite number: NaNs and infinities end
// here too), a's diagonal and upper triangle then holding no defined value. Throws CCancelled when cancel is
// abandoned on the way.
bool FactorDampedCholesky(double* a, int n, const double* diagonal, double damping, const CCancelToken& cancel);

// x solves L L^T x = b for the factor that FactorDampedCholesky left in l.
void SolveWithCholesky(const double* l, int n, const double* b, double* x);

// x solves (A + damping I) x = b as the plain algorithm does: the whole damped matrix written into spare
// (n x n, no defined value after), FactorLU and SolveWithFactors, with their exceptions. a is only read.
void SolveDampedByLU(const double* a, int n, const double* diagonal, double damping, const double* b, double* x,
                     double* spare, const CCancelToken& cancel);

// The damped step: x solves (A + damping I) x = b by FactorDampedCholesky and SolveWithCholesky, or, where
// the damped matrix is not positive definite, by SolveDampedByLU, so that a singular matrix fails as the
// plain decomposition fails ("Singular matrix in LUdcmp"). The strict lower triangle of a stays as it was.
void SolveDamped(double* a, int n, const double* diagonal, double damping, const double* b, double* x,
                 double* spare, const CCancelToken& cancel);

// SolveDamped, and beside it, on a kept thread where the factorization runs on one and another is free, the
// step of nextDamping into nextX (its factors in spare, as FactorDampedCholesky would leave them in a): true
// when nextX holds it, bit for bit what SolveDamped would give for nextDamping. A matrix that is not positive
// definite at nextDamping leaves nextX to SolveDamped.
bool SolveDampedWithNext(double* a, int n, const double* diagonal, double damping, const double* b, double* x,
                         double nextDamping, double* nextX, double* spare, const CCancelToken& cancel);

}  // namespace kernels
}  // namespace engine
