// Training: the worker-thread runs and the numerics of their iteration steps.
//
// The five run functions (TrainSecondOrder, TrainImprovedSecondOrder, TrainByErrorCorrection, TrainFirstOrder,
// TrainImprovedFirstOrder) and the workspace members OnStartTraining, ResetNetwork and AddUnitAtWorstPattern
// are declared with the workspace. This header gives the two iteration steps, so that their numerics can be
// driven on a workspace that has no window.
#pragma once

#include "workspace/workspace.h"

namespace training {

// The first-order update, from the gradient that the accumulator left in m_pGradient: with learning
// constant L and momentum M, params[i] += -(1 - M) * L * gradient[i] + M * delta[i], and delta[i] becomes the
// change just made.
void ApplyFirstOrderStep(CVantrelDlg& dlg);

// The damping of the second-order step and of the Error Correction Algorithm.
constexpr double kInitialDamping = 0.01;
constexpr double kDampingCeiling = 1e+20;  // a failed try raises the value only while it is below this
constexpr double kDampingFloor = 1e-20;    // a successful try lowers it only while it is above this
constexpr int kMaxTries = 6;

// The three operations of a damped iteration. The second-order methods and the Error Correction Algorithm
// differ only in them: which accumulator fills gradient and quasi-Hessian, and which error measure judges a
// try (ComputeError, or ComputeOutputs, which also keeps the outputs for the worst-pattern search).
struct DampedStepOps {
    void (*accumulate)(CVantrelDlg&);
    // The solution x of m_pHessian x = m_pGradient (n elements); destroys m_pHessian, may throw (singular matrix)
    void (*solve)(CVantrelDlg&, double* x);
    double (*evaluate)(CVantrelDlg&); // the error of the network that m_pParams describes
};

struct DampedStepResult {
    double error;    // the error of the last try: element i of the iteration error series
    double damping;  // the damping value that the next iteration starts from
    int tries;       // tries made, 1 to kMaxTries
};

// One iteration of the damped Gauss-Newton step: accumulates once, saves parameters (in m_pDelta) and the
// quasi-Hessian (in savedHessian, m_nParams x m_nParams), then tries up to kMaxTries damping values until a
// try's error is not greater than or equal to previousError. Nothing is rolled back after the last failure.
DampedStepResult DampedIteration(CVantrelDlg& dlg, const DampedStepOps& ops, double* savedHessian,
                                 double previousError, double damping);

}  // namespace training
