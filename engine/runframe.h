// What the two runs of runs.h share: a run's own state, its clock, its start and the message of a failure.
// Internal to the engine.
#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "engine/runs.h"

namespace engine {

// What a run holds of its own from its start to its end.
struct CRunState {
    CRunState(CTrainee& t, const CRunSettings& s, CProgressSink& p, const CCancelToken& c)
        : trainee(t), settings(s), sink(p), cancel(c),
          iterationErrors(s.WholeCurves() ? CurveKeeping::Whole : CurveKeeping::Logarithmic),
          finalErrors(s.WholeCurves() ? CurveKeeping::Whole : CurveKeeping::Linear) {}
    CTrainee& trainee;
    const CRunSettings& settings;
    CProgressSink& sink;
    const CCancelToken& cancel;
    CErrorCurve iterationErrors;  // this trial's or unit's: index 0 before the first iteration
    CErrorCurve finalErrors;      // one per finished trial or unit
    double totalTime = 0.0;               // sum of the trials' or units' times
    double errorSum = 0.0;                // sum of the trials' final errors
    UINT iteration = 0;                   // the iteration under way (0 before the first), for a failure message
};

// Milliseconds since a start, in seconds, as the read-outs show them.
class CRunClock {
public:
    CRunClock() : m_start(std::chrono::steady_clock::now()) {}
    double Seconds() const;

private:
    std::chrono::steady_clock::time_point m_start;
};

// Refuses a data set without patterns or inputs and creates the result file when one is asked for. Returns
// the failure, or an outcome of RunEnding::Normal when the run may go on.
CRunOutcome BeginRun(CRunState& run);

// The outcome for the exception that ended a run; to be called inside the catch block.
CRunOutcome FailureOutcome(const CRunState& run);

inline CRunOutcome Ended(RunEnding ending) { return CRunOutcome{ending, std::string()}; }

}  // namespace engine
