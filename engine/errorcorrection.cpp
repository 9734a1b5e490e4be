// The Error Correction Algorithm: the network grows by one unit at the pattern of largest error, and after
// each addition every parameter of every unit is trained by the damped second-order loop.
#include "engine/runframe.h"

namespace engine {
namespace {

// Tries are judged by the error that also keeps the outputs, for the next unit's worst pattern.
CDampedForm GrowthForm(const CRunSettings& settings) { return CDampedForm{false, true, settings.NonFiniteTriesFail()}; }

// Adds a unit and trains the grown network for all iterations; there is no test against the desired error
// within a unit. false: a stop was asked for.
bool TrainNewUnit(CRunState& run) {
    CTrainee& trainee = run.trainee;
    run.cancel.ThrowIfAbandoned();  // an abandoned run reports no further unit
    run.iteration = 0;
    run.iterationErrors.Clear();
    trainee.AddUnitAtWorstPattern();
    run.sink.UnitAdded(trainee.Units());
    double damping = kInitialDamping;
    trainee.PackParameters();
    CheckQuasiHessianFits(trainee.Step().nParams);  // the vector's length changes only with a unit
    run.iterationErrors.Append(trainee.ComputeOutputs());
    run.sink.TrialStarted(run.iterationErrors.Last());
    const CDampedForm form = GrowthForm(run.settings);
    const CRunClock clock;

    for (UINT iteration = 1; iteration <= run.settings.Iterations(); ++iteration) {
        if (run.cancel.StopRequested()) return false;
        run.iteration = iteration;
        const CDampedStep step =
            DampedIteration(trainee, form, run.iterationErrors.Last(), damping, run.cancel);
        damping = step.damping;
        run.iterationErrors.Append(step.error);
        run.sink.IterationDone(iteration, step.error);
    }

    const double seconds = clock.Seconds();
    run.totalTime += seconds;
    run.sink.TimesDone(seconds, run.totalTime);
    return true;
}

// Curves, final error, regions and result block of a finished unit; returns the unit's final error.
double FinishUnit(CRunState& run) {
    CTrainee& trainee = run.trainee;
    run.sink.IterationCurve(run.iterationErrors);
    const double error = trainee.ComputeOutputs();
    run.sink.TotalError(error);
    run.sink.NetworkDone();

    run.finalErrors.Append(error);
    run.sink.SummaryCurve(run.finalErrors, trainee.Units() / 10 + 1);
    const UINT iterations = static_cast<UINT>(run.iterationErrors.Count() - 1);  // all of the iterations
    if (run.settings.SaveResults()) run.sink.ResultBlock(trainee.Units(), iterations, error);
    return error;
}

}  // namespace

CRunOutcome RunErrorCorrection(CTrainee& trainee, const CRunSettings& settings, CProgressSink& sink,
                               const CCancelToken& cancel, bool online) {
    CRunState run(trainee, settings, sink, cancel);
    try {
        const CRunOutcome begun = BeginRun(run);
        if (begun.ending != RunEnding::Normal) return begun;
        // Online, the units already trained stay; their outputs decide where the first new unit goes.
        if (!online) trainee.ResetNetwork();
        else trainee.ComputeOutputs();
        for (UINT k = 0; k < settings.MaxUnits(); ++k) {
            if (!TrainNewUnit(run)) return Ended(RunEnding::Stopped);
            const double error = FinishUnit(run);
            if (!(error >= settings.DesiredError())) break;  // below the goal, or NaN
        }
    } catch (...) {
        // A NaN network meets the singular-matrix exception at its next solve: the network stays as it is.
        return FailureOutcome(run);
    }
    return Ended(RunEnding::Normal);
}

}  // namespace engine
