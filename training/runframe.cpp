#include "training/runframe.h"

#include "platform/clock.h"
#include "platform/memory.h"
#include "platform/shared.h"

namespace training {

void SetItemText(CVantrelDlg& dlg, int id, const CString& text) { dlg.GetDlgItem(id)->SetWindowText(text); }

void EnableItems(CVantrelDlg& dlg, ControlList ids, BOOL enable) {
    for (int id : ids) dlg.GetDlgItem(id)->EnableWindow(enable);
}

void WriteIterationReadouts(CVantrelDlg& dlg, UINT iteration, double error) {
    CString text;
    text.Format("%d", static_cast<int>(iteration));
    SetItemText(dlg, IDC_CURRENT_ITERATIONS, text);
    WriteNumber(dlg, IDC_CURRENT_PARTIAL_ERROR, "%.12f", error);
}

void WriteNumber(CVantrelDlg& dlg, int id, const char* format, double value) {
    CString text;
    text.Format(format, value);
    SetItemText(dlg, id, text);
}

double SecondsSince(DWORD startTick) {
    const DWORD elapsed = GetTickCount() - startTick;  // unsigned: right across the tick's wrap
    return elapsed * 0.001;
}

bool BeginRun(RunState& run) {
    CVantrelDlg& dlg = run.dlg;
    // The loader refuses such sets; should one come through anyway, the worst-pattern search and the center
    // copy of a new unit would read rows that don't exist, so no run starts on it.
    if (dlg.m_nPatterns == 0 || dlg.m_nInputs == 0) {
        EndRun(run, RunEnding::Failed,
               "The data set has no patterns or no inputs: load another data set before training.");
        return false;
    }
    if (AfxReadShared(dlg.m_bSaveResults) != 0 && !dlg.CreateResultFile(&run.resultPath)) {
        EndRun(run, RunEnding::Failed, "Create Result File Failed!");
        return false;
    }
    return true;
}

std::unique_ptr<double[]> AllocateSavedHessian(UINT nParams) {
    const double n = nParams;
    // Three n x n blocks live during a damped trial: this one, m_pHessian and m_pHessianInv. What can't fit
    // is refused here, before any is taken, where the run can still say why.
    if (!AfxDoublesFit(3.0 * n * n)) throw CQuasiHessianTooLarge();
    try {
        return std::unique_ptr<double[]>(new double[size_t(nParams) * nParams]);
    } catch (const std::bad_alloc&) {
        throw CQuasiHessianTooLarge();
    }
}

UINT EndRun(RunState& run, RunEnding ending, const CString& failureMessage) {
    CVantrelDlg& dlg = run.dlg;
    // The box holds the worker until it is closed, so the controls come back only after the user has read it.
    if (ending == RunEnding::Failed) dlg.MessageBox(failureMessage, "Error", MB_ICONHAND);
    // Cleared (it already is after Stop) before the caption turns back: once the button shows "Start
    // Training", a press starts the next run.
    dlg.m_bTraining = false;
    SetItemText(dlg, IDC_START_TRAINING, "Start Training");
    run.iterationErrors.RemoveAll();
    run.finalErrors.RemoveAll();
    // Verification needs a network that a run finished: a stopped or failed run leaves it disabled.
    EnableItems(dlg, ending == RunEnding::Normal ? kRunLockedControls : kRunUnlockedAfterStop);
    return ending == RunEnding::Normal ? 0 : 1;
}

UINT EndAbandoned(RunState& run) {
    run.iterationErrors.RemoveAll();
    run.finalErrors.RemoveAll();
    return 1;
}

CString FailureMessage(const RunState& run) {
    CString message;
    try {
        throw;
    } catch (const CQuasiHessianTooLarge&) {
        message.Format("Not enough memory for the quasi-Hessian of %u parameters: training stopped.",
                       run.dlg.m_nParams);
    } catch (const std::bad_alloc&) {
        message.Format("Not enough memory: training stopped at iteration %u.", run.iteration);
    } catch (const std::exception& failure) {
        // In practice the singular matrix of the inversion: a quasi-Hessian with a positive damping value
        // has no zero row, so a row without magnitude means that the network has turned to NaN.
        message.Format("Training stopped at iteration %u: %s.\n"
                       "The network can't be trained further from its present values; initialize it again.",
                       run.iteration, failure.what());
    } catch (...) {
        message.Format("Training stopped at iteration %u by an unknown failure.", run.iteration);
    }
    return message;
}

}  // namespace training
