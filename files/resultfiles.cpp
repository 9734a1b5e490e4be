// The timestamped result file of a run and its blocks.
#include "files/resultfiles.h"

#include <climits>

#include "platform/clock.h"
#include "platform/files.h"
#include "workspace/workspace.h"

namespace {

const char* const kLongRule = "/////////////////////////////////////////////////\r\n";  // 49 slashes
const char* const kShortRule = "///////////////////////////\r\n";                         // 27 slashes

void AppendSection(std::vector<std::string>& block, const char* title, const CResultSection& section,
                   std::size_t units, std::size_t inputs) {
    block.push_back(kShortRule);
    block.push_back(title);
    block.push_back("Input weights:\r\n");
    block.push_back(ValueLine(section.inputWeights, units * inputs));
    block.push_back("Output weights:\r\n");
    block.push_back(ValueLine(section.outputWeights, units + 1));
    block.push_back("Centers:\r\n");
    block.push_back(ValueLine(section.centers, units * inputs));
    block.push_back("Width:\r\n");
    block.push_back(ValueLine(section.widths, units));
}

// Opens the file for one block, writes it at the end, one write a line, and closes it. A block that can't
// be written is lost; the run goes on and the next block tries again.
void AppendBlock(CVantrelDlg& dlg, const CString& path, const std::vector<std::string>& block) {
    CFile file;
    if (!file.Open(path, CFile::modeWrite)) {
        dlg.MessageBox("Open Result File Failed!", "Error", MB_ICONHAND);
        return;
    }
    for (const std::string& text : block) {
        file.Seek(0, CFile::end);
        file.Write(text.data(), static_cast<UINT>(text.size()));
    }
    file.Close();
}

CResultSection TrainedSection(const CVantrelDlg& dlg) {
    return {dlg.m_pInputWeights, dlg.m_pOutputWeights, dlg.m_pCenters, dlg.m_pWidths};
}

}  // namespace

std::string TimestampedFileName(const struct tm& local, const char* suffix) {
    CString name;
    name.Format("%d%d%d_%d%d%d_", local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour,
                local.tm_min, local.tm_sec);
    return name.str() + suffix;
}

CString ExecutableDirectory() {
    // A Linux path may be far longer than the 260 characters of the desktop API's limit, and a cut path
    // would name another directory: the buffer takes the longest path the system allows.
    char buffer[PATH_MAX + 1];
    GetModuleFileNameA(nullptr, buffer, sizeof buffer);
    const CString path(buffer);
    return path.Left(path.ReverseFind('/') + 1);
}

std::string ValueLine(const double* values, std::size_t count) {
    std::string line;
    CString number;
    for (std::size_t k = 0; k < count; ++k) {
        number.Format(k == 0 ? "%.6f" : " %.6f", values[k]);
        line += number.str();
    }
    line += "\r\n";
    return line;
}

std::vector<std::string> ResultBlock(UINT units, UINT inputs, UINT iterations, double error,
                                     const CResultSection* initial, const CResultSection& trained) {
    std::vector<std::string> block;
    CString line;
    block.push_back(kLongRule);
    // Counts are unsigned: "%u" prints what "%d" would for every count up to 2^31, and the right number beyond.
    line.Format("total iterations: %u, average sum square error: %.10f\r\n", iterations, error);
    block.push_back(line.str());
    line.Format("number of RBF units: %u\r\n", units);
    block.push_back(line.str());
    if (initial != nullptr) AppendSection(block, "Initial Conditions\r\n", *initial, units, inputs);
    AppendSection(block, "Training Results\r\n", trained, units, inputs);
    block.push_back(std::string(kLongRule) + "\r\n\r\n");
    return block;
}

int CVantrelDlg::CreateResultFile(CString* path) {
    const CTime now = CTime::GetTickCount();
    const struct tm* local = now.GetLocalTm();  // lives in now
    *path = ExecutableDirectory() + TimestampedFileName(*local, "result.txt").c_str();
    CFile file;
    if (!file.Open(*path, CFile::modeCreate)) {  // an existing file of that name is emptied
        MessageBox("Create Result File Failed!", "Error", MB_ICONHAND);
        return 0;
    }
    file.Close();
    return 1;
}

void CVantrelDlg::WriteRunResults(CString* path, UINT units, UINT iterations, double error) {
    const CResultSection initial{m_pInitInputWeights, m_pInitOutputWeights, m_pInitCenters, m_pInitWidths};
    AppendBlock(*this, *path, ResultBlock(units, m_nInputs, iterations, error, &initial, TrainedSection(*this)));
}

void CVantrelDlg::WriteErrCorResults(CString* path, UINT units, UINT iterations, double error) {
    AppendBlock(*this, *path, ResultBlock(units, m_nInputs, iterations, error, nullptr, TrainedSection(*this)));
}
