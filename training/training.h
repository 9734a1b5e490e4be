// The window's side of a run: the engine (engine/runs.h) trains the workspace through the three things it
// talks to, which this header implements on the workspace: a trainee on its blocks, a settings reader of its
// fields, and a progress sink that writes the read-outs, the plots and the result file. The run functions
// (TrainSecondOrder, ... declared with the workspace) put them together and end the run as the window shows it.
// training/ may include workspace/ and what lies below it, never shell/: the plots it feeds are the
// workspace's, and it calls only their operations.
#pragma once

#include <vector>

#include "engine/runs.h"
#include "workspace/trainee.h"
#include "workspace/workspace.h"

namespace training {

// Control operations from the worker: queued to the window's thread, never waited for. Without a window
// (unit tests) they do nothing.
void SetItemText(CVantrelDlg& dlg, int id, const CString& text);
void EnableItems(CVantrelDlg& dlg, ControlList ids, BOOL enable = TRUE);
void WriteNumber(CVantrelDlg& dlg, int id, const char* format, double value);

// The workspace's settings, read at each use: the edits of iterations, desired error and trials stay live
// during a run.
class CWorkspaceSettings : public engine::CRunSettings {
public:
    explicit CWorkspaceSettings(const CVantrelDlg& dlg) : m_dlg(dlg) {}
    engine::Algorithm GetAlgorithm() const override { return static_cast<engine::Algorithm>(m_dlg.m_nAlgorithm); }
    UINT Iterations() const override;
    double DesiredError() const override;
    UINT Trials() const override;
    UINT MaxUnits() const override { return m_dlg.m_nMaxUnits; }
    double LearningConstant() const override { return m_dlg.m_dLearningConstant; }
    double Momentum() const override { return m_dlg.m_dMomentum; }
    bool LoadFromFile() const override { return m_dlg.m_dlgInitialization.m_nLoadFromFile != 0; }
    bool SaveResults() const override;

private:
    const CVantrelDlg& m_dlg;
};

// What a run shows: read-outs 1024 to 1028 and the units read-out, the iteration and summary plots, the data plot's decision
// regions for a classification set, and the result file. The Error Correction Algorithm draws its curves in
// its own modes and writes its own blocks.
class CWindowSink : public engine::CProgressSink {
public:
    CWindowSink(CVantrelDlg& dlg, bool errorCorrection) : m_dlg(dlg), m_errorCorrection(errorCorrection) {}
    bool CreateResultFile() override;
    void IterationDone(UINT iteration, double error) override;
    void UnitAdded(UINT units) override;
    void TimesDone(double seconds, double runSeconds) override;
    void IterationCurve(const engine::CErrorCurve& errors) override;
    void NetworkDone() override;
    void TotalError(double error) override;
    void SummaryCurve(const engine::CErrorCurve& finalErrors, UINT multiplier) override;
    void ResultBlock(UINT units, UINT iterations, double error) override;

private:
    CVantrelDlg& m_dlg;
    bool m_errorCorrection;
    CString m_resultPath;
};

// Feeding the plots. Each rebuilds its plot's series under the plot's lock and refreshes after releasing it; an
// error of index i is drawn at x = i + 1. FeedIterationPlot empties the curve first when restart is set (One
// Curve, and the Error Correction Algorithm), else appends a further curve.
void FeedIterationPlot(CVantrelDlg& dlg, const engine::CErrorCurve& errors, bool restart, int refreshMode);
void FeedSummaryPlot(CVantrelDlg& dlg, const engine::CErrorCurve& errors, int multiplier, int mode);
void FeedDataPlot(CVantrelDlg& dlg);

// Online training goes on from the grown network only while the data set has the inputs and patterns that
// the network and m_pOutputs were made for; a data set loaded since leaves them of another shape.
bool NetworkFitsPatterns(const CVantrelDlg& dlg);
extern const char* const kNetworkOfAnotherSet;

// Ends a run as the window shows it: a failure's message under "Error", m_bTraining cleared, the button back
// to "Start Training", and what Start disabled enabled again, Verification only after a normal end. An
// abandoned run (the window is closing) shows and writes nothing. Returns the run function's result: 0 after
// a normal end, else 1.
UINT EndRun(CVantrelDlg& dlg, const engine::CRunOutcome& outcome);
inline UINT EndRun(CVantrelDlg& dlg, engine::RunEnding ending, const char* message = "") {
    return EndRun(dlg, engine::CRunOutcome{ending, message});
}

}  // namespace training
