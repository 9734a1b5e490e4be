// The network model: layouts of the parameter vector, packing, the error measure, the output formula, the
// worst pattern and the unit placed there.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "network_test_support.h"

namespace {

using engine::CCancelToken;
using engine::UINT;

// One unit, one input: V = 1, C = 0, S = 2, W = (0, 1), one pattern x = 1 with the given target.
struct OneUnit {
    explicit OneUnit(double inputWeight, double target = 0.0) {
        const double x = 1.0, v = inputWeight, w[] = {0.0, 1.0}, s = 2.0, c = 0.0;
        buffers.SetPatterns(&x, &target, 1, 1);
        buffers.SetNetwork(1, &v, w, &s, &c);
    }
    engine::CNetworkBuffers buffers;
};

}  // namespace

TEST(ParameterLayout, TwoUnitsOfThreeInputsPlaceEveryBlockWhereTheFormSays) {
    struct Case {
        int algorithm;
        UINT count, inputWeights, centers;
    };
    // Widths always follow the three output weights; only the Improved forms carry input weights.
    for (const Case c :
         {Case{0, 11, 0, 5}, Case{2, 11, 0, 5}, Case{3, 11, 0, 5}, Case{1, 17, 5, 11}, Case{4, 17, 5, 11}}) {
        CSample s({4, 3, 2, c.algorithm, 1});
        const engine::CParamLayout layout = engine::LayoutOf(s.Net(), engine::IsImprovedAlgorithm(c.algorithm));
        const double* params = s.Step().pParams;
        EXPECT_EQ(s.Step().nParams, c.count) << "algorithm " << c.algorithm;
        EXPECT_EQ(layout.Widths(), 3u) << "algorithm " << c.algorithm;
        EXPECT_EQ(layout.Centers(), c.centers) << "algorithm " << c.algorithm;
        EXPECT_EQ(params[1], s.Net().pOutputWeights[1]) << "algorithm " << c.algorithm;
        EXPECT_EQ(params[3], s.Net().pWidths[0]) << "algorithm " << c.algorithm;
        EXPECT_EQ(params[c.centers], s.Net().pCenters[0]) << "algorithm " << c.algorithm;
        EXPECT_EQ(params[c.count - 1], s.Net().pCenters[5]) << "algorithm " << c.algorithm;
        if (c.inputWeights) {
            EXPECT_EQ(layout.InputWeights(), c.inputWeights) << "algorithm " << c.algorithm;
            EXPECT_EQ(params[c.inputWeights], s.Net().pInputWeights[0]) << "algorithm " << c.algorithm;
        }
        EXPECT_EQ(engine::ParameterCount(2, 3, 1, layout.bImproved), c.count) << "algorithm " << c.algorithm;
    }
}

TEST(ParameterLayout, PackThenUnpackRestoresEveryArrayOfEveryLayout) {
    for (int algorithm = 0; algorithm < engine::kAlgorithmCount; ++algorithm) {
        CSample s({5, 3, 4, algorithm, 7u + algorithm});
        const engine::CNetwork net = s.Net();
        const auto w = Copy(net.pOutputWeights, 5), v = Copy(net.pInputWeights, 12), c = Copy(net.pCenters, 12);
        const auto widths = Copy(net.pWidths, 4);
        for (int k = 0; k < 5; ++k) net.pOutputWeights[k] = -99.0;
        for (int k = 0; k < 4; ++k) net.pWidths[k] = -99.0;
        for (int k = 0; k < 12; ++k) net.pInputWeights[k] = net.pCenters[k] = -99.0;
        s.buffers.UnpackParameters();
        EXPECT_EQ(Copy(net.pOutputWeights, 5), w) << "algorithm " << algorithm;
        EXPECT_EQ(Copy(net.pWidths, 4), widths) << "algorithm " << algorithm;
        EXPECT_EQ(Copy(net.pCenters, 12), c) << "algorithm " << algorithm;
        // Only the Improved layouts carry the input weights; the others must leave them alone.
        if (engine::IsImprovedAlgorithm(algorithm))
            EXPECT_EQ(Copy(net.pInputWeights, 12), v) << "algorithm " << algorithm;
        else
            EXPECT_EQ(net.pInputWeights[0], -99.0) << "algorithm " << algorithm << " wrote the input weights";
    }
}

TEST(ComputeError, NoUnitsGiveTheMeanSquareOfBiasMinusTargetAndNoPatternNaN) {
    const double inputs[] = {1.0, 2.0, 3.0}, targets[] = {1.0, -1.0, 0.5}, bias = 0.5;
    engine::CNetworkBuffers b;
    b.SetPatterns(inputs, targets, 3, 1);
    b.SetNetwork(0, nullptr, &bias, nullptr, nullptr);
    EXPECT_DOUBLE_EQ(b.ComputeError(), (0.25 + 2.25 + 0.0) / 3);
    const double x = 7.0;
    EXPECT_DOUBLE_EQ(engine::NetworkOutput(b.Network(), &x, 1, CCancelToken::Never()), 0.5);
    b.SetPatterns(nullptr, nullptr, 0, 1);
    EXPECT_TRUE(std::isnan(b.ComputeError())) << "no pattern must give NaN";
}

TEST(ComputeError, OneGaussianUnitFollowsTheOutputFormula) {
    struct Case {
        double inputWeight, output;
    };
    // exp(-(V x - C)^2 / S): V = 1 gives exp(-1/2); V = 2 scales the input before the center, exp(-2).
    for (const Case c : {Case{1.0, std::exp(-0.5)}, Case{2.0, std::exp(-2.0)}}) {
        OneUnit net(c.inputWeight);
        EXPECT_DOUBLE_EQ(net.buffers.ComputeOutputs(), c.output * c.output) << "error, V=" << c.inputWeight;
        EXPECT_DOUBLE_EQ(net.buffers.Outputs()[0], c.output) << "output, V=" << c.inputWeight;
        EXPECT_DOUBLE_EQ(net.buffers.ComputeError(), c.output * c.output) << "error, V=" << c.inputWeight;
    }
}

TEST(NetworkOutput, TwoInputsFollowTheOutputFormulaAndUsedLeavesTheRestOut) {
    CSample s({1, 2, 3, 0, 5});
    const engine::CNetwork net = s.Net();
    const double x[] = {0.3, -0.7};
    double both = net.pOutputWeights[0], first = both;
    for (int h = 0; h < 3; ++h) {
        const double a = x[0] * net.pInputWeights[2 * h] - net.pCenters[2 * h];
        const double b = x[1] * net.pInputWeights[2 * h + 1] - net.pCenters[2 * h + 1];
        both += net.pOutputWeights[h + 1] * std::exp(-(a * a + b * b) / net.pWidths[h]);
        first += net.pOutputWeights[h + 1] * std::exp(-(a * a) / net.pWidths[h]);
    }
    EXPECT_DOUBLE_EQ(engine::NetworkOutput(net, x, 2, CCancelToken::Never()), both);
    EXPECT_DOUBLE_EQ(engine::NetworkOutput(net, x, 1, CCancelToken::Never()), first) << "used = 1";
    const double target = 0.0;
    s.buffers.SetPatterns(x, &target, 1, 2);
    s.buffers.ComputeOutputs();
    EXPECT_DOUBLE_EQ(s.buffers.Outputs()[0], both) << "the error measure's output";
}

TEST(FindWorstPattern, FirstOfEqualLargestErrorsWinsAndNoPatternGivesZero) {
    const double outputs[] = {0.0, 0.0, 0.0};
    struct Case {
        std::vector<double> targets;
        UINT worst;
    };
    for (const Case& c : {Case{{0.5, -0.5, 0.25}, 0}, Case{{0.5, -0.5, -0.75}, 2}, Case{{0.1, 0.5, 0.5}, 1}})
        EXPECT_EQ(engine::FindWorstPattern(c.targets.data(), outputs, 3), c.worst)
            << "targets " << c.targets[0] << ", " << c.targets[1] << ", " << c.targets[2];
    EXPECT_EQ(engine::FindWorstPattern(nullptr, nullptr, 0), 0u) << "no pattern must read nothing";
}

TEST(AddUnitAtWorstPattern, NewUnitIsCentredOnTheWorstRowWithWeightsAndWidthOne) {
    CSample s({6, 2, 3, 2, 4});
    s.buffers.ResetNetwork();
    ASSERT_EQ(s.buffers.Units(), 0u);
    EXPECT_EQ(s.Net().pOutputWeights[0], 1.0) << "a reset network's bias";
    s.buffers.ComputeOutputs();
    const UINT worst = engine::FindWorstPattern(s.Targets(), s.buffers.Outputs().data(), 6);
    s.buffers.AddUnitAtWorstPattern();
    const engine::CNetwork net = s.Net();
    ASSERT_EQ(net.nUnits, 1u);
    EXPECT_EQ(Copy(net.pCenters, 2), Copy(s.Inputs() + 2 * worst, 2)) << "center of the new unit";
    EXPECT_EQ(Copy(net.pInputWeights, 2), std::vector<double>(2, 1.0)) << "input weights of the new unit";
    EXPECT_EQ(net.pOutputWeights[1], 1.0) << "output weight of the new unit";
    EXPECT_EQ(net.pWidths[0], 1.0) << "width of the new unit";
}
