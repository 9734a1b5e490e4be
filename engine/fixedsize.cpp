// The loop of trials of the four algorithms with a fixed number of units, and their two kinds of iteration.
#include "engine/runframe.h"

namespace engine {
namespace {

// One algorithm's iteration, as the loop of trials drives it.
class CTrialMethod {
public:
    virtual ~CTrialMethod() = default;
    // Called after PackParameters, before the initial error.
    virtual void BeginTrial(CRunState& run) = 0;
    // One iteration; returns the error after it.
    virtual double Iterate(CRunState& run, double previousError) = 0;
    // Releases what the trial holds (a stop or failure ends a trial here as well).
    virtual void EndTrial() {}
};

class CFirstOrderMethod : public CTrialMethod {
public:
    explicit CFirstOrderMethod(bool improved) : m_improved(improved) {}

    // Every trial starts without momentum.
    void BeginTrial(CRunState& run) override {
        const CStepArrays s = run.trainee.Step();
        for (UINT i = 0; i < s.nParams; ++i) s.pDelta[i] = 0.0;
        m_gradientReady = false;
    }

    double Iterate(CRunState& run, double) override {
        CTrainee& trainee = run.trainee;
        if (!m_gradientReady) trainee.Accumulate(m_improved, false);
        // L and M are read as the step uses them.
        ApplyFirstOrderStep(trainee.Step(), run.settings.LearningConstant(), run.settings.Momentum());
        trainee.UnpackParameters();
        // The error of the new parameters and the next iteration's gradient come from the same outputs: one
        // pass gives both, and the network does not change between here and the next iteration.
        const double error = trainee.AccumulateGradientAndError(m_improved);
        m_gradientReady = true;
        return error;
    }

private:
    bool m_improved;
    bool m_gradientReady = false;
};

class CSecondOrderMethod : public CTrialMethod {
public:
    explicit CSecondOrderMethod(bool improved) { m_form.improved = improved; }

    void BeginTrial(CRunState& run) override {
        m_form.nonFiniteFails = run.settings.NonFiniteTriesFail();
        m_damping = kInitialDamping;
        CheckQuasiHessianFits(run.trainee.Step().nParams);
    }

    double Iterate(CRunState& run, double previousError) override {
        const CDampedStep step = DampedIteration(run.trainee, m_form, previousError, m_damping, run.cancel);
        m_damping = step.damping;  // carried to the next iteration of the trial
        return step.error;
    }

private:
    CDampedForm m_form;
    double m_damping = kInitialDamping;
};

std::unique_ptr<CTrialMethod> MethodOf(Algorithm algorithm) {
    const bool improved = IsImprovedAlgorithm(algorithm);
    if (algorithm == kFirstOrder || algorithm == kImprovedFirstOrder)
        return std::make_unique<CFirstOrderMethod>(improved);
    return std::make_unique<CSecondOrderMethod>(improved);
}

// Draws or keeps the network by the trial rule, packs it and records its initial error as element 0.
void StartTrial(CRunState& run, CTrialMethod& method) {
    run.iteration = 0;
    if (!run.settings.LoadFromFile()) run.trainee.InitializeNetwork();
    run.iterationErrors.Clear();
    run.trainee.PackParameters();
    method.BeginTrial(run);
    run.iterationErrors.Append(run.trainee.ComputeError());
    run.sink.TrialStarted(run.iterationErrors.Last());
}

// Iterates until the error falls below the desired one (or is NaN) or the iterations run out. false: a stop
// was asked for.
bool IterateTrial(CRunState& run, CTrialMethod& method) {
    for (UINT iteration = 1; iteration <= run.settings.Iterations(); ++iteration) {
        if (run.cancel.StopRequested()) return false;
        run.iteration = iteration;
        const double error = method.Iterate(run, run.iterationErrors.Last());
        run.iterationErrors.Append(error);
        run.sink.IterationDone(iteration, error);
        if (!(error >= run.settings.DesiredError())) break;
    }
    return true;
}

// Times, curves, summary and result block of a finished trial.
void FinishTrial(CRunState& run, CTrialMethod& method, UINT trial, const CRunClock& clock) {
    const double seconds = clock.Seconds();
    run.totalTime += seconds;
    run.sink.TimesDone(seconds, run.totalTime / (trial + 1.0));
    run.sink.IterationCurve(run.iterationErrors);
    run.sink.NetworkDone();
    method.EndTrial();

    const UINT last = static_cast<UINT>(run.iterationErrors.Count() - 1);
    const double error = run.iterationErrors.Last();
    run.finalErrors.Append(error);
    run.errorSum += error;
    run.sink.TotalError(run.errorSum / (trial + 1.0));
    run.sink.SummaryCurve(run.finalErrors, trial / 10 + 1);
    if (run.settings.SaveResults()) run.sink.ResultBlock(run.trainee.Units(), last, error);
}

}  // namespace

CRunOutcome RunFixedSize(CTrainee& trainee, const CRunSettings& settings, CProgressSink& sink,
                         const CCancelToken& cancel) {
    CRunState run(trainee, settings, sink, cancel);
    const std::unique_ptr<CTrialMethod> method = MethodOf(settings.GetAlgorithm());
    try {
        const CRunOutcome begun = BeginRun(run);
        if (begun.ending != RunEnding::Normal) return begun;
        // The number of trials is read at every test: a change made during the run takes effect at once.
        for (UINT trial = 0; trial < settings.Trials(); ++trial) {
            StartTrial(run, *method);
            const CRunClock clock;
            if (!IterateTrial(run, *method)) {
                method->EndTrial();
                return Ended(RunEnding::Stopped);
            }
            FinishTrial(run, *method, trial, clock);
        }
    } catch (...) {
        // A singular quasi-Hessian (a network gone NaN), memory that isn't there, or an abandon: the network
        // stays as the last try made it.
        method->EndTrial();
        return FailureOutcome(run);
    }
    return Ended(RunEnding::Normal);
}

}  // namespace engine
