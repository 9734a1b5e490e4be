// What the network policy (policy.h) needs of the patterns, and nothing more: sums over all of them at a given
// network, the worst pattern of the outputs last kept, and the inputs of chosen patterns. Where the patterns
// live is the source's business: arrays in this process (CLocalPatterns, below: the window's workspace and the
// engine's own buffers), or the workers of a cluster (the Python module), whose sums travel and whose
// patterns stay where they are.
//
// Every sum over patterns is taken in the order that kernels.h fixes by the shape alone (chunks of
// kChunkPatterns, added by one tree over the chunk indices), so every source gives the same bits.
#pragma once

#include "engine/cancel.h"
#include "engine/network.h"

namespace engine {

class CPatternSource {
public:
    virtual ~CPatternSource() = default;

    virtual UINT Patterns() = 0;
    virtual UINT Inputs() = 0;

    // gradient[k] = sum over the patterns of e * J[k] (e = target - output, J in the form that `improved`
    // chooses), and with hessian not null the quasi-Hessian sum of J[i] * J[j], nParams x nParams, both
    // triangles. spare (nParams x nParams) is scratch the caller owns, needed with hessian; a source may leave
    // it untouched. Returns the sum of e * e. Throws CCancelled when cancel is abandoned on the way, and
    // std::bad_alloc when its scratch can't fit.
    virtual double SumDerivatives(const CNetwork& net, bool improved, UINT nParams, double* hessian,
                                  double* gradient, double* spare, const CCancelToken& cancel) = 0;
    // The sum of (output - target) squared over the patterns; with keep, each pattern's output is kept for
    // WorstPattern.
    virtual double SumSquaredErrors(const CNetwork& net, bool keep, const CCancelToken& cancel) = 0;
    // The kept outputs become 0.0, as before a network has any unit.
    virtual void ClearOutputs() = 0;
    // The first pattern of largest |target - kept output| (FindWorstPattern's rule); 0 when there is none.
    virtual UINT WorstPattern() = 0;
    // The inputs of the patterns at indices (each below Patterns()), one row of Inputs() values each.
    virtual void PatternInputs(const UINT* indices, UINT count, double* rows) = 0;
    // The smallest and the largest value of each input: the first pattern's row, lowered and raised by every
    // later one that compares so (a NaN never does). Requires Patterns() > 0.
    virtual void InputRange(double* lo, double* hi) = 0;
};

// Patterns in arrays of this process, which their owner may replace between two calls (a grown data set, the
// outputs of a network of no units): Arrays() tells where they are at each call.
class CLocalPatterns : public CPatternSource {
public:
    struct CArrays {
        CPatterns patterns;
        double* outputs = nullptr;  // patterns.nPatterns kept outputs
    };
    virtual CArrays Arrays() = 0;

    UINT Patterns() override { return Arrays().patterns.nPatterns; }
    UINT Inputs() override { return Arrays().patterns.nInputs; }
    double SumDerivatives(const CNetwork& net, bool improved, UINT nParams, double* hessian, double* gradient,
                          double* spare, const CCancelToken& cancel) override;
    double SumSquaredErrors(const CNetwork& net, bool keep, const CCancelToken& cancel) override;
    void ClearOutputs() override;
    UINT WorstPattern() override;
    void PatternInputs(const UINT* indices, UINT count, double* rows) override;
    void InputRange(double* lo, double* hi) override;
};

// Caller-owned arrays that stay where they are: a plain view, for the draw's tests and one-off work.
class CPatternArrays : public CLocalPatterns {
public:
    explicit CPatternArrays(const CPatterns& patterns, double* outputs = nullptr)
        : m_arrays{patterns, outputs} {}
    CArrays Arrays() override { return m_arrays; }

private:
    CArrays m_arrays;
};

}  // namespace engine
