// The plain algorithms, loop for loop: one Jacobian row per pattern added into both triangles, and the
// unblocked decomposition with one substitution per column of the identity. They are the baseline that
// tests and benchmarks hold the fast kernels (kernels.h) against, and LUBackSubstitute serves the workspace
// as it stands.
#pragma once

#include "network/network.h"

namespace reference {

// Fills gradient (nParams) and, when not null, hessian (nParams x nParams) from all patterns, one row at a
// time. The row's indices are those of a network with one output.
void Accumulate(const CNetworkView& net, UINT nParams, double* hessian, double* gradient);

// The decomposition of LUdcmp, unblocked. Raises CSingularMatrixException on a row without magnitude.
void LUdcmp(double* a, int n, int* indx);

// One right-hand side b through the factors into x.
void LUBackSubstitute(const double* a, int n, const int* indx, const double* b, double* x);

// The inverse from factors, one column of the identity at a time.
void InvertFromFactors(const double* lu, int n, const int* indx, double* inverse);

// LUdcmp on a (destroyed) and the inverse into inverse: the plain InvertHessian.
void Invert(double* a, int n, double* inverse);

}  // namespace reference
