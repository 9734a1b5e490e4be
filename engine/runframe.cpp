#include "engine/runframe.h"

#include <cstdio>

#include "engine/matrix.h"

namespace engine {

double CRunClock::Seconds() const {
    const auto elapsed = std::chrono::steady_clock::now() - m_start;
    return std::chrono::duration_cast<std::chrono::milliseconds>(elapsed).count() * 0.001;
}

CRunOutcome BeginRun(CRunState& run) {
    // The loader refuses such sets; should one come through anyway, the worst-pattern search and the center
    // copy of a new unit would read rows that don't exist, so no run starts on it.
    if (run.trainee.Patterns() == 0 || run.trainee.Inputs() == 0)
        return {RunEnding::Failed, "The data set has no patterns or no inputs: load another data set before training.",
                RunFailure::NoData};
    if (run.settings.SaveResults() && !run.sink.CreateResultFile())
        return {RunEnding::Failed, "Create Result File Failed!", RunFailure::ResultFile};
    return Ended(RunEnding::Normal);
}

namespace {

std::string Format(const char* format, unsigned value, const char* text = "") {
    char buffer[512];
    std::snprintf(buffer, sizeof buffer, format, value, text);
    return buffer;
}

}  // namespace

CRunOutcome FailureOutcome(const CRunState& run) {
    CRunOutcome outcome{RunEnding::Failed, std::string(), RunFailure::Other, run.iteration};
    try {
        throw;
    } catch (const CCancelled&) {
        outcome.ending = RunEnding::Abandoned;
        outcome.failure = RunFailure::None;
    } catch (const CQuasiHessianTooLarge&) {
        outcome.failure = RunFailure::Memory;
        outcome.message = Format("Not enough memory for the quasi-Hessian of %u parameters: training stopped.",
                                 run.trainee.Step().nParams);
    } catch (const std::bad_alloc&) {
        outcome.failure = RunFailure::Memory;
        outcome.message = Format("Not enough memory: training stopped at iteration %u.", run.iteration);
    } catch (const std::exception& failure) {
        // In practice the singular matrix of the inversion: a quasi-Hessian with a positive damping value
        // has no zero row, so a row without magnitude means that the network has turned to NaN.
        if (dynamic_cast<const CSingularMatrixException*>(&failure)) outcome.failure = RunFailure::SingularMatrix;
        outcome.message = Format("Training stopped at iteration %u: %s.\n"
                                 "The network can't be trained further from its present values; initialize it again.",
                                 run.iteration, failure.what());
    } catch (...) {
        outcome.message = Format("Training stopped at iteration %u by an unknown failure.", run.iteration);
    }
    return outcome;
}

}  // namespace engine
