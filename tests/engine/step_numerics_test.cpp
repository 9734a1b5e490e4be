// The two iteration steps on crafted arrays: the first-order update, and the damped try loop driven by a
// scripted trainee, so that each try's error and damping value are known, by the window's rules and with
// non-finite tries failing.
#include <gtest/gtest.h>

#include <cmath>
#include <deque>
#include <limits>
#include <vector>

#include "engine/matrix.h"
#include "engine/runs.h"

namespace {

using engine::CDampedStep;
using engine::UINT;

TEST(ApplyFirstOrderStep, FollowsTheFormulaWithMomentumAndLearningConstant) {
    struct Case {
        const char* name;
        double L, M, delta0;
        int steps;
        std::vector<double> params, delta;
    };
    const Case cases[] = {
        {"momentum 1 never moves from rest", 0.3, 1.0, 0.0, 5, {0.5, -1.0, 2.0}, {0.0, 0.0, 0.0}},
        // A stale change has no weight without momentum.
        {"momentum 0 is plain gradient descent", 0.1, 0.0, 7.0, 1, {0.3, -0.6, 1.975}, {-0.2, 0.4, -0.025}},
        // From rest only (1 - M) L g, then plus M times the first change.
        {"momentum 0.5, one step", 0.1, 0.5, 0.0, 1, {0.4, -0.8, 1.9875}, {-0.1, 0.2, -0.0125}},
        {"momentum 0.5, two steps", 0.1, 0.5, 0.0, 2, {0.25, -0.5, 1.96875}, {-0.15, 0.3, -0.01875}},
    };
    for (const Case& c : cases) {
        std::vector<double> params{0.5, -1.0, 2.0}, gradient{2.0, -4.0, 0.25}, delta{c.delta0, 0.0, 0.0};
        const engine::CStepArrays step{params.data(), delta.data(), gradient.data(), nullptr, 3};
        for (int k = 0; k < c.steps; ++k) engine::ApplyFirstOrderStep(step, c.L, c.M);
        for (int i = 0; i < 3; ++i) {
            EXPECT_NEAR(params[i], c.params[i], 1e-15) << c.name << ": parameter " << i;
            EXPECT_NEAR(delta[i], c.delta[i], 1e-15) << c.name << ": delta must hold the change just made, " << i;
        }
    }
}

// Two parameters: gradient g and a diagonal quasi-Hessian h. The solve records the diagonal and the damping
// value of each try and then writes over the quasi-Hessian's diagonal, as the real factors do; each error
// measure returns the next scripted error.
class CScriptedTrainee : public engine::CTrainee {
public:
    CScriptedTrainee() : params{1.0, 2.0}, delta(2), gradient(2), hessian(4) {}
    UINT Patterns() const override { return 1; }
    UINT Inputs() const override { return 1; }
    UINT Units() const override { return 0; }
    engine::CStepArrays Step() override { return {params.data(), delta.data(), gradient.data(), hessian.data(), 2}; }
    void InitializeNetwork() override {}
    void PackParameters() override {}
    void UnpackParameters() override { triedParams.push_back(params[0]); }
    double ComputeError() override { return NextError(false); }
    double ComputeOutputs() override { return NextError(true); }
    void Accumulate(bool, bool) override {
        ++accumulations;
        gradient = {kG0, kG1};
        hessian = {kH0, 0.0, 0.0, kH1};
    }
    double AccumulateGradientAndError(bool) override { return 0.0; }
    void SolveHessian(const double* diagonal, double damping, double* x, engine::CNextTry* next) override {
        diagonals.push_back({diagonal[0], diagonal[1]});
        dampings.push_back(damping);
        offered.push_back(next ? next->damping : -1.0);
        if (singularSolves > 0 && singularSolves--) throw engine::CSingularMatrixException();
        x[0] = gradient[0] / (diagonal[0] + damping);
        x[1] = gradient[1] / (diagonal[1] + damping);
        if (solvesNext && next) {
            next->x[0] = gradient[0] / (diagonal[0] + next->damping);
            next->x[1] = gradient[1] / (diagonal[1] + next->damping);
            next->solved = true;
        }
        hessian[0] = hessian[3] = std::numeric_limits<double>::quiet_NaN();
    }
    void ResetNetwork() override {}
    void AddUnitAtWorstPattern() override {}

    static constexpr double kG0 = 3.0, kG1 = 8.0, kH0 = 2.0, kH1 = 4.0;
    std::deque<double> errors;
    std::vector<double> params, delta, gradient, hessian, triedParams, dampings;
    std::vector<double> offered;  // the damping of the next try offered with each solve; -1: none
    bool solvesNext = false;      // solves the offered next try beside each one
    std::vector<std::vector<double>> diagonals;
    int accumulations = 0, outputMeasures = 0;
    int singularSolves = 0;  // the first ones find the damped matrix singular

private:
    double NextError(bool outputs) {
        outputMeasures += outputs;
        const double error = errors.front();
        errors.pop_front();
        return error;
    }
};

CDampedStep Iterate(CScriptedTrainee& t, std::deque<double> errors, double previousError, double damping,
                    const engine::CCancelToken& cancel = engine::CCancelToken::Never(),
                    const engine::CDampedForm& form = engine::CDampedForm{}) {
    t.errors = std::move(errors);
    return engine::DampedIteration(t, form, previousError, damping, cancel);
}

}  // namespace

TEST(DampedIteration, TriesAndDampingFollowTheRules) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    struct Case {
        const char* name;
        std::deque<double> errors;
        double previous, damping;
        int tries;
        double nextDamping;
    };
    const Case cases[] = {
        {"success at the first try divides by ten", {0.4}, 0.5, 0.01, 1, 0.001},
        {"success after two failures", {0.9, 0.8, 0.3}, 0.5, 0.01, 3, 0.1},
        {"six failures end at 10000", {0.6, 0.7, 0.8, 0.9, 1.0, 1.1}, 0.5, 0.01, 6, 10000.0},
        {"an equal error is a failure", {0.5, 0.4}, 0.5, 0.01, 2, 0.01},
        {"a NaN error is a success", {nan}, 0.5, 0.01, 1, 0.001},
        {"an infinite error is a failure", {INFINITY, 0.1}, 0.5, 0.01, 2, 0.01},
        {"the ceiling stops the rise", {1, 1, 1, 1, 1, 1}, 0.5, 1e20, 6, 1e20},
        {"the floor stops the fall", {0.1}, 0.5, 1e-20, 1, 1e-20},
        {"the step crossing the ceiling is taken", {1, 1, 1, 1, 1, 1}, 0.5, 5e19, 6, 5e20},
        {"the step crossing the floor is taken", {0.1}, 0.5, 2e-20, 1, 2e-21},
    };
    for (const Case& c : cases) {
        CScriptedTrainee t;
        const CDampedStep r = Iterate(t, c.errors, c.previous, c.damping);
        EXPECT_EQ(r.tries, c.tries) << c.name;
        EXPECT_NEAR(r.damping, c.nextDamping, c.nextDamping * 1e-12) << c.name;
        const double last = c.errors[c.tries - 1];
        EXPECT_TRUE(r.error == last || (std::isnan(r.error) && std::isnan(last))) << c.name << ": the last try's error";
        ASSERT_EQ(t.dampings.size(), size_t(c.tries)) << c.name;
        for (size_t k = 0, rising = 1; k < t.dampings.size(); ++k) {
            EXPECT_NEAR(t.dampings[k], c.damping * rising, 1e-9 * c.damping * rising + 1e-15)
                << c.name << ": damping of try " << k;
            if (c.damping * rising < 1e20) rising *= 10;
        }
    }
}

TEST(DampedIteration, EveryTryStepsFromTheSavedPointAndNothingIsRolledBack) {
    CScriptedTrainee t;
    Iterate(t, {0.6, 0.7, 0.8, 0.9, 1.0, 1.1}, 0.5, 0.01);
    EXPECT_EQ(t.accumulations, 1) << "derivatives are accumulated once per iteration, not per try";
    EXPECT_EQ(t.delta, (std::vector<double>{1.0, 2.0})) << "delta must hold the parameters at the iteration's start";
    for (const std::vector<double>& diagonal : t.diagonals)
        EXPECT_EQ(diagonal, (std::vector<double>{CScriptedTrainee::kH0, CScriptedTrainee::kH1}))
            << "every try must see the accumulation's diagonal, not what an earlier try's factors left";
    ASSERT_EQ(t.triedParams.size(), 6u);
    for (size_t k = 0; k < 6; ++k)
        EXPECT_DOUBLE_EQ(t.triedParams[k], 1.0 - 3.0 / (2.0 + 0.01 * std::pow(10.0, double(k)))) << "try " << k;
    // The sixth try (at 1000) stays; each parameter moves against its own element of the solution.
    EXPECT_DOUBLE_EQ(t.params[0], 1.0 - 3.0 / 1002.0);
    EXPECT_DOUBLE_EQ(t.params[1], 2.0 - 8.0 / 1004.0);
    EXPECT_EQ(t.outputMeasures, 0) << "the second-order form must judge by ComputeError";
    CScriptedTrainee growth;
    engine::DampedIteration(growth, engine::CDampedForm{false, true}, 0.5, 0.01, engine::CCancelToken::Never());
    EXPECT_EQ(growth.outputMeasures, 1) << "Error Correction must judge by ComputeOutputs";
}

TEST(DampedIteration, TheNextTryIsOfferedAtItsDampingAndItsStepTakenWhereSolvedBeside) {
    const std::deque<double> sixFailures{0.6, 0.7, 0.8, 0.9, 1.0, 1.1};
    CScriptedTrainee plain;
    Iterate(plain, sixFailures, 0.5, 0.01);
    EXPECT_EQ(plain.offered, (std::vector<double>{0.1, 1.0, 10.0, 100.0, 1000.0, -1.0}))
        << "each solve offers the try after a failure, ten times the damping; the sixth has none after it";
    CScriptedTrainee atCeiling;
    Iterate(atCeiling, sixFailures, 0.5, 1e20);
    EXPECT_EQ(atCeiling.offered[0], 1e20) << "at the ceiling the next try's damping stays";

    CScriptedTrainee beside;
    beside.solvesNext = true;
    Iterate(beside, sixFailures, 0.5, 0.01);
    EXPECT_EQ(beside.dampings, (std::vector<double>{0.01, 1.0, 100.0}))
        << "a try whose step was solved beside the one before must not be solved again";
    EXPECT_EQ(beside.triedParams, plain.triedParams) << "the steps solved beside are the tries' own";
    EXPECT_EQ(beside.params, plain.params);

    // A solve that throws leaves the next try unsolved: the next try solves its own.
    CScriptedTrainee singular;
    singular.solvesNext = true;
    singular.singularSolves = 1;
    const CDampedStep r = Iterate(singular, {0.3}, 0.5, 0.01, engine::CCancelToken::Never(), {false, false, true});
    EXPECT_EQ(r.tries, 2);
    EXPECT_EQ(singular.dampings, (std::vector<double>{0.01, 0.1}));
}

TEST(DampedIteration, AbandonedTokenThrowsBeforeAnyTry) {
    engine::CCancelToken token;
    token.Abandon();
    CScriptedTrainee t;
    EXPECT_THROW(Iterate(t, {0.1}, 0.5, 0.01, token), engine::CCancelled);
    EXPECT_TRUE(t.triedParams.empty());
}

TEST(DampedIteration, NonFiniteTriesFailWhenTheFormSaysSo) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const engine::CDampedForm failing{false, false, true};
    struct Case {
        const char* name;
        std::deque<double> errors;
        int singularSolves, tries;
        double error, damping;
    };
    const Case cases[] = {
        {"a NaN error fails and the damping rises", {nan, 0.3}, 0, 2, 0.3, 0.01},
        {"a singular damped matrix fails the try", {0.3}, 2, 3, 0.3, 0.1},
        // The last scripted error is the measure taken once the network is back where the iteration began.
        {"no finite try: back to the start", {nan, INFINITY, nan, nan, nan, nan, 0.5}, 0, 6, 0.5, 10000.0},
        {"only singular tries: back to the start", {0.5}, 6, 6, 0.5, 10000.0},
        {"six finite failures: back to the start", {0.6, 0.7, 0.8, 0.9, 1.0, 1.1, 0.5}, 0, 6, 0.5, 10000.0},
    };
    for (const Case& c : cases) {
        CScriptedTrainee t;
        t.singularSolves = c.singularSolves;
        const CDampedStep r = Iterate(t, c.errors, 0.5, 0.01, engine::CCancelToken::Never(), failing);
        EXPECT_EQ(r.tries, c.tries) << c.name;
        EXPECT_EQ(r.error, c.error) << c.name;
        EXPECT_NEAR(r.damping, c.damping, c.damping * 1e-12) << c.name;
        EXPECT_TRUE(t.errors.empty()) << c.name << ": every scripted error measured";
        if (c.errors.size() == size_t(c.tries - c.singularSolves)) continue;  // a try lowered the error
        EXPECT_EQ(t.params, (std::vector<double>{1.0, 2.0})) << c.name << ": the network must be back at the start";
    }
    CScriptedTrainee windowRules;
    windowRules.singularSolves = 1;
    EXPECT_THROW(Iterate(windowRules, {0.1}, 0.5, 0.01), engine::CSingularMatrixException)
        << "by the window's rules a singular matrix ends the run";
}
