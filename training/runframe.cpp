#include "training/training.h"

#include "platform/shared.h"
#include "platform/uiqueue.h"
#include "workspace/network.h"

namespace training {

void SetItemText(CVantrelDlg& dlg, int id, const CString& text) { dlg.GetDlgItem(id)->SetWindowText(text); }

void EnableItems(CVantrelDlg& dlg, ControlList ids, BOOL enable) {
    for (int id : ids) dlg.GetDlgItem(id)->EnableWindow(enable);
}

void WriteNumber(CVantrelDlg& dlg, int id, const char* format, double value) {
    CString text;
    text.Format(format, value);
    SetItemText(dlg, id, text);
}

UINT CWorkspaceSettings::Iterations() const { return AfxReadShared(m_dlg.m_nIterations); }

double CWorkspaceSettings::DesiredError() const { return AfxReadShared(m_dlg.m_dDesiredError); }

UINT CWorkspaceSettings::Trials() const { return AfxReadShared(m_dlg.m_nTrials); }

bool CWorkspaceSettings::SaveResults() const { return AfxReadShared(m_dlg.m_bSaveResults) != 0; }

bool CWindowSink::CreateResultFile() {
    if (m_dlg.CreateResultFile(&m_resultPath) == 0) return false;
    platform::CallOnGui([this] { m_dlg.AppendPathInfo("Result file:", m_resultPath); });
    return true;
}

// The fields bound to the read-outs follow what the run writes into them: the exchange shows the read-outs
// but never reads them back (they are no settings), and a later showing of the fields, after Initialization
// say, shows what the run reached.
void CWindowSink::IterationDone(UINT iteration, double error) {
    CString text;
    text.Format("%d", static_cast<int>(iteration));
    SetItemText(m_dlg, IDC_CURRENT_ITERATIONS, text);
    AfxWriteShared(m_dlg.m_nCurrentIteration, iteration);
    WriteNumber(m_dlg, IDC_CURRENT_PARTIAL_ERROR, "%.12f", error);
    AfxWriteShared(m_dlg.m_dPartialError, error);
}

void CWindowSink::UnitAdded(UINT units) {
    CString text;
    text.Format("%d", static_cast<int>(units));
    SetItemText(m_dlg, IDC_CURRENT_RBF_UNITS, text);
}

void CWindowSink::TimesDone(double seconds, double runSeconds) {
    WriteNumber(m_dlg, IDC_CURRENT_PARTIAL_TIME, "%.3f", seconds);
    AfxWriteShared(m_dlg.m_dPartialTime, seconds);
    WriteNumber(m_dlg, IDC_CURRENT_TOTAL_TIME, "%.3f", runSeconds);
    AfxWriteShared(m_dlg.m_dTotalTime, runSeconds);
}

void CWindowSink::IterationCurve(const engine::CErrorCurve& errors) {
    const bool oneCurve = AfxReadShared(m_dlg.m_nCurveMode) == 0;
    // Multiple Curves can't be chosen with the Error Correction Algorithm; any other mode draws nothing.
    if (m_errorCorrection) {
        if (oneCurve) FeedIterationPlot(m_dlg, errors, true, 2);
        return;
    }
    FeedIterationPlot(m_dlg, errors, oneCurve, oneCurve ? 0 : 1);
}

void CWindowSink::NetworkDone() {
    if (m_dlg.m_bClassification) FeedDataPlot(m_dlg);
}

void CWindowSink::TotalError(double error) {
    WriteNumber(m_dlg, IDC_CURRENT_TOTAL_ERROR, "%.12f", error);
    AfxWriteShared(m_dlg.m_dTotalError, error);
}

void CWindowSink::SummaryCurve(const engine::CErrorCurve& finalErrors, UINT multiplier) {
    FeedSummaryPlot(m_dlg, finalErrors, static_cast<int>(multiplier), m_errorCorrection ? 2 : 0);
}

void CWindowSink::ResultBlock(UINT units, UINT iterations, double error) {
    if (m_errorCorrection) m_dlg.WriteErrCorResults(&m_resultPath, units, iterations, error);
    else m_dlg.WriteRunResults(&m_resultPath, units, iterations, error);
}

UINT EndRun(CVantrelDlg& dlg, const engine::CRunOutcome& outcome) {
    if (outcome.ending == engine::RunEnding::Abandoned) return 1;
    // The box holds the worker until it is closed, so the controls come back only after the user has read it.
    if (outcome.ending == engine::RunEnding::Failed) dlg.MessageBox(outcome.message.c_str(), "Error", MB_ICONHAND);
    const bool normal = outcome.ending == engine::RunEnding::Normal;
    // The worker is done with the arrays. The flag, the caption and the enable states change together on the
    // window's thread, behind everything the run queued: a Start clicked before this runs is a Stop of this
    // run, and one clicked after it disables the controls after this run's end has enabled them, never before.
    platform::CallOnGui([&] {
        dlg.m_bTraining = false;
        SetItemText(dlg, IDC_START_TRAINING, "Start Training");
        // Verification needs a network that a run finished: a stopped or failed run leaves it disabled.
        EnableItems(dlg, normal ? kRunLockedControls : kRunUnlockedAfterStop);
    });
    return normal ? 0 : 1;
}

}  // namespace training
