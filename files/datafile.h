// The data set reader: patterns, one a row, the inputs and then the desired output, read by the number-row
// scanner. The file has no header; its shape is what the text holds.
#pragma once

#include <cstddef>
#include <string_view>

#include "platform/types.h"

// The file dialog filter of every file of patterns: data sets, testing files, new data.
inline constexpr const char* kDataFileFilter =
    "Text files (*.txt)|*.txt|Data files (*.dat)|*.dat|All files (*.*)|*.*||";

// The message when a data set's counts or blocks would not fit in memory.
inline constexpr const char* kDataSetTooLarge = "Data set is too large to load!";

struct CDataSetShape {
    std::size_t patterns = 0;  // rows of the text
    std::size_t columns = 0;   // tokens of the first row; 0 for a text without rows
};

CDataSetShape MeasureDataSet(std::string_view text);

// Reads every row of text. Within a row the first nInputs tokens go to inputs, the others to targets; both
// run on across rows, so values fall in reading order and a short row is not padded. A value for which its
// array has no room left (a row longer than the first) is counted but not stored. Returns the number of
// values read, stored or not.
std::size_t ReadPatternRows(std::string_view text, UINT nInputs, double* inputs, std::size_t inputRoom,
                            double* targets, std::size_t targetRoom);
