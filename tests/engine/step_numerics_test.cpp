// The two iteration steps on crafted workspaces without a window: the first-order update, and the damped try
// loop driven by scripted operations, so that each try's error and damping value are known.
#include <gtest/gtest.h>

#include <cmath>
#include <deque>
#include <limits>
#include <vector>

#include "training/training.h"
#include "workspace/blocks.h"

namespace {

using training::DampedIteration;
using training::DampedStepOps;
using training::DampedStepResult;

// Gives the workspace a parameter vector of n elements with its scratch arrays.
void AllocateParams(CVantrelDlg& dlg, UINT n) {
    dlg.m_nParams = n;
    ReplaceBlocks(dlg, {Block::Params, Block::Delta, Block::Gradient, Block::Hessian, Block::HessianInv},
                  CountsOf(dlg));
}

// ---- first-order step -------------------------------------------------------------------------------------

class FirstOrderStep : public ::testing::Test {
protected:
    void SetUp() override {
        AllocateParams(dlg, 3);
        const double params[] = {0.5, -1.0, 2.0};
        const double gradient[] = {2.0, -4.0, 0.25};
        for (int i = 0; i < 3; ++i) {
            dlg.m_pParams[i] = params[i];
            dlg.m_pGradient[i] = gradient[i];
        }
    }
    CVantrelDlg dlg;
};

TEST_F(FirstOrderStep, MomentumOneNeverMovesParametersFromRest) {
    dlg.m_dMomentum = 1.0;
    dlg.m_dLearningConstant = 0.3;
    for (int step = 0; step < 5; ++step) training::ApplyFirstOrderStep(dlg);
    EXPECT_EQ(dlg.m_pParams[0], 0.5);
    EXPECT_EQ(dlg.m_pParams[1], -1.0);
    EXPECT_EQ(dlg.m_pParams[2], 2.0);
    EXPECT_EQ(dlg.m_pDelta[1], 0.0) << "the gradient leaked into the change despite momentum 1";
}

TEST_F(FirstOrderStep, MomentumZeroIsPlainGradientDescentAgainstTheGradient) {
    dlg.m_dMomentum = 0.0;
    dlg.m_dLearningConstant = 0.1;
    dlg.m_pDelta[0] = 7.0;  // a stale change must have no weight without momentum
    training::ApplyFirstOrderStep(dlg);
    EXPECT_DOUBLE_EQ(dlg.m_pParams[0], 0.5 - 0.2);
    EXPECT_DOUBLE_EQ(dlg.m_pParams[1], -1.0 + 0.4);
    EXPECT_DOUBLE_EQ(dlg.m_pParams[2], 2.0 - 0.025);
    EXPECT_DOUBLE_EQ(dlg.m_pDelta[1], 0.4) << "delta must hold the change just made";
}

TEST_F(FirstOrderStep, GradientIsScaledByOneMinusMomentumAndMomentumCarriesTheLastChange) {
    dlg.m_dMomentum = 0.5;
    dlg.m_dLearningConstant = 0.1;
    training::ApplyFirstOrderStep(dlg);  // from rest: only (1 - M) * L * g
    EXPECT_DOUBLE_EQ(dlg.m_pParams[0], 0.5 - 0.5 * 2.0 * 0.1);
    EXPECT_DOUBLE_EQ(dlg.m_pDelta[0], -0.1);
    training::ApplyFirstOrderStep(dlg);  // now plus M times the change of the first step
    EXPECT_DOUBLE_EQ(dlg.m_pParams[0], 0.4 - 0.1 + 0.5 * -0.1);
    EXPECT_DOUBLE_EQ(dlg.m_pDelta[0], -0.15);
}

// ---- damped try loop --------------------------------------------------------------------------------------
//
// One parameter: gradient g and quasi-Hessian h. The fake solve records the damped diagonal of each try and
// then wrecks m_pHessian, as the real one does; the fake error returns the next scripted error.

struct Script {
    double gradient = 3.0;
    double hessian = 2.0;
    std::deque<double> errors;
    std::vector<double> dampedDiagonals;
    std::vector<double> triedParams;
    int accumulations = 0;
};
Script g_script;

const DampedStepOps kScriptedOps{
    [](CVantrelDlg& dlg) {
        ++g_script.accumulations;
        dlg.m_pGradient[0] = g_script.gradient;
        dlg.m_pHessian[0] = g_script.hessian;
    },
    [](CVantrelDlg& dlg, double* x) {
        g_script.dampedDiagonals.push_back(dlg.m_pHessian[0]);
        x[0] = dlg.m_pGradient[0] / dlg.m_pHessian[0];
        dlg.m_pHessian[0] = std::numeric_limits<double>::quiet_NaN();
    },
    [](CVantrelDlg& dlg) {
        g_script.triedParams.push_back(dlg.m_pParams[0]);
        const double error = g_script.errors.front();
        g_script.errors.pop_front();
        return error;
    }};

class DampedTries : public ::testing::Test {
protected:
    void SetUp() override {
        g_script = Script{};
        AllocateParams(dlg, 1);
        dlg.m_pParams[0] = 1.0;
        saved.assign(1, 0.0);
    }
    DampedStepResult Iterate(std::deque<double> errors, double previousError, double damping) {
        g_script.errors = std::move(errors);
        return DampedIteration(dlg, kScriptedOps, saved.data(), previousError, damping);
    }
    // Damping value that try k (from 0) added to the diagonal.
    double DampingOfTry(size_t k) const { return g_script.dampedDiagonals.at(k) - g_script.hessian; }

    CVantrelDlg dlg;
    std::vector<double> saved;
};

TEST_F(DampedTries, SuccessAtFirstTryDividesDampingByTen) {
    const DampedStepResult r = Iterate({0.4}, 0.5, 0.01);
    EXPECT_EQ(r.tries, 1);
    EXPECT_DOUBLE_EQ(r.damping, 0.001);
    EXPECT_EQ(r.error, 0.4);
    EXPECT_NEAR(DampingOfTry(0), 0.01, 0.01 * 1e-9);
    EXPECT_DOUBLE_EQ(dlg.m_pParams[0], 1.0 - 3.0 / 2.01) << "step must be params - inverse * gradient";
    EXPECT_EQ(dlg.m_pDelta[0], 1.0) << "m_pDelta must hold the parameters at the start of the iteration";
}

TEST_F(DampedTries, SixFailuresLeaveTenThousandAndTheSixthTryInPlace) {
    const DampedStepResult r = Iterate({0.6, 0.7, 0.8, 0.9, 1.0, 1.1}, 0.5, 0.01);
    EXPECT_EQ(r.tries, 6);
    EXPECT_DOUBLE_EQ(r.damping, 10000.0);
    EXPECT_EQ(r.error, 1.1) << "element i must be the sixth try's error";
    ASSERT_EQ(g_script.dampedDiagonals.size(), 6u);
    EXPECT_NEAR(DampingOfTry(5), 1000.0, 1000.0 * 1e-9) << "the sixth try must be made at 1000";
    // Every try steps from the same saved point, from the saved quasi-Hessian, and nothing is rolled back.
    for (size_t k = 0; k < 6; ++k)
        EXPECT_DOUBLE_EQ(g_script.triedParams[k], 1.0 - 3.0 / (2.0 + 0.01 * std::pow(10.0, double(k)))) << k;
    EXPECT_DOUBLE_EQ(dlg.m_pParams[0], 1.0 - 3.0 / 1002.0);
    EXPECT_EQ(g_script.accumulations, 1) << "derivatives are accumulated once per iteration, not per try";
}

TEST_F(DampedTries, SuccessAfterTwoFailuresLeavesPointOne) {
    const DampedStepResult r = Iterate({0.9, 0.8, 0.3}, 0.5, 0.01);
    EXPECT_EQ(r.tries, 3);
    EXPECT_NEAR(DampingOfTry(1), 0.1, 0.1 * 1e-9);
    EXPECT_NEAR(DampingOfTry(2), 1.0, 1.0 * 1e-9);
    EXPECT_DOUBLE_EQ(r.damping, 0.1);
}

TEST_F(DampedTries, AnUnchangedErrorFailsAndANaNSucceeds) {
    const DampedStepResult equal = Iterate({0.5, 0.4}, 0.5, 0.01);
    EXPECT_EQ(equal.tries, 2) << "an error equal to the previous one must count as a failure";
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const DampedStepResult notANumber = Iterate({nan}, 0.5, 0.01);
    EXPECT_EQ(notANumber.tries, 1) << "a NaN error must end the tries as a success";
    EXPECT_TRUE(std::isnan(notANumber.error));
    const DampedStepResult infinite = Iterate({INFINITY, 0.1}, 0.5, 0.01);
    EXPECT_EQ(infinite.tries, 2) << "an infinite error must fail";
}

TEST_F(DampedTries, DampingStopsMovingBeyondItsBoundsButTheCrossingStepIsTaken) {
    EXPECT_EQ(Iterate({1, 1, 1, 1, 1, 1}, 0.5, 1e20).damping, 1e20);
    EXPECT_EQ(Iterate({0.1}, 0.5, 1e-20).damping, 1e-20);
    EXPECT_DOUBLE_EQ(Iterate({1, 1, 1, 1, 1, 1}, 0.5, 5e19).damping, 5e20);
    EXPECT_DOUBLE_EQ(Iterate({0.1}, 0.5, 2e-20).damping, 2e-21);
}

TEST(DampedStep, EachParameterMovesAgainstItsOwnElementOfTheSolution) {
    CVantrelDlg dlg;
    AllocateParams(dlg, 2);
    dlg.m_pParams[0] = 1.0;
    dlg.m_pParams[1] = 2.0;
    std::vector<double> saved(4);
    const DampedStepOps ops{[](CVantrelDlg&) {},
                            [](CVantrelDlg&, double* x) {
                                x[0] = 5.0;
                                x[1] = 70.0;
                            },
                            [](CVantrelDlg&) { return 0.0; }};
    DampedIteration(dlg, ops, saved.data(), 1.0, 0.01);
    EXPECT_EQ(dlg.m_pParams[0], 1.0 - 5.0);
    EXPECT_EQ(dlg.m_pParams[1], 2.0 - 70.0);
}

}  // namespace
