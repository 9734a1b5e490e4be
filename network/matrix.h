// Matrix inversion: LU decomposition with implicit scaled partial pivoting and whole-row swaps.
//
// The workspace members InvertHessian, LUdcmp and LUBackSubstitute (workspace/workspace.h) are defined in
// matrix.cpp. LUdcmp runs the blocked factorization of kernels.h; InvertHessian forms the inverse from the
// factors with the triangular kernels there. LUBackSubstitute is the plain one-column solve,
// below.
#pragma once

#include <stdexcept>

// Replaces a pivot that is exactly 0.0 after the search, so that a near-singular matrix gives huge values
// instead of a stop.
constexpr double kTinyPivot = 1.0e-40;

// Raised by LUdcmp when a row has no element of non-zero magnitude (NaNs count as none). The matrix is left
// as it was: the scaling pass finds the row before anything is written.
class CSingularMatrixException : public std::runtime_error {
public:
    CSingularMatrixException() : std::runtime_error("Singular matrix in LUdcmp") {}
};

// One right-hand side b through the factors that LUdcmp left in a (n x n, row-major) into x. The forward pass
// skips the leading zeros of b.
void LUBackSubstitute(const double* a, int n, const int* indx, const double* b, double* x);
