// The timestamped result file of a run and its blocks.
#include "files/resultfiles.h"

#include <cerrno>
#include <cstring>

#include "platform/clock.h"
#include "platform/files.h"

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

}  // namespace

std::string TimestampedFileName(const struct tm& local, const char* suffix) {
    CString name;
    name.Format("%d%d%d_%d%d%d_", local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour,
                local.tm_min, local.tm_sec);
    return name.str() + suffix;
}

std::string AsideName(const std::string& path, int number) {
    const size_t dot = path.rfind('.');
    const size_t slash = path.rfind('/');
    const bool hasExtension = dot != std::string::npos && (slash == std::string::npos || dot > slash);
    const size_t at = hasExtension ? dot : path.size();
    return path.substr(0, at) + "." + std::to_string(number) + path.substr(at);
}


bool CreateStampedFile(const char* suffix, CString& path, int& error) {
    const CTime now = CTime::GetTickCount();
    return CreateStampedFile(suffix, *now.GetLocalTm(), path, error);
}

bool CreateStampedFile(const char* suffix, const struct tm& local, CString& path, int& error) {
    const std::string name = (AfxWrittenFilesDirectory(error) + TimestampedFileName(local, suffix).c_str()).str();
    if (error != 0) return false;
    // Each name is taken by creating it exclusively, which one opener alone wins: a window that moved another's
    // file aside, or emptied it, would mix their blocks, since a run opens its file by name for every block.
    // Far more names than a second can give; a folder that has them all taken is not one to write into.
    constexpr int kMostNames = 100000;
    for (int number = 0; number <= kMostNames; ++number) {
        const std::string candidate = number == 0 ? name : AsideName(name, number);
        CFile file;
        if (file.Open(candidate.c_str(), CFile::modeCreate | CFile::modeCreateNew)) {
            path = candidate.c_str();
            const bool closed = file.Close() != FALSE;
            error = file.GetError();
            return closed;
        }
        error = file.GetError();
        if (error != EEXIST) {
            path = candidate.c_str();
            return false;
        }
    }
    path = name.c_str();
    return false;
}

CString WriteFailureLine(const CString& path, int error) {
    const int slash = path.ReverseFind('/');
    CString line;
    line.Format("Cannot write %s in %s: %s.", static_cast<const char*>(path.Mid(slash + 1)),
                static_cast<const char*>(path.Left(slash + 1)), std::strerror(error));
    return line;
}

CString CloseWrittenFile(CFile& file, const CString& path) {
    CString message;
    if (file.Close()) return message;
    message.Format("Cannot write %s: %s.\nNothing more is written to this file.", static_cast<const char*>(path),
                   std::strerror(file.GetError()));
    return message;
}

AppendResult AppendToFile(CString& path, const std::vector<std::string>& pieces, CString& failure, int& openError) {
    openError = 0;
    if (path.IsEmpty()) return AppendResult::WriteFailed;
    CFile file;
    if (!file.Open(path, CFile::modeWrite)) {
        openError = file.GetError();
        return AppendResult::CannotOpen;
    }
    for (const std::string& text : pieces) {
        file.Seek(0, CFile::end);
        if (!file.Write(text.data(), static_cast<UINT>(text.size()))) break;
    }
    failure = CloseWrittenFile(file, path);
    if (failure.IsEmpty()) return AppendResult::Written;
    path.Empty();
    return AppendResult::WriteFailed;
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
