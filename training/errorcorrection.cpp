// The run function of the Error Correction Algorithm, online training's run among them: the engine's growth
// on the workspace, and the end that also arms Online Training.
#include "platform/shared.h"
#include "platform/uiqueue.h"
#include "training/training.h"

namespace {

// The normal end of this algorithm also opens Online Training, and ends an online run. It runs whole on the
// window's thread: once Start Training shows, a click may start the next run or arm online training at once,
// and neither may find m_bOnline and m_bNetworkReady of the run before; nor may an exchange of the edits take
// the still checked box back into m_bOnline.
UINT EndErrorCorrection(CVantrelDlg& dlg) {
    platform::CallOnGui([&] {
        training::EndRun(dlg, engine::RunEnding::Normal);
        dlg.GetDlgItem(IDC_ONLINE_TRAINING)->EnableWindow(TRUE);
        if (dlg.m_bOnline != 0) {
            dlg.m_bOnline = 0;
            dlg.m_bNetworkReady = false;
            dlg.GetDlgItem(IDC_ONLINE_TRAINING)->SendMessage(BM_SETCHECK, BST_UNCHECKED);
        }
    });
    return 0;
}

}  // namespace

UINT TrainByErrorCorrection(void* pParam) {
    using namespace training;
    CVantrelDlg& dlg = *static_cast<CVantrelDlg*>(pParam);
    const bool online = AfxReadShared(dlg.m_bOnline) != 0;
    // After a stopped online run the box stays checked while Load Data is open again: a data set loaded then
    // would be trained on with a network and outputs of another shape.
    if (online && !NetworkFitsPatterns(dlg)) return EndRun(dlg, engine::RunEnding::Failed, kNetworkOfAnotherSet);
    CWorkspaceTrainee trainee(dlg);
    const CWorkspaceSettings settings(dlg);
    CWindowSink sink(dlg, true);
    const engine::CRunOutcome outcome = engine::RunErrorCorrection(trainee, settings, sink, dlg.m_cancel, online);
    if (outcome.ending != engine::RunEnding::Normal) return EndRun(dlg, outcome);
    return EndErrorCorrection(dlg);
}
