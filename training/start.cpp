// Button 1010: starts a run, or asks the running one to stop.
#include "platform/thread.h"
#include "training/runframe.h"

namespace {

// The run function of each algorithm, in the order of the algorithm combo box.
AFX_THREADPROC RunFunctionOf(int algorithm) {
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
    CString caption;
    GetDlgItem(kStartButton)->GetWindowText(caption);

    // The caption turns back to "Start Training" only as a run ends, so a press while a stopped run is still
    // finishing its iteration starts nothing.
    if (!m_bTraining && caption == "Start Training") {
        const AFX_THREADPROC run = RunFunctionOf(m_nAlgorithm);
        if (run == nullptr) return;  // the combo box offers no other index
        m_bTraining = true;
        SetItemText(*this, kStartButton, "Stop Training");
        EnableItems(*this, {kLoadData, kAlgorithmCombo, kInitialization, kSaveResults, kVerification}, FALSE);
        if (AfxBeginThread(run, this, 0, 0, 0, nullptr) == nullptr) {
            // No thread to be had: give back what Start took, as a run that could not begin.
            m_bTraining = false;
            SetItemText(*this, kStartButton, "Start Training");
            EnableItems(*this, {kLoadData, kAlgorithmCombo, kInitialization, kSaveResults}, TRUE);
            MessageBox("The system could not start the training thread.", "Error", MB_ICONHAND);
        }
    } else {
        m_bTraining = false;  // Stop: the run sees it at the head of its next iteration
    }
}
