#include "platform/files.h"

#include <sys/stat.h>
#include <unistd.h>

#include <climits>
#include <cstring>
#include <mutex>
#include <string>

CFile::~CFile() { Close(); }

BOOL CFile::Open(LPCTSTR path, UINT flags) {
    Close();
    const char* mode = "rb";
    if (flags & modeCreate)
        mode = (flags & modeReadWrite) ? "w+b" : "wb";
    else if (flags & modeReadWrite)
        mode = "r+b";
    else if (flags & modeWrite)
        mode = "r+b";  // an existing file, kept as it is; writes go where Seek puts them
    m_file = std::fopen(path, mode);
    // A directory opens for reading on Linux, and its length then reads as garbage: it is no file.
    struct stat info {};
    if (m_file != nullptr && (fstat(fileno(m_file), &info) != 0 || S_ISDIR(info.st_mode))) Close();
    if (m_file != nullptr) std::setvbuf(m_file, nullptr, _IOFBF, 1 << 16);
    m_end = -1;
    return m_file != nullptr ? TRUE : FALSE;
}

void CFile::Close() {
    if (m_file != nullptr) std::fclose(m_file);
    m_file = nullptr;
}

unsigned long long CFile::GetLength() const {
    if (m_file == nullptr) return 0;
    const long here = std::ftell(m_file);
    std::fseek(m_file, 0, SEEK_END);
    const long length = std::ftell(m_file);
    std::fseek(m_file, here, SEEK_SET);
    return length < 0 ? 0 : static_cast<unsigned long long>(length);
}

UINT CFile::Read(void* buffer, UINT count) {
    if (m_file == nullptr) return 0;
    m_end = -1;
    return static_cast<UINT>(std::fread(buffer, 1, count, m_file));
}

void CFile::Write(const void* buffer, UINT count) {
    if (m_file == nullptr) return;
    const std::size_t written = std::fwrite(buffer, 1, count, m_file);
    if (m_end >= 0) m_end += static_cast<long long>(written);
}

long long CFile::Seek(long long offset, UINT from) {
    if (m_file == nullptr) return -1;
    const bool toEnd = from == end && offset == 0;
    if (toEnd && m_end >= 0) return m_end;
    const int whence = from == end ? SEEK_END : from == current ? SEEK_CUR : SEEK_SET;
    std::fseek(m_file, static_cast<long>(offset), whence);
    const long long position = std::ftell(m_file);
    m_end = toEnd ? position : -1;
    return position;
}

namespace {
std::mutex g_dirMutex;
std::string g_moduleDir;  // empty: the real directory of the executable

std::string RealExecutablePath() {
    char path[PATH_MAX + 1];
    const ssize_t n = readlink("/proc/self/exe", path, PATH_MAX);
    if (n <= 0) return "./vantrel";
    path[n] = '\0';
    return path;
}
}  // namespace

void AfxSetModuleDirectory(const CString& directory) {
    std::lock_guard<std::mutex> lock(g_dirMutex);
    g_moduleDir = directory.str();
    while (g_moduleDir.size() > 1 && g_moduleDir.back() == '/') g_moduleDir.pop_back();
}

// Paths use '/' as their separator: callers cut the directory behind the last '/'.
DWORD GetModuleFileNameA(void* /*module*/, LPTSTR buffer, DWORD size) {
    std::string path;
    {
        std::lock_guard<std::mutex> lock(g_dirMutex);
        if (!g_moduleDir.empty()) {
            const std::string real = RealExecutablePath();
            path = g_moduleDir + real.substr(real.rfind('/'));
        } else {
            path = RealExecutablePath();
        }
    }
    if (size == 0) return 0;
    const size_t n = path.size() < size - 1 ? path.size() : size - 1;
    std::memcpy(buffer, path.data(), n);
    buffer[n] = '\0';
    return static_cast<DWORD>(n);
}
