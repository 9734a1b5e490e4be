// Network model: layouts of the parameter vector, packing, the error measure, outputs and the worst pattern.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "network/network.h"
#include "reference/reference.h"
#include "workspace/blocks.h"
#include "workspace/workspace.h"

namespace {

// One unit, one input: V = 1, C = 0, S = 2, W = (0, 1), one pattern x = 1 with target t.
void OneUnitNetwork(CVantrelDlg& dlg, double target) {
    dlg.m_nPatterns = 1;
    dlg.m_nInputs = 1;
    dlg.m_nOutputs = 1;
    dlg.m_nUnits = 1;
    ReplaceBlocks(dlg,
                  {Block::Inputs, Block::Targets, Block::Outputs, Block::InputWeights, Block::Centers, Block::Widths,
                   Block::OutputWeights},
                  CountsOf(dlg));
    dlg.m_pInputs[0] = 1.0;
    dlg.m_pTargets[0] = target;
    dlg.m_pInputWeights[0] = 1.0;
    dlg.m_pWidths[0] = 2.0;
    dlg.m_pOutputWeights[1] = 1.0;
}

std::vector<double> Copy(const double* block, size_t count) { return std::vector<double>(block, block + count); }

}  // namespace

TEST(ParameterLayout, TwoUnitsOfThreeInputsGiveElevenOrSeventeenParameters) {
    CVantrelDlg dlg;
    MakeSample(dlg, {4, 3, 2, 0, 1});
    for (int algorithm : {0, 2, 3}) {
        dlg.m_nAlgorithm = algorithm;
        dlg.PackParameters();
        EXPECT_EQ(dlg.m_nParams, 11u) << "algorithm " << algorithm;
        EXPECT_EQ(LayoutOf(dlg).Widths(), 3u) << "algorithm " << algorithm;
        EXPECT_EQ(LayoutOf(dlg).Centers(), 5u) << "algorithm " << algorithm;
        EXPECT_EQ(dlg.m_pParams[3], dlg.m_pWidths[0]);
        EXPECT_EQ(dlg.m_pParams[5], dlg.m_pCenters[0]);
    }
    for (int algorithm : {1, 4}) {
        dlg.m_nAlgorithm = algorithm;
        dlg.PackParameters();
        EXPECT_EQ(dlg.m_nParams, 17u) << "algorithm " << algorithm;
        EXPECT_EQ(LayoutOf(dlg).Widths(), 3u) << "algorithm " << algorithm;
        EXPECT_EQ(LayoutOf(dlg).InputWeights(), 5u) << "algorithm " << algorithm;
        EXPECT_EQ(LayoutOf(dlg).Centers(), 11u) << "algorithm " << algorithm;
        EXPECT_EQ(dlg.m_pParams[5], dlg.m_pInputWeights[0]);
        EXPECT_EQ(dlg.m_pParams[16], dlg.m_pCenters[5]);
    }
}

TEST(ParameterLayout, PackThenUnpackRestoresEveryArrayOfEveryLayout) {
    for (int algorithm = 0; algorithm < 5; ++algorithm) {
        CVantrelDlg dlg;
        MakeSample(dlg, {5, 3, 4, algorithm, 7u + algorithm});
        const auto w = Copy(dlg.m_pOutputWeights, 5), s = Copy(dlg.m_pWidths, 4);
        const auto v = Copy(dlg.m_pInputWeights, 12), c = Copy(dlg.m_pCenters, 12);
        dlg.PackParameters();
        for (int k = 0; k < 5; ++k) dlg.m_pOutputWeights[k] = -99.0;
        for (int k = 0; k < 4; ++k) dlg.m_pWidths[k] = -99.0;
        for (int k = 0; k < 12; ++k) dlg.m_pInputWeights[k] = dlg.m_pCenters[k] = -99.0;
        dlg.UnpackParameters();
        EXPECT_EQ(Copy(dlg.m_pOutputWeights, 5), w) << "algorithm " << algorithm;
        EXPECT_EQ(Copy(dlg.m_pWidths, 4), s) << "algorithm " << algorithm;
        EXPECT_EQ(Copy(dlg.m_pCenters, 12), c) << "algorithm " << algorithm;
        // Only the Improved layouts carry the input weights; the others must leave them alone.
        if (IsImprovedAlgorithm(algorithm))
            EXPECT_EQ(Copy(dlg.m_pInputWeights, 12), v) << "algorithm " << algorithm;
        else
            EXPECT_EQ(dlg.m_pInputWeights[0], -99.0) << "algorithm " << algorithm << " wrote the input weights";
    }
}

TEST(ComputeError, NoUnitsGiveTheMeanSquareOfBiasMinusTarget) {
    CVantrelDlg dlg;
    MakeSample(dlg, {3, 2, 0, 0, 3});
    dlg.m_pOutputWeights[0] = 0.5;
    dlg.m_pTargets[0] = 1.0;
    dlg.m_pTargets[1] = -1.0;
    dlg.m_pTargets[2] = 0.5;
    EXPECT_DOUBLE_EQ(dlg.ComputeError(), (0.25 + 2.25 + 0.0) / 3);
    EXPECT_DOUBLE_EQ(dlg.EvaluatePoint(7.0, -3.0), 0.5);
}

TEST(ComputeError, OneGaussianUnitGivesExpOfMinusOneHalf) {
    CVantrelDlg dlg;
    OneUnitNetwork(dlg, 0.0);
    EXPECT_DOUBLE_EQ(dlg.ComputeOutputs(), std::exp(-1.0));
    EXPECT_DOUBLE_EQ(dlg.m_pOutputs[0], std::exp(-0.5));
    EXPECT_DOUBLE_EQ(dlg.ComputeError(), std::exp(-1.0));
}

TEST(ComputeError, InputWeightScalesTheInputBeforeTheCenter) {
    CVantrelDlg dlg;
    OneUnitNetwork(dlg, 0.0);
    dlg.m_pInputWeights[0] = 2.0;  // (2 * 1 - 0)^2 / 2 = 2
    dlg.ComputeOutputs();
    EXPECT_DOUBLE_EQ(dlg.m_pOutputs[0], std::exp(-2.0));
}

TEST(ComputeError, NoPatternGivesNaN) {
    CVantrelDlg dlg;
    MakeSample(dlg, {0, 2, 3, 0, 3});
    EXPECT_TRUE(std::isnan(dlg.ComputeError()));
}

TEST(EvaluatePoint, TwoInputsFollowTheOutputFormula) {
    CVantrelDlg dlg;
    MakeSample(dlg, {1, 2, 3, 0, 5});
    const double* V = dlg.m_pInputWeights;
    const double* C = dlg.m_pCenters;
    double expected = dlg.m_pOutputWeights[0];
    for (int h = 0; h < 3; ++h) {
        const double a = 0.3 * V[2 * h] - C[2 * h], b = -0.7 * V[2 * h + 1] - C[2 * h + 1];
        expected += dlg.m_pOutputWeights[h + 1] * std::exp(-(a * a + b * b) / dlg.m_pWidths[h]);
    }
    EXPECT_DOUBLE_EQ(dlg.EvaluatePoint(0.3, -0.7), expected);
    dlg.m_pInputs[0] = 0.3;
    dlg.m_pInputs[1] = -0.7;
    dlg.ComputeOutputs();
    EXPECT_DOUBLE_EQ(dlg.m_pOutputs[0], expected);
}

TEST(FindWorstPattern, FirstOfEqualLargestErrorsWins) {
    CVantrelDlg dlg;
    MakeSample(dlg, {3, 1, 0, 0, 1});
    const double errors[] = {0.5, -0.5, 0.25};
    for (int p = 0; p < 3; ++p) {
        dlg.m_pOutputs[p] = 0.0;
        dlg.m_pTargets[p] = errors[p];
    }
    EXPECT_EQ(dlg.FindWorstPattern(), 0u);
    dlg.m_pTargets[2] = -0.75;
    EXPECT_EQ(dlg.FindWorstPattern(), 2u) << "a strictly larger error later on must win";
}

TEST(FindWorstPattern, NoPatternGivesIndexZeroWithoutReadingArrays) {
    CVantrelDlg dlg;
    dlg.m_nPatterns = 0;  // m_pTargets and m_pOutputs stay null: any read would crash
    EXPECT_EQ(dlg.FindWorstPattern(), 0u);
}
