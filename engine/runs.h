// The runs of the five algorithms and their iteration steps, on a trainee (trainee.h), reading settings and
// reporting to a progress sink (settings.h), stopped by a cancel token (cancel.h).
//
// A run never throws: whatever ends it is told in its outcome. The trainee's network stays as the run left
// it, also after a stop or a failure; a run abandoned through its token reports nothing more once abandoned.
#pragma once

#include <memory>
#include <new>
#include <string>

#include "engine/cancel.h"
#include "engine/settings.h"
#include "engine/trainee.h"

namespace engine {

enum class RunEnding {
    Normal,     // all trials or units done, or the goal reached
    Stopped,    // the token asked for a stop; the trials or units that had ended are kept
    Failed,     // message says why (no patterns, no result file, memory, a singular matrix)
    Abandoned,  // the token was abandoned: the iteration under way was dropped
};

// What made a run fail.
enum class RunFailure {
    None,
    NoData,          // no patterns or no inputs
    ResultFile,      // the result file could not be created
    Memory,          // a block that would not fit
    SingularMatrix,  // the damped quasi-Hessian of a network gone non-finite
    Other,
};

struct CRunOutcome {
    RunEnding ending = RunEnding::Normal;
    std::string message;                    // Failed only
    RunFailure failure = RunFailure::None;  // Failed only
    UINT iteration = 0;                     // Failed only: the iteration under way, 0 before the first
};

// The four algorithms of a fixed number of units: trials, each from a new draw (or, loading from a file, from
// the network as it stands), iterations until the error falls below the desired one or they run out.
CRunOutcome RunFixedSize(CTrainee& trainee, const CRunSettings& settings, CProgressSink& sink,
                         const CCancelToken& cancel);

// The Error Correction Algorithm: from no units (online: from the trained network, whose outputs decide where
// the first new unit goes) a unit at a time at the worst pattern, each trained for all iterations, until
// MaxUnits are added or the error falls below the desired one.
CRunOutcome RunErrorCorrection(CTrainee& trainee, const CRunSettings& settings, CProgressSink& sink,
                               const CCancelToken& cancel, bool online);

// ---- the steps ------------------------------------------------------------------------------------------------

// The first-order update: params[i] += -(1 - M) * L * gradient[i] + M * delta[i], and delta[i] becomes the
// change just made.
void ApplyFirstOrderStep(const CStepArrays& step, double learningConstant, double momentum);

// The damping of the second-order step and of the Error Correction Algorithm.
constexpr double kInitialDamping = 0.01;
constexpr double kDampingCeiling = 1e+20;  // a failed try raises the value only while it is below this
constexpr double kDampingFloor = 1e-20;    // a successful try lowers it only while it is above this
constexpr int kMaxTries = 6;

// How a damped iteration accumulates and judges its tries.
struct CDampedForm {
    bool improved = false;        // the Jacobian carries the input weights
    bool keepOutputs = false;     // tries judged by ComputeOutputs (Error Correction), else ComputeError
    bool nonFiniteFails = false;  // CRunSettings::NonFiniteTriesFail
};

struct CDampedStep {
    double error = 0.0;    // the error of the last try: the iteration's error
    double damping = 0.0;  // the damping value that the next iteration starts from
    int tries = 0;         // tries made, 1 to kMaxTries
};

// One iteration of the damped Gauss-Newton step: accumulates once, saves the parameters (in the step's delta)
// and the quasi-Hessian's diagonal, then tries up to kMaxTries damping values, each solved from the same
// quasi-Hessian, until a try's error is not greater than or equal to previousError (a NaN counts as smaller).
// Nothing is rolled back after the last failure. With form.nonFiniteFails a try succeeds only below
// previousError, a singular damped matrix fails the try instead of throwing, and an iteration whose tries all
// fail returns the network to where it began (its error is then measured anew).
CDampedStep DampedIteration(CTrainee& trainee, const CDampedForm& form, double previousError, double damping,
                            const CCancelToken& cancel);

// Called before a damped trial or unit takes its quasi-Hessian: throws CQuasiHessianTooLarge when its n x n
// blocks would not fit, so that the message can tell it from other memory that ran out.
class CQuasiHessianTooLarge : public std::bad_alloc {};
void CheckQuasiHessianFits(UINT nParams);

}  // namespace engine
