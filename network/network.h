// Network model: where each block of the packed parameter vector stands, and a read-only view of a network
// and its patterns for the kernels that work on it.
//
// The operations themselves (PackParameters, ComputeError, the four accumulators, InitializeNetwork, ...) are
// members of the workspace, declared in workspace/workspace.h and defined in this folder:
//   model.cpp       packing, error, outputs, worst pattern, point evaluation
//   accumulate.cpp  the four accumulators of gradient and quasi-Hessian
//   initialize.cpp  the draw of a new network
//   matrix.cpp      the inversion (matrix.h)
#pragma once

#include <cstddef>

#include "platform/types.h"

class CVantrelDlg;

// Algorithms 1 and 4 carry the input weights in the parameter vector; all others leave them out.
bool IsImprovedAlgorithm(int nAlgorithm);

// First index and length of each block of the packed parameter vector.
struct CParamLayout {
    UINT nUnits = 0;
    UINT nInputs = 0;
    UINT nOutputs = 0;
    bool bImproved = false;  // the vector carries the input weights as its third block

    UINT OutputWeightCount() const { return (nUnits + 1) * nOutputs; }
    UINT Widths() const { return OutputWeightCount(); }
    // Only meaningful for the Improved layout.
    UINT InputWeights() const { return Widths() + nUnits; }
    UINT Centers() const { return Widths() + nUnits + (bImproved ? nUnits * nInputs : 0); }
    UINT Count() const { return Centers() + nUnits * nInputs; }
};

// The layout that PackParameters uses for the workspace's algorithm, units, inputs and outputs.
CParamLayout LayoutOf(const CVantrelDlg& dlg);

// What the derivative kernels read: patterns and network arrays, never the packed vector.
struct CNetworkView {
    const double* pInputs = nullptr;         // nPatterns x nInputs
    const double* pTargets = nullptr;        // nPatterns (the first output of each pattern)
    const double* pInputWeights = nullptr;   // nUnits x nInputs
    const double* pOutputWeights = nullptr;  // bias, then one per unit
    const double* pWidths = nullptr;         // nUnits
    const double* pCenters = nullptr;        // nUnits x nInputs
    UINT nPatterns = 0;
    CParamLayout layout;                     // units, inputs and which form of Jacobian row
};

// The network's output for one input vector of m_nInputs values: the bias plus every unit's share.
double NetworkOutput(const CVantrelDlg& dlg, const double* x);

// A view of the workspace's network and patterns, with the Jacobian form chosen by bImproved (the accumulator
// decides the form, not m_nAlgorithm).
CNetworkView ViewOf(const CVantrelDlg& dlg, bool bImproved);

// AccumulateGradient (improved: AccumulateImprovedGradient) that also returns the average sum square error of
// the same network, equal to what ComputeError gives: one pass computes each unit activation once for both.
double AccumulateGradientAndError(CVantrelDlg& dlg, bool improved);
