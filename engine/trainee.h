// The network under training, as the runs of runs.h drive it: an interface, whose one real implementation is
// the network policy of policy.h (over the window's blocks, the engine's buffers or a cluster's patterns);
// tests script others.
//
// Contract of every implementation: the operations keep the meaning of the workspace members of the same
// names. PackParameters sizes the parameter vector and the step for the network and algorithm as they stand,
// all 0.0, then packs; the accumulators size gradient and quasi-Hessian for that vector and fill them;
// SolveHessian factors the damped quasi-Hessian beside its kept triangle and writes the step; the error
// measures read the network's own arrays, so UnpackParameters comes first after a change of the vector. Blocks
// are the implementation's: what Step() returns stays valid until the next operation that sizes them.
#pragma once

#include "engine/network.h"

namespace engine {

// The parameter vector and the step arrays of a trial, and their length.
struct CStepArrays {
    double* pParams = nullptr;    // nParams
    double* pDelta = nullptr;     // nParams: the last change (first order), the saved vector (second order)
    double* pGradient = nullptr;  // nParams
    double* pHessian = nullptr;   // nParams x nParams
    UINT nParams = 0;
};

// The try that follows the one under way, should that one fail: its damping, and where its step goes when the
// trainee solves it beside the one under way, on a thread that is free; `solved` says that it did.
struct CNextTry {
    double damping = 0.0;
    double* x = nullptr;
    bool solved = false;
};

class CTrainee {
public:
    virtual ~CTrainee() = default;

    virtual UINT Patterns() const = 0;
    virtual UINT Inputs() const = 0;
    virtual UINT Units() const = 0;
    virtual CStepArrays Step() = 0;

    // A new draw of the network's arrays by the initialization settings (the trial rule's "initialize").
    virtual void InitializeNetwork() = 0;
    virtual void PackParameters() = 0;
    virtual void UnpackParameters() = 0;
    // The average sum square error; ComputeOutputs also keeps each pattern's output for FindWorstPattern.
    virtual double ComputeError() = 0;
    virtual double ComputeOutputs() = 0;
    // Gradient, and with secondOrder the quasi-Hessian, of the network as its arrays stand; improved: the
    // Jacobian rows carry the input weights.
    virtual void Accumulate(bool improved, bool secondOrder) = 0;
    // The gradient and the error of the same network in one pass.
    virtual double AccumulateGradientAndError(bool improved) = 0;
    // x (nParams) solves (quasi-Hessian + damping I) x = gradient, where the quasi-Hessian is read from its
    // strict lower triangle and `diagonal` (nParams); its diagonal and upper triangle get the factors, its
    // strict lower triangle stays (kernels::SolveDamped). next: none, or the following try, which the trainee
    // may solve as well (the same bits as a call of its own would give). Throws CSingularMatrixException.
    virtual void SolveHessian(const double* diagonal, double damping, double* x, CNextTry* next) = 0;
    // Error Correction: a network of no units (the bias 1.0), and a new unit at the worst pattern.
    virtual void ResetNetwork() = 0;
    virtual void AddUnitAtWorstPattern() = 0;
};

}  // namespace engine
