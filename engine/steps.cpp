// The iteration steps: the first-order update and the damped try loop of the second-order methods and of the
// Error Correction Algorithm.
#include <cstring>
#include <vector>

#include "engine/memory.h"
#include "engine/runs.h"

namespace engine {

void ApplyFirstOrderStep(const CStepArrays& step, double learningConstant, double momentum) {
    const double L = learningConstant;
    const double M = momentum;
    for (UINT i = 0; i < step.nParams; ++i) {
        const double old = step.pParams[i];
        step.pParams[i] = old - (1 - M) * step.pGradient[i] * L + M * step.pDelta[i];
        step.pDelta[i] = step.pParams[i] - old;
    }
}

CDampedStep DampedIteration(CTrainee& trainee, const CDampedForm& form, double previousError, double damping,
                            const CCancelToken& cancel) {
    trainee.Accumulate(form.improved, true);  // once per iteration: every try steps from the same sums
    const CStepArrays s = trainee.Step();
    const size_t n = s.nParams;
    std::memcpy(s.pDelta, s.pParams, n * sizeof(double));
    // Each try writes its factors over the quasi-Hessian's diagonal and lower triangle, and reads the matrix
    // from the strict upper triangle, which stays, and from this copy of the diagonal.
    std::vector<double> diagonal(n), step(n);
    for (size_t d = 0; d < n; ++d) diagonal[d] = s.pHessian[d * n + d];

    CDampedStep result{0.0, damping, 0};
    while (result.tries < kMaxTries) {
        cancel.ThrowIfAbandoned();
        ++result.tries;
        // The step is the damped matrix's inverse applied to the gradient; a solve with the factors gives it
        // at a fraction of the cost of forming the inverse.
        trainee.SolveHessian(diagonal.data(), result.damping, step.data());
        for (size_t r = 0; r < n; ++r) s.pParams[r] = s.pDelta[r] - step[r];
        trainee.UnpackParameters();
        result.error = form.keepOutputs ? trainee.ComputeOutputs() : trainee.ComputeError();
        // Smaller, or NaN: success. An equal error is a failure.
        if (!(result.error >= previousError)) {
            if (result.damping > kDampingFloor) result.damping *= 0.1;
            break;
        }
        if (result.damping < kDampingCeiling) result.damping *= 10.0;
    }
    return result;
}

void CheckQuasiHessianFits(UINT nParams) {
    const double n = nParams;
    // Two n x n blocks live during a damped trial: the quasi-Hessian, which holds each try's factors beside
    // the sums, and its spare. What can't fit is refused here, before either is taken, where the run can still
    // say why.
    if (!DoublesFit(2.0 * n * n)) throw CQuasiHessianTooLarge();
}

}  // namespace engine
