// The first-order methods: one run function for both, apart from the accumulator.
#include "network/network.h"
#include "training/runframe.h"
#include "training/training.h"

namespace training {

void ApplyFirstOrderStep(CVantrelDlg& dlg) {
    const double L = dlg.m_dLearningConstant;
    const double M = dlg.m_dMomentum;
    for (UINT i = 0; i < dlg.m_nParams; ++i) {
        const double old = dlg.m_pParams[i];
        dlg.m_pParams[i] = old - (1 - M) * dlg.m_pGradient[i] * L + M * dlg.m_pDelta[i];
        dlg.m_pDelta[i] = dlg.m_pParams[i] - old;
    }
}

namespace {

class CFirstOrderMethod : public CTrialMethod {
public:
    explicit CFirstOrderMethod(bool improved) : m_improved(improved) {}

    // Every trial starts without momentum.
    void BeginTrial(CVantrelDlg& dlg) override {
        for (UINT i = 0; i < dlg.m_nParams; ++i) dlg.m_pDelta[i] = 0.0;
        m_gradientReady = false;
    }

    double Iterate(CVantrelDlg& dlg, double) override {
        if (!m_gradientReady) {
            if (m_improved) dlg.AccumulateImprovedGradient();
            else dlg.AccumulateGradient();
        }
        ApplyFirstOrderStep(dlg);
        dlg.UnpackParameters();
        // The error of the new parameters and the next iteration's gradient come from the same outputs: one
        // pass gives both, and the network does not change between here and the next iteration.
        const double error = AccumulateGradientAndError(dlg, m_improved);
        m_gradientReady = true;
        return error;
    }

private:
    bool m_improved;
    bool m_gradientReady = false;
};

UINT TrainFirstOrderWith(void* pParam, bool improved) {
    CFirstOrderMethod method(improved);
    return RunTrials(*static_cast<CVantrelDlg*>(pParam), method);
}

}  // namespace
}  // namespace training

UINT TrainFirstOrder(void* pParam) {
    return training::TrainFirstOrderWith(pParam, false);
}

UINT TrainImprovedFirstOrder(void* pParam) {
    return training::TrainFirstOrderWith(pParam, true);
}
