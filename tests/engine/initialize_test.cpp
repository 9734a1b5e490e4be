// The draw of a new network: which random number goes where, the bounds, the center modes, and the seeded
// source that reproduces a draw.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <random>
#include <set>
#include <vector>

#include "engine/draw.h"
#include "network_test_support.h"

namespace {

using engine::UINT;

// Numbers of a fixed sequence (or one constant), each kept so that a test can replay where it went.
class CRecordingRandom : public engine::CRandomSource {
public:
    explicit CRecordingRandom(int constant = -1) : m_constant(constant) {}
    int Next() override {
        given.push_back(m_constant >= 0 ? m_constant : static_cast<int>(m_generator() >> 1));
        return given.back();
    }
    // The value Between(a, b) of the k-th number.
    double Drawn(size_t k, double a, double b) const { return (b - a) * ((given.at(k) % 10000) * 0.0001) + a; }
    std::vector<int> given;

private:
    int m_constant;
    std::mt19937 m_generator{12345};
};

// P patterns (row p holds p, p + 0.5, ...) and u units, all groups fixed (0.25, -2, 3) unless a test says
// otherwise.
struct Draw {
    Draw(UINT patterns, UINT inputs, UINT units) {
        std::vector<double> rows(static_cast<size_t>(patterns) * inputs), targets(patterns, 0.0);
        for (UINT p = 0; p < patterns; ++p)
            for (UINT i = 0; i < inputs; ++i) rows[static_cast<size_t>(p) * inputs + i] = p + 0.5 * i;
        buffers.SetPatterns(rows.data(), targets.data(), patterns, inputs);
        buffers.SetUnits(units);
        for (engine::CGroupDraw* g : {&settings.inputWeights, &settings.outputWeights, &settings.widths})
            g->mode = engine::kGroupFixed;
        settings.inputWeights.fixed = 0.25;
        settings.outputWeights.fixed = -2.0;
        settings.widths.fixed = 3.0;
    }
    engine::CNetwork Run(int centerMode) {
        settings.centerMode = centerMode;
        buffers.SetInitialization(settings, &random);
        buffers.InitializeNetwork();
        return buffers.Network();
    }
    engine::CInitSettings settings;
    CRecordingRandom random;
    engine::CNetworkBuffers buffers;
};

}  // namespace

TEST(DrawNetwork, RandomGroupsDrawInOrderInputWeightsOutputWeightsWidthsCenters) {
    Draw d(6, 2, 3);
    d.settings.inputWeights = {engine::kGroupRandom, -1.0, 1.0, 0.0};
    d.settings.outputWeights = {engine::kGroupRandom, 2.0, 4.0, 0.0};
    d.settings.widths = {engine::kGroupRandom, 0.1, 0.2, 0.0};
    const engine::CNetwork net = d.Run(engine::kCentersFromInputRange);
    ASSERT_EQ(d.random.given.size(), 6u + 4 + 3 + 6) << "one number per drawn element";
    for (size_t k = 0; k < 6; ++k)
        EXPECT_EQ(net.pInputWeights[k], d.random.Drawn(k, -1.0, 1.0)) << "input weight " << k;
    for (size_t k = 0; k < 4; ++k)
        EXPECT_EQ(net.pOutputWeights[k], d.random.Drawn(6 + k, 2.0, 4.0)) << "output weight " << k;
    for (size_t k = 0; k < 3; ++k) EXPECT_EQ(net.pWidths[k], d.random.Drawn(10 + k, 0.1, 0.2)) << "width " << k;
    // Ranges over rows p, p + 0.5: input 0 in [0, 5], input 1 in [0.5, 5.5].
    for (size_t h = 0; h < 3; ++h) {
        EXPECT_EQ(net.pCenters[2 * h], d.random.Drawn(13 + 2 * h, 0.0, 5.0)) << "center " << h << ",0";
        EXPECT_EQ(net.pCenters[2 * h + 1], d.random.Drawn(14 + 2 * h, 0.5, 5.5)) << "center " << h << ",1";
    }
    const engine::CNetwork initial = d.buffers.InitialNetwork();
    EXPECT_EQ(Copy(initial.pInputWeights, 6), Copy(net.pInputWeights, 6)) << "initial copy of the input weights";
    EXPECT_EQ(Copy(initial.pOutputWeights, 4), Copy(net.pOutputWeights, 4)) << "initial copy of the output weights";
    EXPECT_EQ(Copy(initial.pWidths, 3), Copy(net.pWidths, 3)) << "initial copy of the widths";
    EXPECT_EQ(Copy(initial.pCenters, 6), Copy(net.pCenters, 6)) << "initial copy of the centers";
}

TEST(DrawNetwork, FixedGroupsTakeNoRandomNumberSoCentersGetTheFirst) {
    Draw d(50, 2, 4);
    const engine::CNetwork net = d.Run(engine::kCentersFromPatterns);
    ASSERT_EQ(d.random.given.size(), 4u);
    for (size_t h = 0; h < 4; ++h) {
        const UINT q = static_cast<UINT>(d.random.given[h]) % 50;
        EXPECT_EQ(net.pCenters[2 * h], static_cast<double>(q)) << "unit " << h;
        EXPECT_EQ(net.pCenters[2 * h + 1], q + 0.5) << "unit " << h;
    }
    EXPECT_EQ(Copy(net.pInputWeights, 8), std::vector<double>(8, 0.25));
    EXPECT_EQ(Copy(net.pOutputWeights, 5), std::vector<double>(5, -2.0));
    EXPECT_EQ(Copy(net.pWidths, 4), std::vector<double>(4, 3.0));
}

TEST(DrawNetwork, UniqueCentersUseEveryRowOnceWhenUnitsEqualPatterns) {
    Draw d(40, 1, 40);
    const engine::CNetwork net = d.Run(engine::kCentersFromPatternsUnique);
    EXPECT_EQ(net.pCenters[0], static_cast<double>(static_cast<UINT>(d.random.given[0]) % 40))
        << "the first unit takes the first draw";
    std::vector<double> rows = Copy(net.pCenters, 40);
    std::sort(rows.begin(), rows.end());
    for (int p = 0; p < 40; ++p) EXPECT_EQ(rows[p], static_cast<double>(p)) << "row " << p << " not used exactly once";
}

TEST(DrawNetwork, UniqueCentersWithMoreUnitsThanPatternsEndWithRepeatedRows) {
    // The Initialization dialog refuses this; a stale count must still not hang the draw.
    Draw d(3, 1, 7);
    const engine::CNetwork net = d.Run(engine::kCentersFromPatternsUnique);
    const std::set<double> first(net.pCenters, net.pCenters + 3);
    EXPECT_EQ(first.size(), 3u) << "the first units still take distinct rows";
    for (int h = 3; h < 7; ++h) EXPECT_TRUE(first.count(net.pCenters[h])) << "unit " << h << " took no pattern row";
}

TEST(DrawNetwork, DrawsReachTheLowerBoundButStayBelowTheUpper) {
    struct Case {
        int number;
        double min, max, expected;
    };
    // Only the number's last four digits count: 10000 gives the lower bound, 9999 the largest value.
    for (const Case c : {Case{10000, 0.5, 1.0, 0.5}, Case{9999, 0.5, 1.0, 0.99995}, Case{9999, 0.7, 0.7, 0.7}}) {
        Draw d(2, 1, 3);
        d.random = CRecordingRandom(c.number);
        d.settings.widths = {engine::kGroupRandom, c.min, c.max, 0.0};
        const engine::CNetwork net = d.Run(engine::kCentersFromPatterns);
        EXPECT_DOUBLE_EQ(net.pWidths[2], c.expected) << "number " << c.number << " in [" << c.min << ", " << c.max;
    }
}

TEST(DrawNetwork, RangeOfAConstantInputGivesThatValueInEveryUnit) {
    const double rows[] = {0.0, -1.5, 1.0, -1.5, 2.0, -1.5}, targets[3] = {};
    Draw d(0, 2, 0);
    d.buffers.SetPatterns(rows, targets, 3, 2);
    d.buffers.SetUnits(6);
    const engine::CNetwork net = d.Run(engine::kCentersFromInputRange);
    for (int h = 0; h < 6; ++h) EXPECT_EQ(net.pCenters[2 * h + 1], -1.5) << "unit " << h;
}

TEST(DrawNetwork, NoPatternLeavesCentersAtZeroAndTakesNoNumberInEveryMode) {
    for (int mode : {engine::kCentersFromInputRange, engine::kCentersFromPatterns,
                     engine::kCentersFromPatternsUnique}) {
        Draw d(0, 2, 3);
        std::fill_n(d.buffers.Network().pCenters, 6, 42.0);
        const engine::CNetwork net = d.Run(mode);
        EXPECT_EQ(Copy(net.pCenters, 6), std::vector<double>(6, 0.0)) << "mode " << mode;
        EXPECT_EQ(Copy(d.buffers.InitialNetwork().pCenters, 6), std::vector<double>(6, 0.0)) << "mode " << mode;
        EXPECT_TRUE(d.random.given.empty()) << "mode " << mode;
        EXPECT_EQ(net.pWidths[0], 3.0) << "the other groups are drawn as usual, mode " << mode;
    }
}

TEST(CSeededRand, GivesTheCLibraryNumbersOfItsSeed) {
    // 0 seeds as 1 does; seeds from 2^31 on are read as negative words; the window seeds with the tick count.
    for (unsigned seed : {0u, 1u, 2u, 77u, 123456789u, 0x7FFFFFFFu, 0x80000000u, 0xDEADBEEFu, 0xFFFFFFFFu}) {
        engine::CSeededRand seeded(seed);
        std::vector<int> fromSource;
        for (int k = 0; k < 1000; ++k) fromSource.push_back(seeded.Next());
        std::srand(seed);
        for (int k = 0; k < 1000; ++k) ASSERT_EQ(fromSource[k], std::rand()) << "seed " << seed << ", number " << k;
    }
}

TEST(CSeededRand, KeepsItsStateToItself) {
    // Two sources drawn in turn, and the C library's generator reseeded between, each give their own sequence.
    engine::CSeededRand first(5), second(5);
    std::vector<int> alternating;
    for (int k = 0; k < 50; ++k) {
        alternating.push_back(first.Next());
        std::srand(99);
        EXPECT_EQ(second.Next(), alternating.back()) << "number " << k;
    }
    engine::CSeededRand alone(5);
    for (int k = 0; k < 50; ++k) EXPECT_EQ(alone.Next(), alternating[k]) << "number " << k;
}

TEST(CSeededRand, DrawsOfTheBuffersFollowTheSeedGiven) {
    // The buffers draw from the caller's seeded generator; nothing of their own reseeds it between draws.
    auto widthsOf = [](unsigned seed) {
        Draw d(6, 1, 3);
        d.settings.widths = {engine::kGroupRandom, 0.1, 0.9, 0.0};
        engine::CSeededRand seeded(seed);
        d.buffers.SetInitialization(d.settings, &seeded);
        d.buffers.InitializeNetwork();
        return Copy(d.buffers.Network().pWidths, 3);
    };
    EXPECT_EQ(widthsOf(7), widthsOf(7));
    EXPECT_NE(widthsOf(7), widthsOf(8));
}
