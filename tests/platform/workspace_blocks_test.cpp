// The workspace's blocks: growth keeps the old rows, and memory that runs out changes nothing.
#include <gtest/gtest.h>

#include <new>
#include <vector>

#include "workspace/blocks.h"
#include "workspace/workspace.h"

TEST(WorkspaceBlocks, GrowingKeepsTheOldRowsAndClearsTheNewOnes) {
    CVantrelDlg dlg;
    dlg.m_nPatterns = 2;
    dlg.m_nInputs = 2;
    dlg.m_nOutputs = 1;
    dlg.m_nUnits = 1;
    ReplaceBlocks(dlg, {Block::Inputs, Block::Centers, Block::OutputWeights}, CountsOf(dlg));
    for (int k = 0; k < 4; ++k) dlg.m_pInputs[k] = k + 1.0;
    dlg.m_pCenters[0] = 5.0;
    dlg.m_pCenters[1] = 6.0;
    dlg.m_pOutputWeights[1] = 7.0;

    CBlockCounts grown = CountsOf(dlg);
    grown.patterns = 3;  // a new pattern behind the old ones
    grown.units = 2;     // a new unit behind the old one
    GrowBlocks(dlg, {Block::Inputs, Block::Centers, Block::OutputWeights}, grown);
    EXPECT_EQ(std::vector<double>(dlg.m_pInputs, dlg.m_pInputs + 6), (std::vector<double>{1, 2, 3, 4, 0, 0}));
    EXPECT_EQ(std::vector<double>(dlg.m_pCenters, dlg.m_pCenters + 4), (std::vector<double>{5, 6, 0, 0}));
    EXPECT_EQ(std::vector<double>(dlg.m_pOutputWeights, dlg.m_pOutputWeights + 3), (std::vector<double>{0, 7, 0}))
        << "bias first, then one weight per unit";
}

TEST(WorkspaceBlocks, ASizeBeyondMemoryLeavesEveryBlockAsItWas) {
    CVantrelDlg dlg;
    dlg.m_nPatterns = 3;
    dlg.m_nOutputs = 1;
    ReplaceBlocks(dlg, {Block::Targets}, CountsOf(dlg));
    const double* targets = dlg.m_pTargets;
    CBlockCounts huge = CountsOf(dlg);
    huge.params = std::size_t(1) << 40;  // a quasi-Hessian of 2^80 elements
    EXPECT_THROW(ReplaceBlocks(dlg, {Block::Targets, Block::Hessian}, huge), std::bad_alloc);
    EXPECT_EQ(dlg.m_pTargets, targets) << "the block taken before the failing one must not replace the old";
    EXPECT_EQ(dlg.m_pHessian, nullptr);

    dlg.ReleaseArrays();
    EXPECT_EQ(dlg.m_pTargets, nullptr);
}

TEST(WorkspaceBlocks, FittingKeepsABlockOfItsSizeAndReplacesTheOthers) {
    CVantrelDlg dlg;
    dlg.m_nParams = 3;
    ReplaceBlocks(dlg, {Block::Gradient, Block::Hessian}, CountsOf(dlg));
    dlg.m_pGradient[0] = 4.0;
    const double* gradient = dlg.m_pGradient;
    FitBlocks(dlg, {Block::Gradient}, CountsOf(dlg));
    EXPECT_EQ(dlg.m_pGradient, gradient) << "a block of its size stays";
    EXPECT_EQ(dlg.m_pGradient[0], 4.0) << "and keeps what it holds";

    dlg.m_nParams = 2;
    FitBlocks(dlg, {Block::Gradient, Block::Hessian, Block::HessianInv}, CountsOf(dlg));
    EXPECT_EQ(std::vector<double>(dlg.m_pGradient, dlg.m_pGradient + 2), (std::vector<double>{0, 0}));
    EXPECT_EQ(std::vector<double>(dlg.m_pHessianInv, dlg.m_pHessianInv + 4), (std::vector<double>(4, 0.0)))
        << "a block that was not there is taken, cleared";
    const double* hessian = dlg.m_pHessian;
    FitBlocks(dlg, {Block::Hessian}, CountsOf(dlg));
    EXPECT_EQ(dlg.m_pHessian, hessian);
}
