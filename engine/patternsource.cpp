#include "engine/patternsource.h"

#include <algorithm>

#include "engine/kernels.h"

namespace engine {

double CLocalPatterns::SumDerivatives(const CNetwork& net, bool improved, UINT nParams, double* hessian,
                                      double* gradient, double* spare, const CCancelToken& cancel) {
    return kernels::AccumulateDerivatives(ViewOf(net, Arrays().patterns, improved), nParams, hessian, gradient,
                                          spare, cancel);
}

double CLocalPatterns::SumSquaredErrors(const CNetwork& net, bool keep, const CCancelToken& cancel) {
    const CArrays a = Arrays();
    return kernels::SumSquaredErrors(ViewOf(net, a.patterns, false), keep ? a.outputs : nullptr, cancel);
}

void CLocalPatterns::ClearOutputs() {
    const CArrays a = Arrays();
    std::fill_n(a.outputs, a.patterns.nPatterns, 0.0);
}

UINT CLocalPatterns::WorstPattern() {
    const CArrays a = Arrays();
    return FindWorstPattern(a.patterns.pTargets, a.outputs, a.patterns.nPatterns);
}

void CLocalPatterns::PatternInputs(const UINT* indices, UINT count, double* rows) {
    const CPatterns p = Arrays().patterns;
    for (UINT k = 0; k < count; ++k)
        std::copy_n(p.pInputs + size_t(indices[k]) * p.nInputs, p.nInputs, rows + size_t(k) * p.nInputs);
}

void CLocalPatterns::InputRange(double* lo, double* hi) {
    const CPatterns p = Arrays().patterns;
    const size_t n = p.nInputs;
    std::copy_n(p.pInputs, n, lo);
    std::copy_n(p.pInputs, n, hi);
    for (size_t row = 1; row < p.nPatterns; ++row) {
        for (size_t d = 0; d < n; ++d) {
            const double v = p.pInputs[row * n + d];
            if (v > hi[d]) hi[d] = v;
            if (v < lo[d]) lo[d] = v;
        }
    }
}

}  // namespace engine
