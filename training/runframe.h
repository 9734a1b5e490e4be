// The frame that every training run shares: the run's own values, the read-outs, feeding the plots, the
// loop of trials of the methods with a fixed number of units, and the ways a run ends.
#pragma once

#include <memory>
#include <new>

#include "platform/thread.h"
#include "workspace/workspace.h"

namespace training {

// What a run holds of its own from its start to its end.
struct RunState {
    explicit RunState(CVantrelDlg& workspace) : dlg(workspace) {}
    CVantrelDlg& dlg;
    CDoubleArray iterationErrors;  // this trial's or unit's: element 0 before the first iteration
    CDoubleArray finalErrors;      // one per finished trial or unit
    CString resultPath;
    double totalTime = 0.0;        // sum of the trials' or units' times
    double errorSum = 0.0;         // sum of the trials' final errors
    UINT iteration = 0;            // the iteration under way (0 before the first), for a failure message
};

// Control operations from the worker: queued to the window's thread, never waited for. Without a window
// (unit tests) they do nothing.
void SetItemText(CVantrelDlg& dlg, int id, const CString& text);
void EnableItems(CVantrelDlg& dlg, ControlList ids, BOOL enable = TRUE);

// Read-outs.
void WriteIterationReadouts(CVantrelDlg& dlg, UINT iteration, double error);  // 1024 and 1025
void WriteNumber(CVantrelDlg& dlg, int id, const char* format, double value);
double SecondsSince(DWORD startTick);

// Refuses a data set without patterns or inputs and creates the result file when one is asked for. On
// false the run has already ended as failed and must return 1.
bool BeginRun(RunState& run);

// The saved quasi-Hessian of the damped methods; throws CQuasiHessianTooLarge when it does not fit, so that
// the message can tell it from other memory that ran out.
class CQuasiHessianTooLarge : public std::bad_alloc {};
std::unique_ptr<double[]> AllocateSavedHessian(UINT nParams);

// Feeding the plots. Each rebuilds its plot's series under the plot's lock and refreshes after releasing it.
// FeedIterationPlot empties the curve first when restart is set (One Curve, and the Error Correction
// Algorithm), else appends a further curve.
void FeedIterationPlot(CVantrelDlg& dlg, const CDoubleArray& errors, bool restart, int refreshMode);
void FeedSummaryPlot(CVantrelDlg& dlg, const CDoubleArray& errors, int multiplier, int mode);
void FeedDataPlot(CVantrelDlg& dlg);

// Online training goes on from the grown network only while the data set has the inputs and patterns that
// the network and m_pOutputs were made for; a data set loaded since leaves them of another shape.
bool NetworkFitsPatterns(const CVantrelDlg& dlg);
extern const char* const kNetworkOfAnotherSet;

// How a run ended.
enum class RunEnding {
    Normal,   // all trials or units done, or the goal reached
    Stopped,  // by the user
    Failed,   // the result file, or a failure within the run; the network stays as the failure left it
};

// Ends a run: shows failureMessage under "Error" when it failed, clears m_bTraining, turns the button back to
// "Start Training", releases the run's series and enables what Start disabled, Verification only after a
// normal end. Returns the run function's result: 0 after a normal end, else 1.
UINT EndRun(RunState& run, RunEnding ending, const CString& failureMessage = CString());
// The window is closing and has abandoned the run (CWorkAbandoned): nothing more is shown or written, and
// the iteration under way is dropped. 1.
UINT EndAbandoned(RunState& run);
// The message for the exception that ended a run; to be called inside the catch block. A worker is a thread
// of its own, and whatever escaped it would end the program, so the runs catch everything.
CString FailureMessage(const RunState& run);

// A method of a fixed number of units, as the loop of trials drives it.
class CTrialMethod {
public:
    virtual ~CTrialMethod() = default;
    // Called after PackParameters, before the initial error.
    virtual void BeginTrial(CVantrelDlg& dlg) = 0;
    // One iteration; returns the error after it.
    virtual double Iterate(CVantrelDlg& dlg, double previousError) = 0;
    // Releases what the trial holds (a stop or failure ends a trial here as well).
    virtual void EndTrial() {}
};

// The whole run of a method of fixed size: result file, trials, read-outs, plots, result blocks, ending.
UINT RunTrials(CVantrelDlg& dlg, CTrialMethod& method);

}  // namespace training
