// What a fit keeps of its run, heard on the run's thread: the curves that the estimators show, where the error
// first turned non-finite, and, given patterns held out of training, their error after each iteration (after
// each unit for Error Correction) with the network of the lowest one. A trial (the growth) ends once that
// error has not reached a new low for a number of iterations (units). Each iteration (unit) is reported to
// the calling thread when the caller asked to hear them, and its answer can stop the run.
#pragma once

#include <limits>
#include <vector>

#include "engine/buffers.h"
#include "engine/settings.h"
#include "fit_thread.h"

// A fit's settings as the run reads them. The held-out error ends a trial, or the growth, through the run's
// own test against the desired error, which the run reads at each test: once asked to end, it reads a NaN,
// which no error is greater than or equal to.
struct CFitSettings : engine::CFixedSettings {
    bool endTrial = false;  // set and cleared by the sink, on the run's thread
    double DesiredError() const override {
        return endTrial ? std::numeric_limits<double>::quiet_NaN() : desiredError;
    }
};

// Patterns held out of training.
struct CHeldOut {
    std::vector<double> inputs, targets;
    engine::UINT patterns = 0, nInputs = 0;
};

// A network's arrays, copied.
struct CNetworkCopy {
    engine::UINT units = 0;
    std::vector<double> inputWeights, outputWeights, widths, centers;
};

class CFitSink : public engine::CProgressSink {
public:
    // heldOut: null, or followed with `patience` iterations (units) without a new low before a trial (the
    // growth) ends. thread: the run's; with reporting, it hands every iteration and unit to the caller.
    CFitSink(engine::CBufferStore& store, CFitSettings& settings, const CHeldOut* heldOut,
             engine::UINT patience, CFitThread& thread, bool reporting);

    void TrialStarted(double error) override;
    void IterationDone(engine::UINT iteration, double error) override;
    void UnitAdded(engine::UINT units) override { m_units = units; }
    void TotalError(double error) override { m_unitError = error; }
    void NetworkDone() override;
    void SummaryCurve(const engine::CErrorCurve& errors, engine::UINT) override { finalErrors = errors.Errors(); }

    // Puts the network of the lowest held-out error back into the store, when one was followed.
    void KeepBest();

    std::vector<double> errors;         // the last trial's, element 0 before its first iteration; or every unit's
    std::vector<double> finalErrors;    // one per finished trial or unit
    std::vector<double> heldOutErrors;  // the last trial's, as errors; or one per unit
    double bestHeldOutError = std::numeric_limits<double>::quiet_NaN();  // NaN: none was finite
    engine::UINT iterations = 0;        // of the last trial, or of all units
    // Where the training error first was not finite: in the last trial (the trial's number from 1), or in the
    // growth (the number of units then). Iteration 0 is the error before the first iteration.
    bool turnedNonFinite = false;
    engine::UINT nonFiniteTrial = 0, nonFiniteIteration = 0;

private:
    bool Growing() const { return m_settings.algorithm == engine::kErrorCorrection; }
    double HeldOutError();
    // The bookkeeping of a new held-out error: the best network, and the end of a trial without a new low.
    void Follow(double heldOutError);
    void NoteNonFinite(double error, engine::UINT iteration);
    bool Report(bool unit, engine::UINT number, double error, double heldOutError);

    engine::CBufferStore& m_store;
    CFitSettings& m_settings;
    const CHeldOut* m_heldOut;
    engine::UINT m_patience;
    CFitThread& m_thread;
    bool m_reporting;
    engine::UINT m_trials = 0, m_units = 0;
    double m_unitError = 0.0;
    double m_runLow = std::numeric_limits<double>::infinity();  // of this trial, or of the growth
    engine::UINT m_sinceLow = 0;
    bool m_hasBest = false;  // bestHeldOutError is finite, and m_best its network
    CNetworkCopy m_best;
};
