// Fast dense kernels behind the accumulators and the inversion.
//
// Accumulation: Jacobian rows are built a fixed-size block of patterns at a time and added to the upper
// triangle of the quasi-Hessian by a symmetric rank-k update, the gradient by a matrix-vector product; the
// lower triangle is mirrored once at the end. Memory is one block of rows, whatever the number of patterns.
//
// Factorization: a recursive right-looking LU. Its one-column steps keep the pivot rule of the plain
// algorithm (implicit scaling, whole-row swaps, indx, the TINY replacement); the updates between them are
// triangular solves and matrix products on the optimised BLAS. The inverse is formed from the factors by
// triangular inversion and solves, so that, like the plain column-by-column substitution, it leaves a small
// residual A * inverse - I.
//
// Results agree with the plain per-pattern loops and the plain decomposition (reference/reference.h) up to
// rounding, measured normwise.
#pragma once

#include <cstddef>

#include "network/network.h"

namespace kernels {

// Patterns per block of Jacobian rows.
constexpr UINT kRowBlock = 256;

// Width of a row of the block: the packed vector's length, or the layout's when that is longer, so that
// a row always has room for every entry of its form.
size_t RowWidth(const CNetworkView& net, UINT nParams);

// Rows of the Jacobian of e = target - output for the patterns first .. first + count - 1: row r at
// rows + r * ld, its error at errors[r]. Entries past the layout's length are 0.0.
void FillJacobianRows(const CNetworkView& net, UINT first, UINT count, double* rows, size_t ld, double* errors);

// gradient[k] = sum of e * J[k] over all patterns. With hessian not null also hessian[i * nParams + j] = sum
// of J[i] * J[j], both triangles; every element of hessian is written, so it needs no clearing beforehand.
void AccumulateDerivatives(const CNetworkView& net, UINT nParams, double* hessian, double* gradient);

// Copies the upper triangle of the n x n row-major matrix a onto its lower triangle.
void MirrorUpperToLower(double* a, size_t n);

// LU decomposition of the n x n row-major matrix a in place, with indx as LUdcmp fills it. Raises
// CSingularMatrixException (matrix.h), a untouched, when a row has no element of non-zero magnitude.
void FactorLU(double* a, int n, int* indx);

// The solution x of A x = b for the matrix A whose factors FactorLU left in lu: the row swaps of indx in
// their order, then the two triangular solves, as the plain substitution does for one right-hand side.
void SolveWithFactors(const double* lu, int n, const int* indx, const double* b, double* x);

// The inverse of the matrix whose factors FactorLU left in lu, written to inverse (n x n, row-major):
// U^-1 L^-1 P, by a triangular inversion of L and a triangular solve with U on the optimised BLAS.
void InvertFromFactors(const double* lu, int n, const int* indx, double* inverse);

// Cores the kernels use: those the process may run on, or fewer after LimitThreads (0: no limit). For
// benchmarks that compare one core with all.
int ThreadCount();
void LimitThreads(int count);

// For its lifetime, gives the BLAS as many threads as work of about `flops` operations is worth: one for
// small products and matrix-vector work, ThreadCount() for large ones. Restores the count it found.
class CBlasThreads {
public:
    explicit CBlasThreads(double flops);
    ~CBlasThreads();
    CBlasThreads(const CBlasThreads&) = delete;
    CBlasThreads& operator=(const CBlasThreads&) = delete;

private:
    int m_previous;
};

}  // namespace kernels
