// The run functions of the four algorithms of a fixed number of units: the engine's loop of trials on the
// workspace.
#include "training/training.h"

namespace {

// The workspace's settings, but the algorithm that the run function stands for.
class CSettingsOf : public training::CWorkspaceSettings {
public:
    CSettingsOf(const CVantrelDlg& dlg, engine::Algorithm algorithm)
        : CWorkspaceSettings(dlg), m_algorithm(algorithm) {}
    engine::Algorithm GetAlgorithm() const override { return m_algorithm; }

private:
    engine::Algorithm m_algorithm;
};

UINT TrainFixedSize(void* pParam, engine::Algorithm algorithm) {
    CVantrelDlg& dlg = *static_cast<CVantrelDlg*>(pParam);
    CWorkspaceTrainee trainee(dlg);
    const CSettingsOf settings(dlg, algorithm);
    training::CWindowSink sink(dlg, false);
    return training::EndRun(dlg, engine::RunFixedSize(trainee, settings, sink, dlg.m_cancel));
}

}  // namespace

UINT TrainSecondOrder(void* pParam) { return TrainFixedSize(pParam, engine::kSecondOrder); }

UINT TrainImprovedSecondOrder(void* pParam) { return TrainFixedSize(pParam, engine::kImprovedSecondOrder); }

UINT TrainFirstOrder(void* pParam) { return TrainFixedSize(pParam, engine::kFirstOrder); }

UINT TrainImprovedFirstOrder(void* pParam) { return TrainFixedSize(pParam, engine::kImprovedFirstOrder); }
