// Verification: a trained network run over a set of patterns, one row of text a pattern, each row written to
// two files as soon as it is made. The pieces here need no window: the workspace's CreateOutputFile and
// OnVerification with its dialogs build on them and show what went wrong.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "engine/network.h"
#include "platform/strings.h"
#include "platform/types.h"

class CFile;

// The two output files of a verification, made empty in the written files' directory: a new timestamped
// "..._output.txt" (CreateStampedFile) into stampedPath, then "output.txt" beside it, emptied, into outputPath.
// Made, or the first that could not be made, with the system's error number in error.
enum class OutputFiles { Made, StampedFailed, OutputFailed };
OutputFiles CreateOutputFiles(CString& stampedPath, CString& outputPath, int& error);

// One axis of a generated grid: points values from min to max, both included.
struct CGridAxis {
    double min = 0.0;
    double max = 0.0;
    UINT points = 0;

    double At(UINT n) const;
};

// The patterns of one press, handed out one at a time. Patterns from the workspace or a testing file stand in
// blocks of their own; a generated grid is computed from the pattern's index, so that a grid of a million
// points takes no memory and a grid that no memory could hold still runs.
class CPatternSet {
public:
    CPatternSet() = default;  // no patterns
    // inputs holds count x nInputs values, targets count x nOutputs; the first output of a pattern is its
    // desired output.
    CPatternSet(UINT nInputs, UINT nOutputs, std::size_t count, std::vector<double> inputs,
                std::vector<double> targets);
    explicit CPatternSet(const CGridAxis& x);
    // Pattern ix x y.points + iy has the inputs x.At(ix), y.At(iy): x changes slowest.
    CPatternSet(const CGridAxis& x, const CGridAxis& y);

    std::size_t Count() const { return m_count; }
    UINT Inputs() const { return m_nInputs; }
    // Writes the Inputs() inputs of pattern p into x and returns its desired output (0 on a grid).
    double Pattern(std::size_t p, double* x) const;

private:
    UINT m_nInputs = 0;
    UINT m_nOutputs = 0;
    std::size_t m_count = 0;
    std::vector<double> m_inputs;
    std::vector<double> m_targets;
    bool m_bGrid = false;
    CGridAxis m_x;
    CGridAxis m_y;
};

// Appends one row: the inputs, the desired output, y and desired output minus y, each as "%.6f\t", then CR LF.
void AppendRow(std::string& row, const double* inputs, UINT nInputs, double target, double y);

// Runs network over every pattern of set and appends each row to both files, the first file first, each with
// a seek to its end and one write. The set's inputs must be the network's. A write that fails ends the
// writing; the files' Close tells of it.
void WriteVerificationRows(const engine::CNetwork& network, const CPatternSet& set, CFile& first, CFile& second);
