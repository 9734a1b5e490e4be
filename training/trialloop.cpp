// The loop of trials of the four methods with a fixed number of units.
#include "platform/clock.h"
#include "platform/shared.h"
#include "training/runframe.h"

namespace training {
namespace {

// Draws or keeps the network by the trial rule, packs it and records its initial error as element 0.
void StartTrial(RunState& run, CTrialMethod& method) {
    CVantrelDlg& dlg = run.dlg;
    run.iteration = 0;
    if (dlg.m_dlgInitialization.m_nLoadFromFile == 0) dlg.InitializeNetwork();
    run.iterationErrors.SetSize(0);
    dlg.PackParameters();
    method.BeginTrial(dlg);
    run.iterationErrors.Add(dlg.ComputeError());
}

// Iterates until the error falls below the desired one (or is NaN) or the iterations run out. false: the
// user pressed Stop.
bool IterateTrial(RunState& run, CTrialMethod& method) {
    CVantrelDlg& dlg = run.dlg;
    for (UINT iteration = 1; iteration <= AfxReadShared(dlg.m_nIterations); ++iteration) {
        if (!dlg.m_bTraining) return false;
        run.iteration = iteration;
        const int i = run.iterationErrors.Add(0.0);
        const double error = method.Iterate(dlg, run.iterationErrors.GetAt(i - 1));
        run.iterationErrors.SetAt(i, error);
        WriteIterationReadouts(dlg, iteration, error);
        if (!(error >= AfxReadShared(dlg.m_dDesiredError))) break;
    }
    return true;
}

// Times, curves, summary and result block of a finished trial.
void FinishTrial(RunState& run, CTrialMethod& method, UINT trial, DWORD startTick) {
    CVantrelDlg& dlg = run.dlg;
    const double seconds = SecondsSince(startTick);
    WriteNumber(dlg, IDC_CURRENT_PARTIAL_TIME, "%.3f", seconds);
    run.totalTime += seconds;
    WriteNumber(dlg, IDC_CURRENT_TOTAL_TIME, "%.3f", run.totalTime / (trial + 1.0));

    const bool oneCurve = AfxReadShared(dlg.m_nCurveMode) == 0;
    FeedIterationPlot(dlg, run.iterationErrors, oneCurve, oneCurve ? 0 : 1);
    if (dlg.m_bClassification) FeedDataPlot(dlg);
    method.EndTrial();

    const int last = run.iterationErrors.GetSize() - 1;
    const double error = run.iterationErrors.GetAt(last);
    run.finalErrors.Add(error);
    run.errorSum += error;
    WriteNumber(dlg, IDC_CURRENT_TOTAL_ERROR, "%.12f", run.errorSum / (trial + 1.0));
    FeedSummaryPlot(dlg, run.finalErrors, static_cast<int>(trial / 10 + 1), 0);

    if (AfxReadShared(dlg.m_bSaveResults) != 0)
        dlg.WriteRunResults(&run.resultPath, dlg.m_nUnits, static_cast<UINT>(last), error);
}

}  // namespace

UINT RunTrials(CVantrelDlg& dlg, CTrialMethod& method) {
    RunState run(dlg);
    try {
        if (!BeginRun(run)) return 1;
        // m_nTrials is read at every test: an edit made during the run takes effect at once.
        for (UINT trial = 0; trial < AfxReadShared(dlg.m_nTrials); ++trial) {
            StartTrial(run, method);
            const DWORD startTick = GetTickCount();
            if (!IterateTrial(run, method)) {
                method.EndTrial();
                return EndRun(run, RunEnding::Stopped);
            }
            FinishTrial(run, method, trial, startTick);
        }
    } catch (const CWorkAbandoned&) {
        method.EndTrial();
        return EndAbandoned(run);
    } catch (...) {
        // A singular quasi-Hessian (a network gone NaN) or memory that isn't there: end like a stop, with a
        // message, and leave the network as the last try made it.
        method.EndTrial();
        return EndRun(run, RunEnding::Failed, FailureMessage(run));
    }
    return EndRun(run, RunEnding::Normal);
}

}  // namespace training
