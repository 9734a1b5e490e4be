// The data set reader: patterns, one a row, the inputs and then the desired output, read by the number-row
// scanner. The file has no header; its shape is what the text holds.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "platform/types.h"

// The file dialog filter of every file of patterns: data sets, testing files, new data.
inline constexpr const char* kDataFileFilter =
    "Text files (*.txt)|*.txt|Data files (*.dat)|*.dat|All files (*.*)|*.*||";

// The message when a data set's counts or blocks would not fit in memory.
inline constexpr const char* kDataSetTooLarge = "Data set is too large to load!";
// A data set whose values don't fill its rows, and the sets that can't be trained.
inline constexpr const char* kDataFileIncomplete = "Data file is incompleted!";
inline constexpr const char* kNoPatterns = "Data file holds no patterns!";
inline constexpr const char* kNoInputs = "Number of Inputs Should Be Larger Than Zero";

// True when a line of text ends in a bare LF, without the CR before it: the scanner then reads one character
// short at the end of each such line (a desired output loses its last digit).
bool HasBareLineFeeds(std::string_view text);

// The one-line conversion to CR LF line ends, for a file of that name in the working directory; lines that
// end in CR LF already stay as they are. The name is quoted for the shell where it needs it.
std::string CrLfConversion(std::string_view fileName);

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

// The patterns of a text as the number-row scanner reads them.
struct CPatternRows {
    CDataSetShape shape;
    UINT nInputs = 0;             // tokens of the first row less one; 0 for a text without rows
    std::vector<double> inputs;   // shape.patterns x nInputs
    std::vector<double> targets;  // shape.patterns desired outputs
    std::size_t values = 0;       // values read, stored or not: (nInputs + 1) x shape.patterns for a whole file
    bool bareLineFeeds = false;   // a line of the text ends in LF without CR (HasBareLineFeeds)
};

// The one reader of files of patterns: the data set, the testing file of Verification and the new data of
// online training. Measures text and reads every row as ReadPatternRows does, the last token of a row being its
// desired output; what short rows leave unreached stays 0.0. False when blocks of that shape don't fit in
// memory: rows then holds the shape and no value, and the caller says so where its own messages have it.
bool ReadPatterns(std::string_view text, CPatternRows& rows);

// The acceptance of a data set file: Ok, or the first of its rules that the file breaks, in this order.
enum class DataSetStatus {
    Ok,
    CannotOpen,      // the file does not open
    TextTooLarge,    // its text does not fit in memory
    CountsTooLarge,  // more patterns or columns than a count holds
    RowsTooLarge,    // its blocks would not fit in memory; rows holds the shape and no value
    Incomplete,      // its values don't fill its rows
    NoPatterns,      // it has no row
    NoInputs,        // its rows have no input before the desired output
};

// What a refused data set file is told with: the window's message box and the Python module's error.
const char* DataSetMessage(DataSetStatus status);

// The last three rules, on a data set's counts: its patterns, its inputs and the values its rows hold (a file
// read in blocks gives them block by block, patternblocks.h).
DataSetStatus CountsStatus(std::size_t patterns, std::size_t nInputs, std::size_t values);

// The one reading of a data set: the file at path read whole (ReadScanText), its patterns into rows
// (ReadPatterns), and the rules above checked. Before RowsTooLarge, rows holds nothing; from RowsTooLarge on
// it holds the shape, and from Incomplete on every value it read.
DataSetStatus ReadDataSet(const char* path, CPatternRows& rows);
