// The second-order methods and the damped try loop that they share with the Error Correction Algorithm.
#include <cstring>
#include <vector>

#include "training/runframe.h"
#include "training/training.h"

namespace training {

DampedStepResult DampedIteration(CVantrelDlg& dlg, const DampedStepOps& ops, double* savedHessian,
                                 double previousError, double damping) {
    ops.accumulate(dlg);  // once per iteration: every try steps from the same gradient and quasi-Hessian
    const size_t n = dlg.m_nParams;
    std::memcpy(dlg.m_pDelta, dlg.m_pParams, n * sizeof(double));
    std::memcpy(savedHessian, dlg.m_pHessian, n * n * sizeof(double));

    std::vector<double> step(n);
    DampedStepResult result{0.0, damping, 0};
    while (result.tries < kMaxTries) {
        AfxThrowIfAbandoned();
        ++result.tries;
        // The solve destroys m_pHessian, so each try starts again from the saved copy.
        std::memcpy(dlg.m_pHessian, savedHessian, n * n * sizeof(double));
        for (size_t d = 0; d < n; ++d) dlg.m_pHessian[d * n + d] += result.damping;
        // The step is the damped matrix's inverse applied to the gradient; a solve with the factors gives it
        // at a third of the cost of forming the inverse.
        ops.solve(dlg, step.data());
        for (size_t r = 0; r < n; ++r) dlg.m_pParams[r] = dlg.m_pDelta[r] - step[r];
        result.error = ops.evaluate(dlg);
        // Smaller, or NaN: success. An equal error is a failure.
        if (!(result.error >= previousError)) {
            if (result.damping > kDampingFloor) result.damping *= 0.1;
            break;
        }
        if (result.damping < kDampingCeiling) result.damping *= 10.0;
    }
    return result;
}

namespace {

class CSecondOrderMethod : public CTrialMethod {
public:
    explicit CSecondOrderMethod(const DampedStepOps& ops) : m_ops(ops) {}

    void BeginTrial(CVantrelDlg& dlg) override {
        m_damping = kInitialDamping;
        m_savedHessian = AllocateSavedHessian(dlg.m_nParams);
    }

    double Iterate(CVantrelDlg& dlg, double previousError) override {
        const DampedStepResult step = DampedIteration(dlg, m_ops, m_savedHessian.get(), previousError, m_damping);
        m_damping = step.damping;  // carried to the next iteration of the trial
        return step.error;
    }

    void EndTrial() override { m_savedHessian.reset(); }

private:
    DampedStepOps m_ops;
    double m_damping = kInitialDamping;
    std::unique_ptr<double[]> m_savedHessian;
};

void Solve(CVantrelDlg& dlg, double* x) { dlg.SolveHessian(x); }

double UnpackAndComputeError(CVantrelDlg& dlg) {
    dlg.UnpackParameters();
    return dlg.ComputeError();
}

const DampedStepOps kSecondOrderOps{[](CVantrelDlg& dlg) { dlg.AccumulateSecondOrder(); }, Solve,
                                    UnpackAndComputeError};
const DampedStepOps kImprovedSecondOrderOps{[](CVantrelDlg& dlg) { dlg.AccumulateImprovedSecondOrder(); },
                                            Solve, UnpackAndComputeError};

UINT TrainSecondOrderWith(void* pParam, const DampedStepOps& ops) {
    CSecondOrderMethod method(ops);
    return RunTrials(*static_cast<CVantrelDlg*>(pParam), method);
}

}  // namespace
}  // namespace training

UINT TrainSecondOrder(void* pParam) { return training::TrainSecondOrderWith(pParam, training::kSecondOrderOps); }

UINT TrainImprovedSecondOrder(void* pParam) {
    return training::TrainSecondOrderWith(pParam, training::kImprovedSecondOrderOps);
}
