// Sample problems of a given shape, for tests and benchmarks: patterns and a network that fits them
// loosely, drawn from a fixed seed so that every run meets the same numbers.
#pragma once

#include "platform/types.h"

class CVantrelDlg;

struct CSampleShape {
    UINT nPatterns = 0;
    UINT nInputs = 0;
    UINT nUnits = 0;
    int nAlgorithm = 0;  // decides the layout of the packed vector
    unsigned seed = 1;
};

// Replaces the workspace's data set and network by a sample of that shape (one output), allocates the
// outputs and packs the parameters, so m_nParams is that of the layout.
void MakeSample(CVantrelDlg& dlg, const CSampleShape& shape);

// Damping added to the diagonal of a sample's quasi-Hessian before the benchmarks and tests invert it
// alone: the value of a try after two failed ones. It keeps the condition near 1e5, where two correct
// inversions agree to about 1e-12; at the first try's 0.01 the bound of the agreement is the condition
// (near 1e7) times the rounding unit, not the method.
constexpr double kSampleDamping = 1.0;

// Units that give m_nParams = params under the layout without input weights, with inputs inputs:
// params = 1 + units * (inputs + 2). Returns 0 when no whole number of units fits.
UINT UnitsForParams(UINT params, UINT inputs);
