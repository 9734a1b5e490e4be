// The Start Training button: starts a run, or asks the running one to stop.
#include "platform/thread.h"
#include "training/training.h"

namespace {

// The run function of each algorithm, in the order of the algorithm combo box.
AFX_THREADPROC RunFunctionOf(int algorithm) {
    static_assert(engine::kSecondOrder == 0 && engine::kImprovedSecondOrder == 1 && engine::kErrorCorrection == 2 &&
                      engine::kFirstOrder == 3 && engine::kImprovedFirstOrder == 4,
                  "the table follows the algorithms' order");
    static const AFX_THREADPROC functions[] = {TrainSecondOrder, TrainImprovedSecondOrder, TrainByErrorCorrection,
                                               TrainFirstOrder, TrainImprovedFirstOrder};
    if (algorithm < 0 || algorithm >= static_cast<int>(sizeof functions / sizeof functions[0])) return nullptr;
    return functions[algorithm];
}

}  // namespace

void CVantrelDlg::OnStartTraining() {
    using namespace training;
    UpdateData(TRUE);
    if (!m_bDataLoaded) {
        MessageBox("Please Load Data", "Error", MB_ICONHAND);
        return;
    }
    if (!m_bNetworkReady) {
        MessageBox("Please Initial Parameters", "Error", MB_ICONHAND);
        return;
    }
    // m_bTraining stays set until the run has ended, so a press while a stopped run is still finishing its
    // iteration asks for the stop again and starts nothing.
    if (!m_bTraining) {
        const AFX_THREADPROC run = RunFunctionOf(m_nAlgorithm);
        if (run == nullptr) return;  // the combo box offers no other index
        m_cancel.Reset();
        m_bTraining = true;
        SetItemText(*this, IDC_START_TRAINING, "Stop Training");
        EnableItems(*this, kRunLockedControls, FALSE);
        if (AfxBeginThread(run, this, 0, 0, 0, nullptr) == nullptr) {
            // No thread to be had: a run that could not begin gives back what Start took, as a failed one.
            EndRun(*this, engine::RunEnding::Failed, "The system could not start the training thread.");
        }
    } else {
        m_cancel.RequestStop();  // the run sees it at the head of its next iteration
    }
}
