// The two output files of a verification, its patterns, their rows of text, and the loop that writes them.
#include "files/verification.h"

#include <cmath>
#include <cstdio>
#include <utility>

#include "files/resultfiles.h"
#include "platform/files.h"

namespace {

// Creates an empty file, or empties the one there; 0 when done, else the system's error number.
int CreateEmpty(const CString& path) {
    CFile file;
    if (!file.Open(path, CFile::modeCreate)) return file.GetError();
    file.Close();
    return 0;
}

}  // namespace

OutputFiles CreateOutputFiles(CString& stampedPath, CString& outputPath, int& error) {
    if (!CreateStampedFile("output.txt", stampedPath, error)) return OutputFiles::StampedFailed;
    // Beside the stamped file, wherever the written files' directory turned out to be.
    outputPath = stampedPath.Left(stampedPath.ReverseFind('/') + 1) + "output.txt";
    error = CreateEmpty(outputPath);
    return error == 0 ? OutputFiles::Made : OutputFiles::OutputFailed;
}

double CGridAxis::At(UINT n) const {
    // One point has no step: (max - min) / 0 would make it NaN. A user who asks for one point expects the
    // one value the axis starts from, so the grid is its minimum.
    if (points <= 1) return min;
    const double last = static_cast<double>(points - 1);
    const double step = (max - min) / last;
    // The points rise with n from min, so when the last one is finite every one is, and each keeps the value
    // that min + n x step has always given. A range wider than the largest double (-1e308 to 1e308) has no
    // finite step: its points are weighed between the two ends instead, which gives min and max exactly, and
    // are kept within them, so that no rounding carries one past an end. Such a range is valid, so it gets its
    // grid rather than a refusal that would call its maximum not larger than its minimum.
    if (std::isfinite(last * step + min)) return n * step + min;
    const double t = n / last;
    return std::fmin(std::fmax(min * (1.0 - t) + max * t, min), max);
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
