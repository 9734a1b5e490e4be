// The first-order methods: one run function for both, apart from the accumulator.
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
    explicit CFirstOrderMethod(void (CVantrelDlg::*accumulate)()) : m_accumulate(accumulate) {}

    // Every trial starts without momentum.
    void BeginTrial(CVantrelDlg& dlg) override {
        for (UINT i = 0; i < dlg.m_nParams; ++i) dlg.m_pDelta[i] = 0.0;
    }

    double Iterate(CVantrelDlg& dlg, double) override {
        (dlg.*m_accumulate)();
        ApplyFirstOrderStep(dlg);
        dlg.UnpackParameters();
        return dlg.ComputeError();
    }

private:
    void (CVantrelDlg::*m_accumulate)();
};

UINT TrainFirstOrderWith(void* pParam, void (CVantrelDlg::*accumulate)()) {
    CFirstOrderMethod method(accumulate);
    return RunTrials(*static_cast<CVantrelDlg*>(pParam), method);
}

}  // namespace
}  // namespace training

UINT TrainFirstOrder(void* pParam) {
    return training::TrainFirstOrderWith(pParam, &CVantrelDlg::AccumulateGradient);
}

UINT TrainImprovedFirstOrder(void* pParam) {
    return training::TrainFirstOrderWith(pParam, &CVantrelDlg::AccumulateImprovedGradient);
}
