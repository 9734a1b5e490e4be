// The workspace's sixteen heap blocks: the counts each one's size follows, and the one place that replaces,
// grows and releases them. A block is never resized: it is released and allocated anew (or, where it fits
// already, kept), and a grown block is a new block that starts with the old one's rows.
#pragma once

#include <cstddef>
#include <initializer_list>

class CVantrelDlg;

enum class Block {
    Inputs,             // patterns x inputs
    Targets,            // patterns x outputs
    InputWeights,       // units x inputs
    OutputWeights,      // (units + 1) x outputs, the bias first
    Widths,             // units
    Centers,            // units x inputs
    InitInputWeights,   // as InputWeights
    InitOutputWeights,  // as OutputWeights
    InitWidths,         // as Widths
    InitCenters,        // as Centers
    Outputs,            // patterns x outputs
    Gradient,           // params
    Hessian,            // params x params
    HessianInv,         // params x params
    Params,             // params
    Delta,              // params
};
constexpr int kBlockCount = 16;

// The counts that size the blocks.
struct CBlockCounts {
    std::size_t patterns = 0;
    std::size_t inputs = 0;
    std::size_t outputs = 0;
    std::size_t units = 0;
    std::size_t params = 0;
};

// The counts of the workspace as they stand.
CBlockCounts CountsOf(const CVantrelDlg& dlg);
// Elements of a block for the given counts; std::bad_alloc when the number does not fit in memory's addresses.
std::size_t BlockSize(Block block, const CBlockCounts& counts);
// The one place where a block is taken: count elements of 0.0, or std::bad_alloc.
double* AllocateBlock(std::size_t count);

// Releases the named blocks and allocates each anew at its size for the counts, every element 0.0. All new
// blocks are taken before an old one goes: when memory runs out this throws std::bad_alloc and the workspace
// is as it was. The workspace's counts are the caller's to set.
void ReplaceBlocks(CVantrelDlg& dlg, std::initializer_list<Block> blocks, const CBlockCounts& counts);
// The same for the blocks that have not their size for the counts already; a block that has keeps its place
// and its elements. For blocks that every use overwrites whole.
void FitBlocks(CVantrelDlg& dlg, std::initializer_list<Block> blocks, const CBlockCounts& counts);
// The same as ReplaceBlocks, but each new block begins with the elements of the old one (its rows, as the workspace's counts
// now shape it) and only what lies beyond them is 0.0. For counts that add rows: more patterns behind the
// old ones, more units behind the old ones.
void GrowBlocks(CVantrelDlg& dlg, std::initializer_list<Block> blocks, const CBlockCounts& counts);
// Releases the named blocks; each is null afterwards.
void ReleaseBlocks(CVantrelDlg& dlg, std::initializer_list<Block> blocks);
