// The two output files of a verification, its patterns, their rows of text, and the loop that writes them.
#include "files/verification.h"

#include <cstdio>
#include <utility>

#include "files/resultfiles.h"
#include "platform/files.h"

namespace {

// Creates an empty file, or empties the one there; false when it can't.
bool CreateEmpty(const CString& path) {
    CFile file;
    if (!file.Open(path, CFile::modeCreate)) return false;
    file.Close();
    return true;
}

}  // namespace

OutputFiles CreateOutputFiles(CString& stampedPath, CString& outputPath) {
    const CString directory = ExecutableDirectory();
    if (!CreateStampedFile("output.txt", stampedPath)) return OutputFiles::StampedFailed;
    outputPath = directory + "output.txt";
    if (!CreateEmpty(outputPath)) return OutputFiles::OutputFailed;
    return OutputFiles::Made;
}

double CGridAxis::At(UINT n) const {
    // One point has no step: (max - min) / 0 would make it NaN. A user who asks for one point expects the
    // one value the axis starts from, so the grid is its minimum.
    if (points <= 1) return min;
    const double step = (max - min) / static_cast<double>(points - 1);
    return n * step + min;
}

CPatternSet::CPatternSet(UINT nInputs, UINT nOutputs, std::size_t count, std::vector<double> inputs,
                         std::vector<double> targets)
    : m_nInputs(nInputs), m_nOutputs(nOutputs), m_count(count), m_inputs(std::move(inputs)),
      m_targets(std::move(targets)) {}

CPatternSet::CPatternSet(const CGridAxis& x) : m_nInputs(1), m_count(x.points), m_bGrid(true), m_x(x) {}

CPatternSet::CPatternSet(const CGridAxis& x, const CGridAxis& y)
    : m_nInputs(2), m_count(static_cast<std::size_t>(x.points) * y.points), m_bGrid(true), m_x(x), m_y(y) {}

double CPatternSet::Pattern(std::size_t p, double* x) const {
    if (m_bGrid) {
        if (m_nInputs == 1) {
            x[0] = m_x.At(static_cast<UINT>(p));
        } else {
            x[0] = m_x.At(static_cast<UINT>(p / m_y.points));
            x[1] = m_y.At(static_cast<UINT>(p % m_y.points));
        }
        return 0.0;
    }
    const double* from = m_inputs.data() + p * m_nInputs;
    for (UINT i = 0; i < m_nInputs; ++i) x[i] = from[i];
    return m_nOutputs > 0 ? m_targets[p * m_nOutputs] : 0.0;
}

void AppendRow(std::string& row, const double* inputs, UINT nInputs, double target, double y) {
    char number[400];  // "%.6f" of the largest double has 316 characters
    auto append = [&](double value) {
        const int length = std::snprintf(number, sizeof number, "%.6f\t", value);
        row.append(number, static_cast<std::size_t>(length));
    };
    for (UINT i = 0; i < nInputs; ++i) append(inputs[i]);
    append(target);
    append(y);
    append(target - y);
    row += "\r\n";
}

void WriteVerificationRows(const engine::CNetwork& network, const CPatternSet& set, CFile& first, CFile& second) {
    std::vector<double> x(set.Inputs());
    std::string row;
    for (std::size_t p = 0; p < set.Count(); ++p) {
        const double target = set.Pattern(p, x.data());
        const double y = engine::NetworkOutput(network, x.data(), network.nInputs, engine::CCancelToken::Never());
        row.clear();
        AppendRow(row, x.data(), set.Inputs(), target, y);
        for (CFile* file : {&first, &second}) {
            file->Seek(0, CFile::end);
            if (!file->Write(row.data(), static_cast<UINT>(row.size()))) return;  // the disk is full: stop
        }
    }
}
