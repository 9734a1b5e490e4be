// A file of patterns read in blocks of whole lines, so that a set larger than memory can be read where it is
// used: each block but the file's last ends in LF, and read block by block it gives the values, counts and
// refusals of the whole file read at once (datafile.h), wherever the blocks are cut.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "platform/types.h"

// The scan text of one block. The file's text ends at its first NUL byte and gains "\r\n" there or at the
// file's end, as MakeScanText makes it: so does the block that holds the NUL, or one that does not end in LF,
// which only the file's last can. (After a final LF the "\r\n" would make no row, so a last block that ends
// in LF needs none.)
struct CBlockText {
    std::string text;
    bool endsText = false;  // a NUL ends the file's text within this block: no later block counts
};
CBlockText MakeBlockText(const char* bytes, std::size_t length);

// How many rows of each token count the block holds (tokensOfRows[t] rows of t tokens), and the token count
// of its first row (-1 when it has none): enough to give the whole file's shape and each block's share of the
// input and target values, whatever the number of inputs.
struct CBlockMeasure {
    std::vector<std::size_t> tokensOfRows;
    long long firstRowTokens = -1;
};
CBlockMeasure MeasureBlock(std::string_view text);

// The block's values as the whole file's reading stores them: within a row the first nInputs tokens are
// inputs, the others targets, and both run on from row to row.
void ReadBlockValues(std::string_view text, UINT nInputs, std::vector<double>& inputs, std::vector<double>& targets);

// Values that the rows of a measure give to the inputs (first) and the targets of nInputs inputs.
std::size_t InputValues(const CBlockMeasure& measure, std::size_t nInputs);
std::size_t TargetValues(const CBlockMeasure& measure, std::size_t nInputs);
