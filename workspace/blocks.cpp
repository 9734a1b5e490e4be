#include "workspace/blocks.h"

#include <algorithm>
#include <limits>
#include <memory>
#include <mutex>
#include <unordered_map>
#include <new>
#include <vector>

#include "engine/memory.h"
#include "workspace/workspace.h"

namespace {

// What a block's rows and columns count.
enum class Extent { Patterns, Inputs, Outputs, Units, UnitsAndBias, Params, One };

struct CBlockShape {
    Block block;
    double* CVantrelDlg::*member;
    Extent rows;
    Extent columns;
};

// The shape of every block, in declared order: the one statement of which counts a block follows.
constexpr CBlockShape kShapes[kBlockCount] = {
    {Block::Inputs, &CVantrelDlg::m_pInputs, Extent::Patterns, Extent::Inputs},
    {Block::Targets, &CVantrelDlg::m_pTargets, Extent::Patterns, Extent::Outputs},
    {Block::InputWeights, &CVantrelDlg::m_pInputWeights, Extent::Units, Extent::Inputs},
    {Block::OutputWeights, &CVantrelDlg::m_pOutputWeights, Extent::UnitsAndBias, Extent::Outputs},
    {Block::Widths, &CVantrelDlg::m_pWidths, Extent::Units, Extent::One},
    {Block::Centers, &CVantrelDlg::m_pCenters, Extent::Units, Extent::Inputs},
    {Block::InitInputWeights, &CVantrelDlg::m_pInitInputWeights, Extent::Units, Extent::Inputs},
    {Block::InitOutputWeights, &CVantrelDlg::m_pInitOutputWeights, Extent::UnitsAndBias, Extent::Outputs},
    {Block::InitWidths, &CVantrelDlg::m_pInitWidths, Extent::Units, Extent::One},
    {Block::InitCenters, &CVantrelDlg::m_pInitCenters, Extent::Units, Extent::Inputs},
    {Block::Outputs, &CVantrelDlg::m_pOutputs, Extent::Patterns, Extent::Outputs},
    {Block::Gradient, &CVantrelDlg::m_pGradient, Extent::Params, Extent::One},
    {Block::Hessian, &CVantrelDlg::m_pHessian, Extent::Params, Extent::Params},
    {Block::HessianInv, &CVantrelDlg::m_pHessianInv, Extent::Params, Extent::Params},
    {Block::Params, &CVantrelDlg::m_pParams, Extent::Params, Extent::One},
    {Block::Delta, &CVantrelDlg::m_pDelta, Extent::Params, Extent::One},
};

constexpr bool InDeclaredOrder() {
    for (int i = 0; i < kBlockCount; ++i)
        if (kShapes[i].block != static_cast<Block>(i)) return false;
    return true;
}
static_assert(InDeclaredOrder(), "a block's shape stands at the place of its name");

const CBlockShape& ShapeOf(Block block) { return kShapes[static_cast<int>(block)]; }

std::size_t CountOf(Extent extent, const CBlockCounts& counts) {
    switch (extent) {
        case Extent::Patterns: return counts.patterns;
        case Extent::Inputs: return counts.inputs;
        case Extent::Outputs: return counts.outputs;
        case Extent::Units: return counts.units;
        case Extent::UnitsAndBias: return counts.units + 1;
        case Extent::Params: return counts.params;
        case Extent::One: return 1;
    }
    return 0;
}

// The elements of every block taken here and not yet released, by its address: what FitBlocks compares with.
std::mutex g_sizesMutex;
std::unordered_map<const double*, std::size_t> g_sizes;

void Release(double*& slot) {
    {
        const std::lock_guard<std::mutex> lock(g_sizesMutex);
        g_sizes.erase(slot);
    }
    delete[] slot;
    slot = nullptr;
}

bool HasSize(const double* block, std::size_t size) {
    const std::lock_guard<std::mutex> lock(g_sizesMutex);
    const auto found = g_sizes.find(block);
    return block != nullptr && found != g_sizes.end() && found->second == size;
}

// New blocks for the named ones, each starting with up to keep(old size) elements of the old block; then the
// old ones go and the new ones take their places.
void Renew(CVantrelDlg& dlg, const std::vector<Block>& blocks, const CBlockCounts& counts, bool keepOld) {
    const CBlockCounts now = CountsOf(dlg);
    // Counts a user chooses size these blocks, and the system grants far more than it has: a block beyond the
    // memory would be handed out and the program killed while filling it. So they are refused before any is
    // taken, old and new counted together, as both live side by side for a moment.
    double total = 0;
    for (Block block : blocks) total += static_cast<double>(BlockSize(block, counts));
    if (!engine::DoublesFit(total)) throw std::bad_alloc();
    std::vector<std::unique_ptr<double[]>> fresh;
    fresh.reserve(blocks.size());
    for (Block block : blocks) {
        const std::size_t size = BlockSize(block, counts);
        fresh.emplace_back(AllocateBlock(size));
        const double* old = dlg.*ShapeOf(block).member;
        if (keepOld && old) std::copy_n(old, std::min(size, BlockSize(block, now)), fresh.back().get());
    }
    std::size_t k = 0;
    for (Block block : blocks) {
        double*& slot = dlg.*ShapeOf(block).member;
        Release(slot);
        slot = fresh[k++].release();
    }
}

}  // namespace

CBlockCounts CountsOf(const CVantrelDlg& dlg) {
    CBlockCounts counts;
    counts.patterns = dlg.m_nPatterns;
    counts.inputs = dlg.m_nInputs;
    counts.outputs = dlg.m_nOutputs;
    counts.units = dlg.m_nUnits;
    counts.params = dlg.m_nParams;
    return counts;
}

std::size_t BlockSize(Block block, const CBlockCounts& counts) {
    const CBlockShape& shape = ShapeOf(block);
    const std::size_t rows = CountOf(shape.rows, counts);
    const std::size_t columns = CountOf(shape.columns, counts);
    if (columns != 0 && rows > std::numeric_limits<std::size_t>::max() / sizeof(double) / columns)
        throw std::bad_alloc();
    return rows * columns;
}

double* AllocateBlock(std::size_t count) {
    double* block = new double[count]();
    const std::lock_guard<std::mutex> lock(g_sizesMutex);
    g_sizes[block] = count;
    return block;
}

void ReplaceBlocks(CVantrelDlg& dlg, std::initializer_list<Block> blocks, const CBlockCounts& counts) {
    Renew(dlg, blocks, counts, false);
}

void FitBlocks(CVantrelDlg& dlg, std::initializer_list<Block> blocks, const CBlockCounts& counts) {
    std::vector<Block> misfits;
    for (Block block : blocks)
        if (!HasSize(dlg.*ShapeOf(block).member, BlockSize(block, counts))) misfits.push_back(block);
    Renew(dlg, misfits, counts, false);
}

void GrowBlocks(CVantrelDlg& dlg, std::initializer_list<Block> blocks, const CBlockCounts& counts) {
    Renew(dlg, blocks, counts, true);
}

void ReleaseBlocks(CVantrelDlg& dlg, std::initializer_list<Block> blocks) {
    for (Block block : blocks) Release(dlg.*ShapeOf(block).member);
}

void CVantrelDlg::ReleaseArrays() {
    for (const CBlockShape& shape : kShapes) Release(this->*shape.member);
}
