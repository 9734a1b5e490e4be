// What tests and benchmarks measure the product against, and nothing else: the library vantrel_reference,
// which the application and vantrel-session never link. It knows only the engine.
//
// - The plain algorithms, loop for loop (below): one Jacobian row per pattern added into both triangles, and
//   the unblocked decomposition with one substitution per column of the identity. They are the baseline that
//   the fast kernels (engine/kernels.h) are held against.
// - Sample problems of a given shape (samples.h).
#pragma once

#include "engine/network.h"
#include "reference/samples.h"

namespace reference {

using engine::CNetworkView;
using engine::UINT;

// Fills gradient (nParams) and, when not null, hessian (nParams x nParams) from all patterns, one row at a
// time. The row's indices are those of a network with one output.
void Accumulate(const CNetworkView& net, UINT nParams, double* hessian, double* gradient);

// The decomposition, unblocked. Raises engine::CSingularMatrixException on a row without magnitude.
void LUdcmp(double* a, int n, int* indx);

// One right-hand side b through the factors that LUdcmp left in a (n x n, row-major) into x. The forward pass
// skips the leading zeros of b.
void LUBackSubstitute(const double* a, int n, const int* indx, const double* b, double* x);

// The inverse from factors, one column of the identity at a time, each through LUBackSubstitute.
void InvertFromFactors(const double* lu, int n, const int* indx, double* inverse);

// LUdcmp on a (destroyed) and the inverse into inverse: the plain inversion.
void Invert(double* a, int n, double* inverse);

}  // namespace reference
