// The Error Correction Algorithm: the network grows by one unit at the pattern of largest error, and after
// each addition every parameter of every unit is trained by the damped second-order loop.
#include <algorithm>

#include "platform/clock.h"
#include "platform/shared.h"
#include "platform/uiqueue.h"
#include "training/runframe.h"
#include "training/training.h"
#include "workspace/blocks.h"

void CVantrelDlg::ResetNetwork() {
    // The blocks are replaced whole, so a failed allocation leaves the old network as it was.
    CBlockCounts counts = CountsOf(*this);
    counts.units = 0;
    ReplaceBlocks(*this, {Block::InputWeights, Block::OutputWeights, Block::Widths, Block::Centers, Block::Outputs},
                  counts);
    std::fill(m_pOutputWeights, m_pOutputWeights + m_nOutputs, 1.0);
    m_nUnits = 0;
    m_nNetworkInputs = m_nInputs;
    m_nNetworkPatterns = m_nPatterns;
}

void CVantrelDlg::AddUnitAtWorstPattern() {
    const size_t oldUnits = m_nUnits, n = m_nInputs, outputs = m_nOutputs;
    const UINT worst = FindWorstPattern();
    CBlockCounts counts = CountsOf(*this);
    counts.units = oldUnits + 1;
    GrowBlocks(*this, {Block::InputWeights, Block::OutputWeights, Block::Widths, Block::Centers}, counts);
    // The new unit: weights and width 1, centred on the worst pattern.
    std::fill_n(m_pInputWeights + oldUnits * n, n, 1.0);
    std::fill_n(m_pOutputWeights + (oldUnits + 1) * outputs, outputs, 1.0);
    m_pWidths[oldUnits] = 1.0;
    std::copy_n(m_pInputs + worst * n, n, m_pCenters + oldUnits * n);

    m_nUnits = static_cast<UINT>(oldUnits + 1);
    CString text;
    text.Format("%d", static_cast<int>(m_nUnits));
    training::SetItemText(*this, IDC_CURRENT_RBF_UNITS, text);
}

namespace training {
namespace {

double UnpackAndComputeOutputs(CVantrelDlg& dlg) {
    dlg.UnpackParameters();
    return dlg.ComputeOutputs();
}

const DampedStepOps kErrorCorrectionOps{[](CVantrelDlg& dlg) { dlg.AccumulateSecondOrder(); },
                                        [](CVantrelDlg& dlg, double* x) { dlg.SolveHessian(x); },
                                        UnpackAndComputeOutputs};

// Adds a unit and trains the grown network for all m_nIterations iterations; there is no test against the
// desired error within a unit. false: the user pressed Stop.
bool TrainNewUnit(RunState& run, std::unique_ptr<double[]>& savedHessian) {
    CVantrelDlg& dlg = run.dlg;
    run.iteration = 0;
    run.iterationErrors.SetSize(0);
    dlg.AddUnitAtWorstPattern();
    double damping = kInitialDamping;
    dlg.PackParameters();
    savedHessian = AllocateSavedHessian(dlg.m_nParams);  // m_nParams changes only with a new unit
    run.iterationErrors.Add(dlg.ComputeOutputs());
    const DWORD startTick = GetTickCount();

    for (UINT iteration = 1; iteration <= AfxReadShared(dlg.m_nIterations); ++iteration) {
        if (!dlg.m_bTraining) return false;
        run.iteration = iteration;
        const int i = run.iterationErrors.Add(0.0);
        const DampedStepResult step =
            DampedIteration(dlg, kErrorCorrectionOps, savedHessian.get(), run.iterationErrors.GetAt(i - 1), damping);
        damping = step.damping;
        run.iterationErrors.SetAt(i, step.error);
        WriteIterationReadouts(dlg, iteration, step.error);
    }

    const double seconds = SecondsSince(startTick);
    WriteNumber(dlg, IDC_CURRENT_PARTIAL_TIME, "%.3f", seconds);
    run.totalTime += seconds;
    WriteNumber(dlg, IDC_CURRENT_TOTAL_TIME, "%.3f", run.totalTime);
    return true;
}

// Curves, final error, grid and result block of a finished unit; returns the unit's final error.
double FinishUnit(RunState& run, std::unique_ptr<double[]>& savedHessian) {
    CVantrelDlg& dlg = run.dlg;
    // Multiple Curves can't be chosen with this algorithm; any other mode draws nothing.
    if (AfxReadShared(dlg.m_nCurveMode) == 0) FeedIterationPlot(dlg, run.iterationErrors, true, 2);
    const double error = dlg.ComputeOutputs();
    WriteNumber(dlg, IDC_CURRENT_TOTAL_ERROR, "%.12f", error);
    if (dlg.m_bClassification) FeedDataPlot(dlg);

    savedHessian.reset();
    run.finalErrors.Add(error);
    FeedSummaryPlot(dlg, run.finalErrors, static_cast<int>(dlg.m_nUnits / 10 + 1), 2);
    const UINT iterations = static_cast<UINT>(run.iterationErrors.GetSize() - 1);  // all of m_nIterations
    if (AfxReadShared(dlg.m_bSaveResults) != 0)
        dlg.WriteErrCorResults(&run.resultPath, dlg.m_nUnits, iterations, error);
    return error;
}

// The normal end of this algorithm also opens Online Training, and ends an online run. It runs whole on the
// window's thread: once Start Training shows, a click may start the next run or arm online training at once,
// and neither may find m_bOnline and m_bNetworkReady of the run before; nor may an exchange of the edits take
// the still checked box back into m_bOnline.
UINT EndErrorCorrection(RunState& run) {
    CVantrelDlg& dlg = run.dlg;
    platform::CallOnGui([&] {
        EndRun(run, RunEnding::Normal);
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
}  // namespace training

UINT TrainByErrorCorrection(void* pParam) {
    using namespace training;
    CVantrelDlg& dlg = *static_cast<CVantrelDlg*>(pParam);
    RunState run(dlg);
    const bool online = AfxReadShared(dlg.m_bOnline) != 0;
    // After a stopped online run the box stays checked while Load Data is open again: a data set loaded then
    // would be trained on with a network and outputs of another shape.
    if (online && !NetworkFitsPatterns(dlg)) return EndRun(run, RunEnding::Failed, kNetworkOfAnotherSet);
    std::unique_ptr<double[]> savedHessian;
    try {
        if (!BeginRun(run)) return 1;
        // Online, the units already trained stay; their outputs decide where the first new unit goes.
        if (!online) dlg.ResetNetwork();
        else dlg.ComputeOutputs();
        for (UINT k = 0; k < dlg.m_nMaxUnits; ++k) {
            if (!TrainNewUnit(run, savedHessian)) {
                savedHessian.reset();
                return EndRun(run, RunEnding::Stopped);
            }
            const double error = FinishUnit(run, savedHessian);
            if (!(error >= AfxReadShared(dlg.m_dDesiredError))) break;  // below the goal, or NaN
        }
    } catch (const CWorkAbandoned&) {
        savedHessian.reset();
        return EndAbandoned(run);
    } catch (...) {
        // A NaN network meets the singular-matrix exception at its next inversion; end like a stop, with a
        // message, and keep the network and online state as they are.
        savedHessian.reset();
        return EndRun(run, RunEnding::Failed, FailureMessage(run));
    }
    return EndErrorCorrection(run);
}
