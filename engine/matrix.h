// The LU decomposition's rules that every caller relies on: the TINY pivot and the singular-matrix failure.
// The decomposition and the solve with its factors are kernels (kernels.h: FactorLU, SolveWithFactors).
#pragma once

#include <stdexcept>

namespace engine {

// Replaces a pivot that is exactly 0.0 after the search, so that a near-singular matrix gives huge values
// instead of a stop.
constexpr double kTinyPivot = 1.0e-40;

// Raised by the decomposition when a row has no element of non-zero magnitude (NaNs count as none). The
// matrix is left as it was: the scaling pass finds the row before anything is written.
class CSingularMatrixException : public std::runtime_error {
public:
    CSingularMatrixException() : std::runtime_error("Singular matrix in LUdcmp") {}
};

}  // namespace engine
