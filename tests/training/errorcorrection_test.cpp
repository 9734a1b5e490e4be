// The Error Correction Algorithm on the hidden main dialog: where units go, one result block per unit, the
// end of an online run, and a network gone NaN.
#include <chrono>
#include <cmath>
#include <limits>
#include <thread>

#include "files/resultfiles.h"
#include "platform/thread.h"
#include "run_fixture.h"

namespace {

// Outputs start at 0.0, not at the bias of 1.0: the pattern with the largest |desired output| is 2.9 here,
// while measured against the bias it would be -2.5.
TEST_F(TrainingRun, FirstUnitGoesToThePatternOfLargestDesiredOutput) {
    LoadPatterns({{0.1, 0.3, 0.5}, {0.7, -0.2, 2.9}, {-0.4, 0.9, -2.5}});
    m_dlg.m_nAlgorithm = 2;
    m_dlg.m_nMaxUnits = 1;
    m_dlg.m_nIterations = 0;  // the unit keeps the values it was added with
    ASSERT_EQ(Run(TrainByErrorCorrection), 0u);
    ASSERT_EQ(m_dlg.m_nUnits, 1u);
    EXPECT_EQ(m_dlg.m_pCenters[0], 0.7);
    EXPECT_EQ(m_dlg.m_pCenters[1], -0.2);
    EXPECT_EQ(m_dlg.m_pWidths[0], 1.0);
    EXPECT_EQ(m_dlg.m_pInputWeights[0], 1.0);
    EXPECT_EQ(m_dlg.m_pInputWeights[1], 1.0);
    EXPECT_EQ(m_dlg.m_pOutputWeights[0], 1.0) << "bias";
    EXPECT_EQ(m_dlg.m_pOutputWeights[1], 1.0);
    EXPECT_EQ(Text(1023), "1");
}

TEST_F(TrainingRun, ErrorCorrectionRunWritesOneBlockPerUnitUpToTheMaximum) {
    LoadPatterns({{0.0, 0.2}, {0.5, 0.9}, {1.0, 0.6}, {1.5, -0.3}, {2.0, 0.1}, {2.5, 0.4}});
    m_dlg.m_nAlgorithm = 2;
    m_dlg.m_nMaxUnits = 3;
    m_dlg.m_nIterations = 4;
    m_dlg.m_dDesiredError = 0.0;  // never reached: every unit is added
    m_dlg.m_bSaveResults = 1;
    ASSERT_EQ(Run(TrainByErrorCorrection), 0u);

    EXPECT_EQ(m_dlg.m_nUnits, 3u);
    const std::string text = ResultText();
    EXPECT_EQ(Count(text, "total iterations: 4, "), 3) << text;
    for (const char* units : {"number of RBF units: 1\r\n", "number of RBF units: 2\r\n", "number of RBF units: 3\r\n"})
        EXPECT_EQ(Count(text, units), 1) << units;
    EXPECT_EQ(Count(text, "Initial Conditions"), 0);

    EXPECT_EQ(Curve(m_dlg.m_iterationPlot.m_arrY).size(), 5u) << "the curve of the last unit, from its start";
    EXPECT_EQ(m_dlg.m_iterationPlot.m_nMode, 2) << "the unit's curve is drawn with the y axis fitted to it";
    const std::vector<double> finals = Curve(m_dlg.m_summaryPlot.m_arrY);
    ASSERT_EQ(finals.size(), 3u);
    CString last;
    last.Format("%.12f", finals[2]);
    EXPECT_EQ(Text(1026), last.str());
    const CResultSection trained{m_dlg.m_pInputWeights, m_dlg.m_pOutputWeights, m_dlg.m_pCenters, m_dlg.m_pWidths};
    std::string block;
    for (const std::string& line : ResultBlock(3, 1, 4, finals[2], nullptr, trained)) block += line;
    EXPECT_EQ(text.substr(text.size() - std::min(text.size(), block.size())), block) << "the last unit's block";
    EXPECT_EQ(m_dlg.m_summaryPlot.m_nMode, 2);
    EXPECT_EQ(Text(1010), "Start Training");
    ExpectEnabled({1009, 1014, 1064, 1055, 1038, 1048}, true);
    EXPECT_FALSE(m_dlg.m_bTraining);
}

TEST_F(TrainingRun, FinalErrorBelowTheGoalEndsTheRunEarly) {
    LoadPatterns({{0.0, 1.0}, {1.0, 1.0}});
    m_dlg.m_nMaxUnits = 5;
    m_dlg.m_nIterations = 3;
    m_dlg.m_dDesiredError = 0.5;  // the bias of 1.0 with the first unit is already near the targets
    m_dlg.m_bSaveResults = 1;
    m_dlg.m_nCurveMode = 1;  // no curve of this algorithm in any other mode than One Curve
    m_dlg.m_iterationPlot.m_arrX.Add(1.0);
    m_dlg.m_iterationPlot.m_arrY.Add(0.25);
    ASSERT_EQ(Run(TrainByErrorCorrection), 0u);
    EXPECT_EQ(m_dlg.m_nUnits, 1u);
    EXPECT_EQ(Count(ResultText(), "number of RBF units"), 1);
    EXPECT_EQ(Curve(m_dlg.m_iterationPlot.m_arrY), std::vector<double>{0.25}) << "Multiple Curves must draw nothing";
}

// The online run goes on a worker. The window takes in a worker's control operations every few milliseconds,
// and an exchange of the edits in that time (Stop, Show Info) reads the Online Training box as the run found
// it, checked; the end of the online run must leave box and m_bOnline off all the same.
TEST_F(TrainingRun, OnlineRunKeepsItsUnitsAndEndsOnlineTrainingAlsoWhenTheWindowLagsBehind) {
    LoadPatterns({{0.0, 0.2}, {0.5, 0.9}, {1.0, 0.6}, {1.5, -0.3}});
    m_dlg.m_nAlgorithm = 2;
    m_dlg.m_nMaxUnits = 10;
    m_dlg.m_nIterations = 1;
    m_dlg.m_dDesiredError = 0.0;
    ASSERT_EQ(Run(TrainByErrorCorrection), 0u);

    m_dlg.m_bOnline = 1;
    m_dlg.m_bNetworkReady = true;
    m_dlg.m_nMaxUnits = 1;
    m_dlg.UpdateData(FALSE);
    m_dlg.OnStartTraining();
    std::this_thread::sleep_for(std::chrono::milliseconds(300));  // the run goes on; the window takes in nothing
    m_dlg.UpdateData(TRUE);
    ASSERT_TRUE(platform::PumpUntilWorkersDone(10000));
    EXPECT_EQ(m_dlg.m_nUnits, 11u) << "online, the units already there stay";
    EXPECT_EQ(m_dlg.m_bOnline, 0);
    EXPECT_FALSE(m_dlg.m_bNetworkReady);
    EXPECT_EQ(m_dlg.GetDlgItem(1048)->SendMessage(BM_GETCHECK), BST_UNCHECKED);
    EXPECT_EQ(Text(1010), "Start Training");
    ExpectEnabled({1009, 1014, 1064, 1055, 1038, 1048}, true);
    EXPECT_EQ(Curve(m_dlg.m_summaryPlot.m_arrX), std::vector<double>{1.0}) << "x counts the units of this run";
    EXPECT_EQ(m_dlg.m_summaryPlot.m_nMultiplier, 2) << "the multiplier counts all 11 units of the network";
}

TEST_F(TrainingRun, StoppedUnitStaysInTheNetworkWithoutABlockAndVerificationStaysOff) {
    LoadPatterns({{0.0, 0.2}, {0.5, 0.9}, {1.0, 0.6}, {1.5, -0.3}});
    m_dlg.m_nAlgorithm = 2;
    m_dlg.m_bNetworkReady = true;
    m_dlg.m_nMaxUnits = 3;
    m_dlg.m_nIterations = 4000000000u;
    m_dlg.m_dDesiredError = 0.0;
    m_dlg.m_bSaveResults = 1;
    m_dlg.UpdateData(FALSE);
    m_dlg.OnStartTraining();
    platform::PumpFor(200);
    m_dlg.OnStartTraining();  // Stop
    ASSERT_TRUE(platform::PumpUntilWorkersDone(10000)) << "the run did not notice Stop";
    EXPECT_EQ(m_dlg.m_nUnits, 1u) << "the unit in training stays in the network";
    EXPECT_EQ(Text(1023), "1");
    EXPECT_EQ(ResultText(), "") << "the unit in training gets no block";
    EXPECT_EQ(m_dlg.m_iterationPlot.m_arrY.GetSize(), 0) << "a stopped unit gets no curve";
    ExpectEndedAbnormally();
    EXPECT_FALSE(Enabled(1048));
    EXPECT_TRUE(m_dlg.m_bNetworkReady);
}

// A NaN desired output turns the network to NaN in the first iteration; the second iteration's inversion then
// meets rows without magnitude and throws. The run ends with a message, like a stop.
TEST_F(TrainingRun, NetworkTurnedNaNEndsTheRunWithAMessage) {
    LoadPatterns({{0.0, std::numeric_limits<double>::quiet_NaN()}, {1.0, 0.5}, {2.0, 0.1}});
    m_dlg.m_nMaxUnits = 2;
    m_dlg.m_nIterations = 5;
    m_dlg.m_bSaveResults = 1;
    EXPECT_EQ(Run(TrainByErrorCorrection), 1u);
    ASSERT_EQ(Boxes().size(), 1u);
    EXPECT_NE(Boxes()[0].find("box Error [stop]: Training stopped at iteration 2: Singular matrix in LUdcmp"),
              std::string::npos)
        << Boxes()[0];
    ExpectEndedAbnormally();
    EXPECT_FALSE(Enabled(1048));
    EXPECT_EQ(ResultText(), "") << "the unit under way gets no block";
}

TEST_F(TrainingRun, NoUnitsAllowedLeavesAnEmptyNetworkAndAnEmptyResultFile) {
    LoadPatterns({{0.0, 0.2}, {0.5, 0.9}});
    SetNetwork({1.0}, {0.1, 0.8}, {0.5}, {0.4});
    m_dlg.m_nMaxUnits = 0;
    m_dlg.m_bSaveResults = 1;
    ASSERT_EQ(Run(TrainByErrorCorrection), 0u);
    EXPECT_EQ(m_dlg.m_nUnits, 0u);
    EXPECT_EQ(m_dlg.m_pOutputWeights[0], 1.0);
    EXPECT_EQ(ResultFiles().size(), 1u);
    EXPECT_EQ(ResultText(), "");
}

}  // namespace
