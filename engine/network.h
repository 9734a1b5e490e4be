// The network model on plain arrays: the algorithms by name, where each block of the packed parameter vector
// stands, views of a network and its patterns, and the operations on them (packing, output, error measure,
// worst pattern, a new unit).
//
// Ownership: every pointer in a view belongs to the caller, who keeps the arrays alive and of the stated
// shapes while an operation runs. Nothing here allocates a block of the network.
#pragma once

#include <cstddef>
#include <cstdint>

#include "engine/cancel.h"

namespace engine {

using UINT = std::uint32_t;

// The five algorithms, in the order of the window's algorithm list (its index is the value).
enum Algorithm : int {
    kSecondOrder = 0,
    kImprovedSecondOrder = 1,
    kErrorCorrection = 2,
    kFirstOrder = 3,
    kImprovedFirstOrder = 4,
};
constexpr int kAlgorithmCount = 5;

// The Improved methods carry the input weights in the parameter vector; all others leave them out.
bool IsImprovedAlgorithm(int algorithm);

// First index and length of each block of the packed parameter vector: output weights (bias first), widths,
// the input weights in the Improved layout only, centers.
struct CParamLayout {
    UINT nUnits = 0;
    UINT nInputs = 0;
    UINT nOutputs = 0;
    bool bImproved = false;

    UINT OutputWeightCount() const { return (nUnits + 1) * nOutputs; }
    UINT Widths() const { return OutputWeightCount(); }
    // Only meaningful for the Improved layout.
    UINT InputWeights() const { return Widths() + nUnits; }
    UINT Centers() const { return Widths() + nUnits + (bImproved ? nUnits * nInputs : 0); }
    UINT Count() const { return Centers() + nUnits * nInputs; }
};

// The length of the packed vector as a double, so that a network whose parameters a UINT can't count is
// seen before any block is taken.
double ParameterCount(UINT units, UINT inputs, UINT outputs, bool improved);

// A network's arrays, writable.
struct CNetwork {
    double* pInputWeights = nullptr;   // nUnits x nInputs
    double* pOutputWeights = nullptr;  // (nUnits + 1) x nOutputs, bias first
    double* pWidths = nullptr;         // nUnits
    double* pCenters = nullptr;        // nUnits x nInputs
    UINT nUnits = 0;
    UINT nInputs = 0;
    UINT nOutputs = 0;
};

// Patterns: the inputs of each, then its desired outputs.
struct CPatterns {
    const double* pInputs = nullptr;   // nPatterns x nInputs
    const double* pTargets = nullptr;  // nPatterns x nOutputs
    UINT nPatterns = 0;
    UINT nInputs = 0;
    UINT nOutputs = 0;
};

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

// The layout of a network's parameter vector for the given form.
CParamLayout LayoutOf(const CNetwork& net, bool improved);
// Requires: net and patterns have the same number of inputs.
CNetworkView ViewOf(const CNetwork& net, const CPatterns& patterns, bool improved);

// params (layout.Count() elements) from the network's arrays, in the layout's order.
void PackParameters(const CParamLayout& layout, const CNetwork& net, double* params);
// The network's arrays from params; the input weights only in the Improved layout.
void UnpackParameters(const CParamLayout& layout, const double* params, const CNetwork& net);

// The network's output for one input vector of which the first `used` (at most nInputs) elements count: the
// bias plus every unit's share. The rows of input weights and centers stand at stride nInputs.
double NetworkOutput(const CNetwork& net, const double* x, UINT used, const CCancelToken& cancel);

// The average sum square error (no factor one half) of the view's network over its patterns; with outputs
// given (nPatterns elements), each output as well. No pattern gives 0 / 0, a NaN, which every caller treats
// as a finished error.
double AverageError(const CNetworkView& net, double* outputs, const CCancelToken& cancel);

// The index of the first pattern of largest |target - output|; 0 when there is none.
UINT FindWorstPattern(const double* targets, const double* outputs, UINT patterns);

// Sets unit `unit` of a network that has room for it: input weights, output weight and width 1.0, centred on
// the given pattern's inputs.
void PlaceUnitAt(const CNetwork& net, UINT unit, const double* patternInputs);

}  // namespace engine
