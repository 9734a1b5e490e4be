// Whole runs of the four methods with a fixed number of units on the hidden main dialog: stopping tests, the
// trial's read-outs, curves and result blocks, Stop, and the ways a run fails.
#include <sys/stat.h>

#include <cmath>
#include <filesystem>
#include <functional>
#include <limits>
#include <new>

#include "files/resultfiles.h"
#include "platform/thread.h"
#include "reference/reference.h"
#include "run_fixture.h"
#include "training/training.h"
#include "workspace/network.h"

namespace {

// The workspace as a first-order run trains it, but each iteration's error is scripted, and the script may
// act between iterations as the window would.
class CScriptedTrainee : public CWorkspaceTrainee {
public:
    CScriptedTrainee(CVantrelDlg& dlg, std::function<double(CVantrelDlg&, int)> iterate)
        : CWorkspaceTrainee(dlg), m_dlg(dlg), m_iterate(std::move(iterate)) {}
    double AccumulateGradientAndError(bool) override { return m_iterate(m_dlg, ++calls); }
    int calls = 0;

private:
    CVantrelDlg& m_dlg;
    std::function<double(CVantrelDlg&, int)> m_iterate;
};

// A first-order run of the window on a scripted trainee, ended as the window ends it.
UINT RunScripted(CVantrelDlg& dlg, CScriptedTrainee& trainee) {
    dlg.m_nAlgorithm = engine::kFirstOrder;
    dlg.m_cancel.Reset();
    dlg.m_bTraining = true;
    const training::CWorkspaceSettings settings(dlg);
    training::CWindowSink sink(dlg, false);
    return training::EndRun(dlg, engine::RunFixedSize(trainee, settings, sink, dlg.m_cancel));
}

// Errors after each of count iterations of damped Gauss-Newton on the workspace's network, from the plain
// accumulation and inversion: damping from 0.01, divided by ten after a lower (or NaN) error, multiplied by
// ten after each of at most six failed tries.
std::vector<double> PlainDampedErrors(CVantrelDlg& dlg, int count) {
    const bool improved = engine::IsImprovedAlgorithm(dlg.m_nAlgorithm);
    dlg.PackParameters();
    const UINT n = dlg.m_nParams;
    std::vector<double> hessian(n * n), gradient(n), damped, inverse(n * n), start(n), errors;
    double previous = dlg.ComputeError(), damping = 0.01;
    for (int iteration = 0; iteration < count; ++iteration) {
        reference::Accumulate(ViewOf(dlg, improved), n, hessian.data(), gradient.data());
        std::copy(dlg.m_pParams, dlg.m_pParams + n, start.begin());
        double error = previous;
        for (int tries = 0; tries < 6; ++tries) {
            damped = hessian;
            for (UINT d = 0; d < n; ++d) damped[d * n + d] += damping;
            reference::Invert(damped.data(), static_cast<int>(n), inverse.data());
            for (UINT r = 0; r < n; ++r) {
                double step = 0.0;
                for (UINT c = 0; c < n; ++c) step += inverse[r * n + c] * gradient[c];
                dlg.m_pParams[r] = start[r] - step;
            }
            dlg.UnpackParameters();
            error = dlg.ComputeError();
            if (!(error >= previous)) {
                if (damping > 1e-20) damping *= 0.1;
                break;
            }
            if (damping < 1e20) damping *= 10.0;
        }
        errors.push_back(error);
        previous = error;
    }
    return errors;
}

TEST_F(TrainingRun, SecondOrderRunsFollowDampedGaussNewtonFromThePlainAlgorithms) {
    for (int algorithm : {0, 1}) {
        LoadSmallProblem();
        m_dlg.m_nAlgorithm = algorithm;
        // Four iterations: the small problem is fitted exactly soon after, where no two sums agree closely.
        const std::vector<double> expected = PlainDampedErrors(m_dlg, 4);
        LoadSmallProblem();
        m_dlg.m_nIterations = 4;
        m_dlg.m_dDesiredError = 0.0;
        ASSERT_EQ(Run(algorithm == 0 ? TrainSecondOrder : TrainImprovedSecondOrder), 0u);
        const std::vector<double> errors = Curve(m_dlg.m_iterationPlot.m_arrY);
        ASSERT_EQ(errors.size(), 5u);
        for (int k = 1; k <= 4; ++k)
            EXPECT_NEAR(errors[k], expected[k - 1], 1e-8 * expected[k - 1]) << "algorithm " << algorithm << ", iteration " << k;
    }
}

TEST_F(TrainingRun, TrialReachingTheGoalAtIterationSevenHasEightErrorsAndReportsSeven) {
    LoadSmallProblem();
    m_dlg.m_nIterations = 10;
    m_dlg.m_dDesiredError = 0.0;  // never reached: shows the error after each of ten iterations
    ASSERT_EQ(Run(TrainSecondOrder), 0u);
    const std::vector<double> free = Curve(m_dlg.m_iterationPlot.m_arrY);
    ASSERT_EQ(free.size(), 11u);
    ASSERT_LT(free[7], free[6]) << "the crafted problem must still improve at iteration 7";

    LoadSmallProblem();  // the same start again
    m_dlg.m_dDesiredError = (free[6] + free[7]) / 2;
    m_dlg.m_bSaveResults = 1;
    ASSERT_EQ(Run(TrainSecondOrder), 0u);
    EXPECT_EQ(Curve(m_dlg.m_iterationPlot.m_arrY).size(), 8u);
    EXPECT_EQ(Text(1024), "7");
    CString error;
    error.Format("%.12f", free[7]);
    EXPECT_EQ(Text(1025), error.str());
    const CResultSection initial{m_dlg.m_pInitInputWeights, m_dlg.m_pInitOutputWeights, m_dlg.m_pInitCenters,
                                 m_dlg.m_pInitWidths};
    const CResultSection trained{m_dlg.m_pInputWeights, m_dlg.m_pOutputWeights, m_dlg.m_pCenters, m_dlg.m_pWidths};
    std::string block;
    for (const std::string& line : ResultBlock(2, 1, 7, free[7], &initial, trained)) block += line;
    EXPECT_EQ(ResultText(), block) << "one block: the network the trial started from, where it ended, its error";
    EXPECT_EQ(Text(1010), "Start Training");
    ExpectEnabled({1009, 1014, 1064, 1055, 1038}, true);
    EXPECT_FALSE(m_dlg.m_bTraining);
}

TEST_F(TrainingRun, ErrorEqualToTheGoalGoesOnAndAnInitialErrorBelowItStillTakesOneIteration) {
    LoadSmallProblem();
    m_dlg.m_nIterations = 3;
    m_dlg.m_dDesiredError = 1e9;  // the initial error is far below: one iteration all the same
    Run(TrainImprovedSecondOrder);
    EXPECT_EQ(Curve(m_dlg.m_iterationPlot.m_arrY).size(), 2u);

    LoadSmallProblem();
    m_dlg.m_dLearningConstant = 0.0;  // first order without a step: the error stays the initial one
    m_dlg.m_dDesiredError = m_dlg.ComputeError();
    Run(TrainFirstOrder);
    EXPECT_EQ(Curve(m_dlg.m_iterationPlot.m_arrY).size(), 4u) << "an error equal to the goal must not end a trial";
}

TEST_F(TrainingRun, TrialsFeedTheSummaryAndOneOrMultipleCurves) {
    LoadSmallProblem();
    m_dlg.m_nIterations = 2;
    m_dlg.m_dDesiredError = 0.0;
    m_dlg.m_nTrials = 25;
    m_dlg.m_nCurveMode = 1;
    m_dlg.m_bSaveResults = 1;
    ASSERT_EQ(Run(TrainImprovedFirstOrder), 0u);

    const std::vector<double> x = Curve(m_dlg.m_iterationPlot.m_arrX);
    ASSERT_EQ(x.size(), 75u) << "Multiple Curves must keep a curve of three points per trial";
    EXPECT_EQ(x[3], 1.0) << "each curve starts again at x = 1";
    const std::vector<double> summary = Curve(m_dlg.m_summaryPlot.m_arrY);
    ASSERT_EQ(summary.size(), 25u);
    EXPECT_EQ(Curve(m_dlg.m_summaryPlot.m_arrX).back(), 25.0);
    EXPECT_EQ(m_dlg.m_summaryPlot.m_nMultiplier, 3) << "trials 21 to 25 show multiplier 3";
    double sum = 0.0;
    for (double e : summary) sum += e;
    CString average;
    average.Format("%.12f", sum / 25);
    EXPECT_EQ(Text(1026), average.str());
    EXPECT_EQ(Count(ResultText(), "total iterations: 2, "), 25);
    EXPECT_EQ(Count(ResultText(), "Initial Conditions"), 25);

    m_dlg.m_nCurveMode = 0;
    m_dlg.m_nTrials = 2;
    Run(TrainImprovedFirstOrder);
    EXPECT_EQ(Curve(m_dlg.m_iterationPlot.m_arrX).size(), 3u) << "One Curve must show the last trial only";
}

// Edits 1019, 1020, 1047 and the curve radios stay live during a run: what an exchange of the edits writes
// counts at the run's next test.
TEST_F(TrainingRun, SettingsChangedDuringARunTakeEffectAtTheirNextTest) {
    LoadSmallProblem();
    m_dlg.m_nIterations = 100;
    m_dlg.m_dDesiredError = 0.0;
    CScriptedTrainee method(m_dlg, [](CVantrelDlg& dlg, int call) {
        if (call == 3) {
            dlg.m_nIterations = 5;
            dlg.m_nTrials = 2;
            dlg.m_nCurveMode = 1;
        }
        if (call == 7) dlg.m_dDesiredError = 1.0;
        return 0.5;
    });
    ASSERT_EQ(RunScripted(m_dlg, method), 0u);
    EXPECT_EQ(method.calls, 7) << "5 iterations in the first trial, then a second trial ending below the new goal";
    EXPECT_EQ(Curve(m_dlg.m_iterationPlot.m_arrX), (std::vector<double>{1, 2, 3, 4, 5, 6, 1, 2, 3}))
        << "both trials must end in Multiple Curves mode";
    EXPECT_EQ(Curve(m_dlg.m_summaryPlot.m_arrY).size(), 2u);
}

// A worker is a thread of its own: whatever escaped it would end the program.
TEST_F(TrainingRun, AnyFailureDuringATrialEndsTheRunWithAMessageOfItsOwn) {
    LoadSmallProblem();
    CScriptedTrainee outOfMemory(m_dlg, [](CVantrelDlg&, int call) {
        if (call == 2) throw std::bad_alloc();
        return 0.5;
    });
    EXPECT_EQ(RunScripted(m_dlg, outOfMemory), 1u);
    CScriptedTrainee unknown(m_dlg, [](CVantrelDlg&, int) -> double { throw 42; });
    EXPECT_EQ(RunScripted(m_dlg, unknown), 1u);

    ASSERT_EQ(Boxes().size(), 2u);
    EXPECT_EQ(Boxes()[0], "box Error [stop]: Not enough memory: training stopped at iteration 2.")
        << "only the refused quasi-Hessian speaks of the quasi-Hessian";
    EXPECT_EQ(Boxes()[1], "box Error [stop]: Training stopped at iteration 1 by an unknown failure.");
    ExpectEndedAbnormally();
}

// All patterns have the input 0.5, so every center drawn from them is 0.5 and, with weights and widths
// fixed, every draw gives one and the same network: output 0.3 + 2 x 0.3 at each pattern.
TEST_F(TrainingRun, ManualInitializationDrawsAnewForEveryTrialAndZeroIterationsOrTrialsEndNormally) {
    LoadPatterns({{0.5, 0.2}, {0.5, 0.9}, {0.5, 0.4}});
    SetNetwork({1, 1}, {1, 1, 1}, {1, 1}, {0.5, 0.5});
    m_dlg.m_dlgInitialization.m_nLoadFromFile = 0;
    m_dlg.m_dlgInitialization.m_nCenterMode = 1;
    m_dlg.m_dlgInitialization.m_dOutputWeightFixed = 0.3;
    const double drawnError = (0.7 * 0.7 + 0.0 + 0.5 * 0.5) / 3;
    m_dlg.m_nIterations = 20;
    m_dlg.m_nTrials = 3;
    m_dlg.m_dDesiredError = 0.0;
    m_dlg.m_dLearningConstant = 0.05;
    ASSERT_EQ(Run(TrainFirstOrder), 0u);
    EXPECT_NEAR(Curve(m_dlg.m_iterationPlot.m_arrY).at(0), drawnError, 1e-12) << "the trial must start from the draw";
    const std::vector<double> finals = Curve(m_dlg.m_summaryPlot.m_arrY);
    ASSERT_EQ(finals.size(), 3u);
    EXPECT_LT(finals[0], drawnError);
    EXPECT_EQ(finals[1], finals[0]) << "a trial must start from a new draw, not from where the last one ended";
    EXPECT_EQ(finals[2], finals[0]);

    m_dlg.m_nIterations = 0;  // the initial error, reported with 0 iterations
    m_dlg.m_nTrials = 1;
    m_dlg.m_bSaveResults = 1;
    ASSERT_EQ(Run(TrainSecondOrder), 0u);
    ASSERT_EQ(Curve(m_dlg.m_iterationPlot.m_arrY).size(), 1u);
    EXPECT_NEAR(Curve(m_dlg.m_iterationPlot.m_arrY)[0], drawnError, 1e-12);
    EXPECT_NE(ResultText().find("total iterations: 0, "), std::string::npos) << ResultText();

    m_dlg.m_nTrials = 0;
    m_dlg.m_bSaveResults = 0;
    ASSERT_EQ(Run(TrainFirstOrder), 0u);
    EXPECT_EQ(Curve(m_dlg.m_summaryPlot.m_arrY).size(), 1u) << "no trial: the summary stays as it was";
    ExpectEnabled({1009, 1014, 1064, 1055, 1038}, true);
    EXPECT_FALSE(m_dlg.m_bTraining);
}

TEST_F(TrainingRun, ClassificationTrialSweepsTheGridThreeStepsBeyondThePatterns) {
    LoadPatterns({{0.0, 0.0, 1.0}, {1.0, 0.5, -1.0}, {0.5, 1.0, 1.0}});
    SetNetwork({1, 1}, {0.0, 1.0}, {0.5}, {0.5, 0.5});
    m_dlg.m_bClassification = true;
    m_dlg.m_dataPlot.m_dMinX = 0.0;
    m_dlg.m_dataPlot.m_dMaxX = 1.0;
    m_dlg.m_dataPlot.m_dStepX = 0.25;  // -0.75 to 1.75: 11 columns
    m_dlg.m_dataPlot.m_dMinY = 0.0;
    m_dlg.m_dataPlot.m_dMaxY = 1.0;
    m_dlg.m_dataPlot.m_dStepY = 0.5;  // -1.5 to 2.5: 9 rows
    m_dlg.m_nIterations = 2;
    Run(TrainSecondOrder);
    const std::vector<double> gx = Curve(m_dlg.m_dataPlot.m_arrGridX);
    const std::vector<double> gy = Curve(m_dlg.m_dataPlot.m_arrGridY);
    const std::vector<double> value = Curve(m_dlg.m_dataPlot.m_arrGridValue);
    ASSERT_EQ(gx.size(), 99u);
    ASSERT_EQ(value.size(), 99u);
    EXPECT_EQ(gx.front(), -0.75);
    EXPECT_EQ(gy.front(), -1.5);
    EXPECT_EQ(gy[8], 2.5) << "y runs inside x";
    EXPECT_EQ(gx.back(), 1.75);
    EXPECT_EQ(value[40], m_dlg.EvaluatePoint(gx[40], gy[40])) << "the grid must show the trained network";
}

TEST_F(TrainingRun, StopEndsTheTrialUnderWayWithoutItsBlockAndKeepsVerificationOff) {
    LoadSmallProblem();
    m_dlg.m_nAlgorithm = 3;
    m_dlg.m_nIterations = 4000000000u;
    m_dlg.m_dDesiredError = 0.0;
    m_dlg.m_bSaveResults = 1;
    m_dlg.UpdateData(FALSE);  // Start reads the edits back into the fields
    m_dlg.OnStartTraining();
    EXPECT_EQ(Text(1010), "Stop Training");
    ExpectEnabled({1009, 1014, 1064, 1055, 1038}, false);
    platform::PumpFor(200);
    m_dlg.OnStartTraining();  // Stop
    ASSERT_TRUE(platform::PumpUntilWorkersDone(10000)) << "the run did not notice Stop";
    ExpectEndedAbnormally();
    EXPECT_NE(Text(1024), "0") << "the iteration read-out must show the last iteration";
    EXPECT_EQ(m_dlg.m_iterationPlot.m_arrY.GetSize(), 0) << "a stopped trial gets no curve";
    EXPECT_EQ(ResultText(), "") << "a stopped trial gets no block";
    EXPECT_TRUE(Boxes().empty());
}

TEST_F(TrainingRun, SingularQuasiHessianEndsTheRunWithAMessage) {
    LoadSmallProblem();
    m_dlg.m_pWidths[1] = std::numeric_limits<double>::quiet_NaN();
    m_dlg.m_bSaveResults = 1;
    EXPECT_EQ(Run(TrainSecondOrder), 1u);
    ASSERT_EQ(Boxes().size(), 1u);
    EXPECT_NE(Boxes()[0].find("box Error [stop]: "), std::string::npos) << Boxes()[0];
    EXPECT_NE(Boxes()[0].find("Singular matrix in LUdcmp"), std::string::npos) << Boxes()[0];
    ExpectEndedAbnormally();
    EXPECT_EQ(ResultText(), "");
}

// Memory for the saved quasi-Hessian of 6 million parameters (some 288 TB) can't be had.
TEST_F(TrainingRun, QuasiHessianTooLargeForMemoryEndsTheRunWithAMessage) {
    LoadPatterns({{0.0, 1.0}, {1.0, 2.0}});
    const size_t units = 2000000;
    SetNetwork(std::vector<double>(units, 1.0), std::vector<double>(units + 1, 0.5), std::vector<double>(units, 1.0),
               std::vector<double>(units, 0.5));
    EXPECT_EQ(Run(TrainSecondOrder), 1u);
    ASSERT_EQ(Boxes().size(), 1u);
    EXPECT_NE(Boxes()[0].find("box Error [stop]: Not enough memory"), std::string::npos) << Boxes()[0];
    ExpectEndedAbnormally();
}

TEST_F(TrainingRun, FailedResultFileLeavesTheNetworkUntouched) {
    LoadSmallProblem();
    AfxSetModuleDirectory((m_folder.Path() + "/missing").c_str());
    m_dlg.m_bSaveResults = 1;
    m_dlg.m_dlgInitialization.m_nLoadFromFile = 0;  // would draw a new network if the run went on
    EXPECT_EQ(Run(TrainFirstOrder), 1u);
    ASSERT_EQ(Boxes().size(), 2u);
    EXPECT_EQ(Boxes()[1], "box Error [stop]: Create Result File Failed!");
    EXPECT_EQ(m_dlg.m_pWidths[0], 0.5);
    EXPECT_EQ(m_dlg.m_pCenters[1], 1.6);
    ExpectEndedAbnormally();
}

// The results folder vanishes during a run of many saved trials: one box tells of it, and the run goes on
// to its end without saving, where a box per trial would hold the worker, and the user, for each of them.
TEST_F(TrainingRun, AResultsFolderThatVanishesIsReportedOnceAndTheRunGoesOnWithoutSaving) {
    LoadSmallProblem();
    const std::string folder = m_folder.Path() + "/results";
    ASSERT_EQ(mkdir(folder.c_str(), 0700), 0);
    AfxSetModuleDirectory(folder.c_str());
    m_dlg.m_bSaveResults = 1;
    m_dlg.m_nTrials = 30;
    m_dlg.m_nIterations = 2;
    m_dlg.m_dDesiredError = 0.0;
    CScriptedTrainee method(m_dlg, [&folder](CVantrelDlg&, int call) {
        if (call == 3) std::filesystem::remove_all(folder);  // in the second trial
        return 0.5;
    });
    ASSERT_EQ(RunScripted(m_dlg, method), 0u) << "the run must end normally";
    EXPECT_EQ(method.calls, 60) << "every trial must be trained";
    EXPECT_EQ(Boxes(), std::vector<std::string>{Box("Open Result File Failed!")});
    EXPECT_EQ(Curve(m_dlg.m_summaryPlot.m_arrY).size(), 30u);
    EXPECT_TRUE(Enabled(1038));
}

// A trial of many iterations and a run of many trials: the plots keep as many points as they can show, the
// curve still ending at the last iteration, and the result blocks count every iteration.
TEST_F(TrainingRun, LongTrialsAndManyTrialsKeepTheirCurvesBounded) {
    LoadSmallProblem();
    m_dlg.m_nIterations = 100000;
    m_dlg.m_dDesiredError = 0.0;
    m_dlg.m_bSaveResults = 1;
    CScriptedTrainee method(m_dlg, [](CVantrelDlg&, int call) { return 1.0 / call; });
    ASSERT_EQ(RunScripted(m_dlg, method), 0u);
    const std::vector<double> x = Curve(m_dlg.m_iterationPlot.m_arrX);
    EXPECT_LT(x.size(), 15000u);
    EXPECT_EQ(x.front(), 1.0);
    EXPECT_EQ(x.back(), 100001.0) << "the curve must end at the last iteration";
    EXPECT_EQ(Curve(m_dlg.m_iterationPlot.m_arrY).back(), 1.0 / 100000);
    EXPECT_EQ(Count(ResultText(), "total iterations: 100000, "), 1);

    m_dlg.m_nIterations = 1;
    m_dlg.m_nTrials = 10000;
    m_dlg.m_bSaveResults = 0;
    CScriptedTrainee trials(m_dlg, [](CVantrelDlg&, int call) { return 1.0 / call; });
    ASSERT_EQ(RunScripted(m_dlg, trials), 0u);
    const std::vector<double> summary = Curve(m_dlg.m_summaryPlot.m_arrX);
    EXPECT_LE(summary.size(), 4100u);
    EXPECT_EQ(summary.back(), 10000.0) << "the summary must end at the last trial";
}

TEST_F(TrainingRun, DataSetWithoutPatternsIsRefused) {
    LoadSmallProblem();
    m_dlg.m_nPatterns = 0;
    EXPECT_EQ(Run(TrainByErrorCorrection), 1u);
    EXPECT_EQ(Run(TrainSecondOrder), 1u);
    ASSERT_EQ(Boxes().size(), 2u);
    EXPECT_NE(Boxes()[0].find("no patterns"), std::string::npos) << Boxes()[0];
    EXPECT_EQ(m_dlg.m_nUnits, 2u) << "the network must stay as it was";
    EXPECT_FALSE(m_dlg.m_bTraining);
}

}  // namespace

namespace {

TEST_F(TrainingRun, NaNErrorEndsEachTrialAfterItsFirstIteration) {
    LoadSmallProblem();
    m_dlg.m_pWidths[0] = std::numeric_limits<double>::quiet_NaN();
    m_dlg.m_nIterations = 50;
    m_dlg.m_nTrials = 2;
    m_dlg.m_bSaveResults = 1;
    ASSERT_EQ(Run(TrainFirstOrder), 0u) << "a NaN error is no failure of the run";
    EXPECT_EQ(Count(ResultText(), "total iterations: 1, "), 2) << ResultText();
    EXPECT_EQ(Text(1024), "1");
    EXPECT_TRUE(Boxes().empty());
}

}  // namespace
