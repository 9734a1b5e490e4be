// Helpers shared by the engine's tests.
#pragma once

#include <cmath>
#include <cstddef>
#include <vector>

#include "engine/buffers.h"
#include "reference/samples.h"

// ||a - b|| / ||b||, Frobenius norms over count elements.
inline double RelativeDifference(const double* a, const double* b, size_t count) {
    double diff = 0.0, norm = 0.0;
    for (size_t k = 0; k < count; ++k) {
        diff += (a[k] - b[k]) * (a[k] - b[k]);
        norm += b[k] * b[k];
    }
    return std::sqrt(diff) / std::sqrt(norm);
}

// A copy of count elements, for comparing whole arrays.
inline std::vector<double> Copy(const double* block, size_t count) { return std::vector<double>(block, block + count); }

// The sample of the given shape in the engine's own buffers, parameters packed.
struct CSample {
    explicit CSample(const CSampleShape& shape, const engine::CCancelToken& cancel = engine::CCancelToken::Never())
        : buffers(cancel) {
        MakeSample(buffers, shape);
    }
    engine::CNetwork Net() { return buffers.Network(); }
    engine::CNetworkView View(bool improved) { return engine::ViewOf(Net(), buffers.PatternArrays(), improved); }
    engine::CStepArrays Step() { return buffers.Step(); }
    const double* Targets() const { return buffers.PatternArrays().pTargets; }
    const double* Inputs() const { return buffers.PatternArrays().pInputs; }
    engine::CNetworkBuffers buffers;
};
