// The network model: packing of the parameter vector, the network output, the error measure, the worst-pattern
// search and the placing of a new unit.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "engine/kernels.h"
#include "engine/network.h"

namespace engine {

bool IsImprovedAlgorithm(int algorithm) { return algorithm == kImprovedSecondOrder || algorithm == kImprovedFirstOrder; }

double ParameterCount(UINT units, UINT inputs, UINT outputs, bool improved) {
    return double(units + 1.0) * outputs + units + double(units) * inputs * (improved ? 2 : 1);
}

CParamLayout LayoutOf(const CNetwork& net, bool improved) {
    CParamLayout layout;
    layout.nUnits = net.nUnits;
    layout.nInputs = net.nInputs;
    layout.nOutputs = net.nOutputs;
    layout.bImproved = improved;
    return layout;
}

CNetworkView ViewOf(const CNetwork& net, const CPatterns& patterns, bool improved) {
    CNetworkView view;
    view.pInputs = patterns.pInputs;
    view.pTargets = patterns.pTargets;
    view.pInputWeights = net.pInputWeights;
    view.pOutputWeights = net.pOutputWeights;
    view.pWidths = net.pWidths;
    view.pCenters = net.pCenters;
    view.nPatterns = patterns.nPatterns;
    view.layout = LayoutOf(net, improved);
    return view;
}

namespace {

void CopyBlock(double* to, const double* from, UINT count) {
    if (count > 0) std::memcpy(to, from, sizeof(double) * count);
}

}  // namespace

void PackParameters(const CParamLayout& layout, const CNetwork& net, double* params) {
    const UINT weights = layout.nUnits * layout.nInputs;
    CopyBlock(params, net.pOutputWeights, layout.OutputWeightCount());
    CopyBlock(params + layout.Widths(), net.pWidths, layout.nUnits);
    if (layout.bImproved) CopyBlock(params + layout.InputWeights(), net.pInputWeights, weights);
    CopyBlock(params + layout.Centers(), net.pCenters, weights);
}

void UnpackParameters(const CParamLayout& layout, const double* params, const CNetwork& net) {
    const UINT weights = layout.nUnits * layout.nInputs;
    CopyBlock(net.pOutputWeights, params, layout.OutputWeightCount());
    CopyBlock(net.pWidths, params + layout.Widths(), layout.nUnits);
    if (layout.bImproved) CopyBlock(net.pInputWeights, params + layout.InputWeights(), weights);
    CopyBlock(net.pCenters, params + layout.Centers(), weights);
}

double NetworkOutput(const CNetwork& net, const double* x, UINT used, const CCancelToken& cancel) {
    const UINT n = net.nInputs;
    const double* w = net.pOutputWeights;
    double y = w[0];
    for (UINT h = 0; h < net.nUnits; ++h) {
        if ((h & 0xFFFF) == 0xFFFF) cancel.ThrowIfAbandoned();  // a network of millions of units takes a while
        const double* v = net.pInputWeights + static_cast<size_t>(h) * n;
        const double* c = net.pCenters + static_cast<size_t>(h) * n;
        double dist = 0.0;
        for (UINT i = 0; i < used; ++i) {
            const double a = v[i] * x[i] - c[i];
            dist += a * a;
        }
        y += w[h + 1] * std::exp(-dist / net.pWidths[h]);
    }
    return y;
}

double AverageError(const CNetworkView& net, double* outputs, const CCancelToken& cancel) {
    return kernels::SumSquaredErrors(net, outputs, cancel) / static_cast<double>(net.nPatterns);
}

UINT FindWorstPattern(const double* targets, const double* outputs, UINT patterns) {
    // With no pattern there is nothing to compare: the first index is the only sensible answer, and no
    // element is read.
    if (patterns == 0) return 0;
    UINT worst = 0;
    double largest = std::fabs(targets[0] - outputs[0]);
    for (UINT p = 0; p < patterns; ++p) {
        const double a = std::fabs(targets[p] - outputs[p]);
        if (largest < a) {
            largest = a;
            worst = p;
        }
    }
    return worst;
}

void PlaceUnitAt(const CNetwork& net, UINT unit, const double* patternInputs) {
    const size_t n = net.nInputs, outputs = net.nOutputs;
    std::fill_n(net.pInputWeights + unit * n, n, 1.0);
    std::fill_n(net.pOutputWeights + (unit + size_t(1)) * outputs, outputs, 1.0);
    net.pWidths[unit] = 1.0;
    std::copy_n(patternInputs, n, net.pCenters + unit * n);
}

}  // namespace engine
