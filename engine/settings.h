// What a run reads of its settings, and what it reports.
//
// The settings are read through an interface at each use and never copied: the window lets a user change the
// number of iterations, the desired error and the number of trials while a run goes on, and the change takes
// effect at the run's next test. CFixedSettings is the plain value for callers whose settings stay put.
//
// The progress sink hears of everything a user would see change, in the order it happens. Every member has an
// empty default, so a sink overrides only what it shows. Calls come on the run's thread.
#pragma once

#include "engine/curve.h"
#include "engine/defaults.h"
#include "engine/network.h"

namespace engine {

class CRunSettings {
public:
    virtual ~CRunSettings() = default;
    virtual Algorithm GetAlgorithm() const = 0;
    virtual UINT Iterations() const = 0;       // per trial, or per unit of Error Correction
    virtual double DesiredError() const = 0;   // a trial, or the growth, ends below it
    virtual UINT Trials() const = 0;           // fixed-size algorithms only
    virtual UINT MaxUnits() const = 0;         // Error Correction: units to add
    virtual double LearningConstant() const = 0;
    virtual double Momentum() const = 0;
    virtual bool LoadFromFile() const = 0;     // trials go on from the network as it stands, no new draw
    virtual bool SaveResults() const = 0;      // result file and blocks through the sink
    // The damped methods count a try whose error is not finite, or whose damped matrix is singular, as a failed
    // try (the damping rises), and an iteration whose tries all fail ends where it began. Off, the window's
    // rules hold: a NaN error is a success, a singular matrix ends the run, and the last failed try stays.
    virtual bool NonFiniteTriesFail() const { return false; }
    // The curves the sink gets (curve.h): every error, or as many as a plot can show. Bounded unless asked.
    virtual bool WholeCurves() const { return false; }
};

struct CFixedSettings : CRunSettings {
    Algorithm algorithm = kSecondOrder;
    UINT iterations = kDefaultIterations;
    double desiredError = kDefaultDesiredError;
    UINT trials = kDefaultTrials;
    UINT maxUnits = kDefaultMaxUnits;
    double learningConstant = kDefaultLearningConstant;
    double momentum = kDefaultMomentum;
    bool loadFromFile = false;
    bool saveResults = false;
    bool nonFiniteTriesFail = false;
    bool wholeCurves = true;  // a caller of fixed settings hands the curves on whole

    Algorithm GetAlgorithm() const override { return algorithm; }
    UINT Iterations() const override { return iterations; }
    double DesiredError() const override { return desiredError; }
    UINT Trials() const override { return trials; }
    UINT MaxUnits() const override { return maxUnits; }
    double LearningConstant() const override { return learningConstant; }
    double Momentum() const override { return momentum; }
    bool LoadFromFile() const override { return loadFromFile; }
    bool SaveResults() const override { return saveResults; }
    bool NonFiniteTriesFail() const override { return nonFiniteTriesFail; }
    bool WholeCurves() const override { return wholeCurves; }
};

class CProgressSink {
public:
    virtual ~CProgressSink() = default;
    // Before the first trial or unit, when saving: false when the result file can't be created, and the run
    // then ends as failed.
    virtual bool CreateResultFile() { return true; }
    // A trial or unit begins: the error of its network before the first iteration.
    virtual void TrialStarted(double /*error*/) {}
    // After each iteration: its number (from 1) and the error after it.
    virtual void IterationDone(UINT /*iteration*/, double /*error*/) {}
    // Error Correction: the network has grown to `units`.
    virtual void UnitAdded(UINT /*units*/) {}
    // A trial or unit has ended: its seconds, and the run's average time per trial (fixed size) or total time
    // (Error Correction).
    virtual void TimesDone(double /*seconds*/, double /*runSeconds*/) {}
    // The trial's or unit's error series: index 0 before the first iteration, then one per iteration.
    virtual void IterationCurve(const CErrorCurve& /*errors*/) {}
    // The network has ended a trial or unit: what is drawn of it (the decision regions) can be drawn anew.
    virtual void NetworkDone() {}
    // The average final error over the trials so far (fixed size), or the grown network's error.
    virtual void TotalError(double /*error*/) {}
    // One final error per finished trial or unit; multiplier: the summary axis's tens (count / 10 + 1).
    virtual void SummaryCurve(const CErrorCurve& /*finalErrors*/, UINT /*multiplier*/) {}
    // When saving: the block of a finished trial or unit.
    virtual void ResultBlock(UINT /*units*/, UINT /*iterations*/, double /*error*/) {}
};

}  // namespace engine
