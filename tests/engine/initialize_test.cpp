// The draw of a new network: which random number goes where, the bounds, and the center modes.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <set>
#include <vector>

#include "reference/reference.h"
#include "platform/clock.h"
#include "workspace/blocks.h"
#include "workspace/workspace.h"

namespace {

// A workspace of P patterns (row p holds p, p + 0.5, ...) and u units, network arrays allocated.
void Prepare(CVantrelDlg& dlg, UINT patterns, UINT inputs, UINT units) {
    MakeSample(dlg, {patterns, inputs, units, 0, 1});
    for (UINT p = 0; p < patterns; ++p)
        for (UINT i = 0; i < inputs; ++i) dlg.m_pInputs[p * inputs + i] = p + 0.5 * i;
    ReplaceBlocks(dlg, {Block::InitInputWeights, Block::InitOutputWeights, Block::InitWidths, Block::InitCenters},
                  CountsOf(dlg));
}

double Draw(double a, double b) { return (b - a) * ((std::rand() % 10000) * 0.0001) + a; }

// Runs InitializeNetwork; when the tick did not move across it, seeds the C library as it did and lets
// check replay the draws. Retries a few times if the tick moved.
void InitializeAndReplay(CVantrelDlg& dlg, const std::function<void()>& check) {
    for (int attempt = 0; attempt < 100; ++attempt) {
        const DWORD before = GetTickCount();
        dlg.InitializeNetwork();
        if (GetTickCount() != before) continue;
        std::srand(before);
        check();
        return;
    }
    FAIL() << "the tick never stood still across one InitializeNetwork";
}

void SetAllFixed(CInitializationDlg& s) {
    s.m_nInputWeightMode = s.m_nOutputWeightMode = s.m_nWidthMode = 1;
    s.m_dInputWeightFixed = 0.25;
    s.m_dOutputWeightFixed = -2.0;
    s.m_dWidthFixed = 3.0;
}

}  // namespace

TEST(InitializeNetwork, RandomGroupsDrawInOrderInputWeightsOutputWeightsWidthsCenters) {
    CVantrelDlg dlg;
    Prepare(dlg, 6, 2, 3);
    CInitializationDlg& s = dlg.m_dlgInitialization;
    s.m_nInputWeightMode = s.m_nOutputWeightMode = s.m_nWidthMode = 0;
    s.m_dInputWeightMin = -1.0;
    s.m_dInputWeightMax = 1.0;
    s.m_dOutputWeightMin = 2.0;
    s.m_dOutputWeightMax = 4.0;
    s.m_dWidthMin = 0.1;
    s.m_dWidthMax = 0.2;
    s.m_nCenterMode = 0;
    InitializeAndReplay(dlg, [&] {
        for (int k = 0; k < 6; ++k) EXPECT_EQ(dlg.m_pInputWeights[k], Draw(-1.0, 1.0)) << "input weight " << k;
        for (int k = 0; k < 4; ++k) EXPECT_EQ(dlg.m_pOutputWeights[k], Draw(2.0, 4.0)) << "output weight " << k;
        for (int k = 0; k < 3; ++k) EXPECT_EQ(dlg.m_pWidths[k], Draw(0.1, 0.2)) << "width " << k;
        // Ranges over rows p, p + 0.5: input 0 in [0, 5], input 1 in [0.5, 5.5].
        for (int h = 0; h < 3; ++h) {
            EXPECT_EQ(dlg.m_pCenters[2 * h], Draw(0.0, 5.0)) << "center " << h << ",0";
            EXPECT_EQ(dlg.m_pCenters[2 * h + 1], Draw(0.5, 5.5)) << "center " << h << ",1";
        }
    });
    EXPECT_TRUE(std::equal(dlg.m_pCenters, dlg.m_pCenters + 6, dlg.m_pInitCenters));
    EXPECT_TRUE(std::equal(dlg.m_pWidths, dlg.m_pWidths + 3, dlg.m_pInitWidths));
    EXPECT_TRUE(std::equal(dlg.m_pOutputWeights, dlg.m_pOutputWeights + 4, dlg.m_pInitOutputWeights));
    EXPECT_TRUE(std::equal(dlg.m_pInputWeights, dlg.m_pInputWeights + 6, dlg.m_pInitInputWeights));
}

TEST(InitializeNetwork, FixedGroupsTakeNoRandomNumberSoCentersGetTheFirst) {
    CVantrelDlg dlg;
    Prepare(dlg, 50, 2, 4);
    SetAllFixed(dlg.m_dlgInitialization);
    dlg.m_dlgInitialization.m_nCenterMode = 1;
    InitializeAndReplay(dlg, [&] {
        for (int h = 0; h < 4; ++h) {
            const UINT q = static_cast<UINT>(std::rand()) % 50;
            EXPECT_EQ(dlg.m_pCenters[2 * h], static_cast<double>(q)) << "unit " << h;
            EXPECT_EQ(dlg.m_pCenters[2 * h + 1], q + 0.5) << "unit " << h;
        }
    });
    for (int k = 0; k < 8; ++k) EXPECT_EQ(dlg.m_pInputWeights[k], 0.25);
    for (int k = 0; k < 5; ++k) EXPECT_EQ(dlg.m_pOutputWeights[k], -2.0);
    for (int k = 0; k < 4; ++k) EXPECT_EQ(dlg.m_pWidths[k], 3.0);
}

TEST(InitializeNetwork, UniqueCentersUseEveryRowOnceWhenUnitsEqualPatterns) {
    CVantrelDlg dlg;
    Prepare(dlg, 40, 1, 40);
    SetAllFixed(dlg.m_dlgInitialization);
    dlg.m_dlgInitialization.m_nCenterMode = 2;
    InitializeAndReplay(dlg, [&] {
        EXPECT_EQ(dlg.m_pCenters[0], static_cast<double>(static_cast<UINT>(std::rand()) % 40)) << "the first unit takes the first draw";
    });
    std::vector<double> rows(dlg.m_pCenters, dlg.m_pCenters + 40);
    std::sort(rows.begin(), rows.end());
    for (int p = 0; p < 40; ++p) EXPECT_EQ(rows[p], static_cast<double>(p)) << "row " << p << " not used exactly once";
}

TEST(InitializeNetwork, UniqueCentersWithMoreUnitsThanPatternsEndWithRepeatedRows) {
    // The dialog refuses this; a stale count must still not hang the draw.
    CVantrelDlg dlg;
    Prepare(dlg, 3, 1, 7);
    SetAllFixed(dlg.m_dlgInitialization);
    dlg.m_dlgInitialization.m_nCenterMode = 2;
    dlg.InitializeNetwork();
    std::set<double> first(dlg.m_pCenters, dlg.m_pCenters + 3);
    EXPECT_EQ(first.size(), 3u) << "the first units still take distinct rows";
    for (int h = 3; h < 7; ++h) EXPECT_TRUE(first.count(dlg.m_pCenters[h])) << "unit " << h;
}

TEST(InitializeNetwork, DrawsStayBelowTheUpperBound) {
    CVantrelDlg dlg;
    Prepare(dlg, 2, 1, 20000);
    CInitializationDlg& s = dlg.m_dlgInitialization;
    s.m_nWidthMode = 0;
    s.m_dWidthMin = 0.5;
    s.m_dWidthMax = 1.0;
    s.m_nOutputWeightMode = 0;
    s.m_dOutputWeightMin = s.m_dOutputWeightMax = 0.7;
    s.m_nCenterMode = 1;
    dlg.InitializeNetwork();
    const double largest = *std::max_element(dlg.m_pWidths, dlg.m_pWidths + 20000);
    const double smallest = *std::min_element(dlg.m_pWidths, dlg.m_pWidths + 20000);
    EXPECT_LT(largest, 1.0);
    EXPECT_LE(largest, 0.99995 + 1e-12);
    EXPECT_GE(smallest, 0.5);
    for (int k = 0; k < 20001; ++k) ASSERT_EQ(dlg.m_pOutputWeights[k], 0.7) << "equal bounds, weight " << k;
}

TEST(InitializeNetwork, RangeOfAConstantInputGivesThatValueInEveryUnit) {
    CVantrelDlg dlg;
    Prepare(dlg, 5, 2, 6);
    for (int p = 0; p < 5; ++p) dlg.m_pInputs[2 * p + 1] = -1.5;
    dlg.m_dlgInitialization.m_nCenterMode = 0;
    dlg.InitializeNetwork();
    for (int h = 0; h < 6; ++h) EXPECT_EQ(dlg.m_pCenters[2 * h + 1], -1.5) << "unit " << h;
}

TEST(InitializeNetwork, NoPatternLeavesCentersAtZeroInEveryMode) {
    for (int mode : {0, 1, 2}) {
        CVantrelDlg dlg;
        Prepare(dlg, 0, 2, 3);
        for (int k = 0; k < 6; ++k) dlg.m_pCenters[k] = 42.0;
        dlg.m_dlgInitialization.m_nCenterMode = mode;
        dlg.InitializeNetwork();
        for (int k = 0; k < 6; ++k) {
            EXPECT_EQ(dlg.m_pCenters[k], 0.0) << "mode " << mode;
            EXPECT_EQ(dlg.m_pInitCenters[k], 0.0) << "mode " << mode;
        }
        EXPECT_EQ(dlg.m_pWidths[0], 1.0) << "the other groups are drawn as usual";
    }
}

TEST(InitializeNetwork, TwoCallsWithinOneTickDrawTheSameNetwork) {
    CVantrelDlg dlg;
    Prepare(dlg, 30, 2, 5);
    CInitializationDlg& s = dlg.m_dlgInitialization;
    s.m_nInputWeightMode = s.m_nOutputWeightMode = s.m_nWidthMode = 0;
    for (int attempt = 0; attempt < 100; ++attempt) {
        const DWORD before = GetTickCount();
        dlg.InitializeNetwork();
        const std::vector<double> widths(dlg.m_pWidths, dlg.m_pWidths + 5), centers(dlg.m_pCenters, dlg.m_pCenters + 10);
        dlg.InitializeNetwork();
        if (GetTickCount() != before) continue;
        EXPECT_EQ(std::vector<double>(dlg.m_pWidths, dlg.m_pWidths + 5), widths);
        EXPECT_EQ(std::vector<double>(dlg.m_pCenters, dlg.m_pCenters + 10), centers);
        return;
    }
    FAIL() << "the tick never stood still across two calls";
}
