// Sample problems of a given shape, for tests and benchmarks: patterns and a network that fits them
// loosely, drawn from a fixed seed so that every run meets the same numbers.
#pragma once

#include "engine/buffers.h"

struct CSampleShape {
    engine::UINT nPatterns = 0;
    engine::UINT nInputs = 0;
    engine::UINT nUnits = 0;
    int nAlgorithm = 0;  // decides the layout of the packed vector
    unsigned seed = 1;
};

// The sample's arrays: patterns (one output), then the network.
struct CSampleArrays {
    std::vector<double> inputs, targets, inputWeights, outputWeights, widths, centers;
};
CSampleArrays DrawSample(const CSampleShape& shape);

// Gives the buffers the sample's patterns, network and algorithm, and packs the parameters.
void MakeSample(engine::CNetworkBuffers& buffers, const CSampleShape& shape);

// Damping added to the diagonal of a sample's quasi-Hessian before the benchmarks and tests invert it
// alone: the value of a try after two failed ones. It keeps the condition near 1e5, where two correct
// inversions agree to about 1e-12; at the first try's 0.01 the bound of the agreement is the condition
// (near 1e7) times the rounding unit, not the method.
constexpr double kSampleDamping = 1.0;

// Units that give nParams = params under the layout without input weights, with inputs inputs:
// params = 1 + units * (inputs + 2). Returns 0 when no whole number of units fits.
engine::UINT UnitsForParams(engine::UINT params, engine::UINT inputs);
