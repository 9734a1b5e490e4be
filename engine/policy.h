// The network policy, written once: how a network under training is packed into its parameter vector, how the
// damped step is solved, how a growing network is reset and gains a unit at the worst pattern, and how a new
// network is drawn. It works on two things it is handed:
//   a store    where the network's and the step's arrays live, and how they are taken and grown (the window's
//              heap blocks, or the engine's vectors: buffers.h);
//   a source   the patterns, of which it asks only sums and a few rows (patternsource.h).
// The runs of runs.h drive the policy as their trainee; the window's workspace members, the engine's buffers
// and the Python module's cluster fits are the same policy over other stores and sources.
#pragma once

#include "engine/draw.h"
#include "engine/patternsource.h"
#include "engine/trainee.h"

namespace engine {

// Where a trainee's arrays live. The policy asks for arrays of a size, then fills them; a store that can't
// take an array throws std::bad_alloc and leaves what it had.
class CNetworkStore {
public:
    virtual ~CNetworkStore() = default;

    // The algorithm decides the layout of the parameter vector.
    virtual Algorithm GetAlgorithm() = 0;
    virtual CNetwork Network() = 0;
    virtual CNetwork InitialNetwork() = 0;
    virtual CStepArrays Step() = 0;

    // The parameter vector and the step of nParams elements, every one 0.0.
    virtual void SizeParameters(UINT nParams) = 0;
    // The gradient, and with secondOrder the quasi-Hessian and the spare of Step().nParams squared, each of
    // its size; what they hold is undefined (the accumulation writes them whole). Returns the spare, or null.
    virtual double* SizeDerivatives(bool secondOrder) = 0;
    // The spare of SizeDerivatives(true): scratch for a damped try that falls back to the LU.
    virtual double* Spare() = 0;
    // A network of no units; its one output weight (the bias) is the policy's to set.
    virtual void SetNoUnits() = 0;
    // One unit more behind the others, whose arrays keep their values; the new unit's are the policy's to set.
    virtual void AddUnit() = 0;

    // How a new network is drawn, and from which random source: the one for this draw.
    virtual const CInitSettings& InitSettings() = 0;
    virtual CRandomSource& NewDraw() = 0;
};

class CNetworkPolicy : public CTrainee {
public:
    // Both are the caller's, kept alive while the policy is used; so is the token.
    CNetworkPolicy(CNetworkStore& store, CPatternSource& patterns, const CCancelToken& cancel)
        : m_store(store), m_patterns(patterns), m_cancel(cancel) {}

    UINT Patterns() const override { return m_patterns.Patterns(); }
    UINT Inputs() const override { return m_patterns.Inputs(); }
    UINT Units() const override { return m_store.Network().nUnits; }
    CStepArrays Step() override { return m_store.Step(); }

    void InitializeNetwork() override;
    void PackParameters() override;
    void UnpackParameters() override;
    double ComputeError() override;
    double ComputeOutputs() override;
    void Accumulate(bool improved, bool secondOrder) override;
    double AccumulateGradientAndError(bool improved) override;
    void SolveHessian(const double* diagonal, double damping, double* x, CNextTry* next) override;
    void ResetNetwork() override;
    void AddUnitAtWorstPattern() override;

    // The first pattern of largest error of the outputs that ComputeOutputs kept.
    UINT WorstPattern() { return m_patterns.WorstPattern(); }

private:
    CParamLayout Layout();
    double Accumulated(bool improved, bool secondOrder);

    CNetworkStore& m_store;
    CPatternSource& m_patterns;
    const CCancelToken& m_cancel;
};

}  // namespace engine
