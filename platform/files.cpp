#include "platform/files.h"

#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <string>
#include <vector>

namespace {
// A file grown past the process's size limit is a write error to report, not a signal that ends the program.
[[maybe_unused]] const bool g_sizeLimitIsAnError = std::signal(SIGXFSZ, SIG_IGN) != SIG_ERR;

int OpenFlagsFor(UINT flags) {
    const bool readWrite = (flags & CFile::modeReadWrite) != 0;
    int os = readWrite ? O_RDWR : (flags & (CFile::modeWrite | CFile::modeCreate)) ? O_WRONLY : O_RDONLY;
    if (flags & CFile::modeCreate) os |= (flags & CFile::modeCreateNew) ? O_CREAT | O_EXCL : O_CREAT | O_TRUNC;
    return os | O_CLOEXEC | O_NONBLOCK;
}
}  // namespace

CFile::~CFile() { Close(); }

BOOL CFile::Fail() {
    m_nError = errno != 0 ? errno : EIO;
    return FALSE;
}

BOOL CFile::Open(LPCTSTR path, UINT flags) {
    Close();
    m_nError = 0;
    m_end = -1;
    // Opened without blocking: a pipe's open would wait for a writer. Whatever is not a regular file (a
    // directory's length reads as garbage, a pipe or a device may never end) is then refused before a read
    // could wait on it.
    const int os = OpenFlagsFor(flags);
    const int fd = ::open(path, os, 0666);
    if (fd < 0) return Fail();
    struct stat info {};
    if (fstat(fd, &info) != 0 || !S_ISREG(info.st_mode)) {
        if (info.st_mode != 0) errno = S_ISDIR(info.st_mode) ? EISDIR : EINVAL;
        Fail();
        ::close(fd);
        return FALSE;
    }
    fcntl(fd, F_SETFL, fcntl(fd, F_GETFL) & ~O_NONBLOCK);
    const int access = os & O_ACCMODE;
    m_file = ::fdopen(fd, access == O_RDONLY ? "rb" : access == O_WRONLY ? "wb" : "r+b");
    if (m_file == nullptr) {
        Fail();
        ::close(fd);
        return FALSE;
    }
    std::setvbuf(m_file, nullptr, _IOFBF, 1 << 16);
    return TRUE;
}

BOOL CFile::Close() {
    if (m_file == nullptr) return m_nError == 0 ? TRUE : FALSE;
    errno = 0;
    // A buffer that failed earlier leaves the stream's error mark: its bytes are lost even if the rest goes out.
    const bool failedBefore = std::ferror(m_file) != 0;
    const int result = std::fclose(m_file);
    m_file = nullptr;
    if (result != 0) return Fail();
    if (failedBefore && m_nError == 0) m_nError = EIO;
    return m_nError == 0 ? TRUE : FALSE;
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
    const std::size_t got = std::fread(buffer, 1, count, m_file);
    if (got < count && std::ferror(m_file)) Fail();
    return static_cast<UINT>(got);
}

BOOL CFile::Write(const void* buffer, UINT count) {
    if (m_file == nullptr) return FALSE;
    errno = 0;
    const std::size_t written = std::fwrite(buffer, 1, count, m_file);
    if (m_end >= 0) m_end += static_cast<long long>(written);
    return written == count ? TRUE : Fail();
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

namespace {

std::string HomeDirectory() {
    const char* home = std::getenv("HOME");
    if (home != nullptr && home[0] == '/') return home;
    // A session started without HOME (a service, su without -l) still has a home in the password database.
    std::vector<char> buffer(16384);
    struct passwd entry {};
    struct passwd* found = nullptr;
    if (getpwuid_r(geteuid(), &entry, buffer.data(), buffer.size(), &found) == 0 && found != nullptr &&
        found->pw_dir != nullptr)
        return found->pw_dir;
    return "/";
}

}  // namespace

namespace platform {

std::string UserDataDirectory() {
    const char* dataHome = std::getenv("XDG_DATA_HOME");
    std::string folder = dataHome != nullptr && dataHome[0] == '/' ? dataHome : HomeDirectory() + "/.local/share";
    while (folder.size() > 1 && folder.back() == '/') folder.pop_back();
    if (folder != "/") folder += '/';
    return folder + kProgramName + "/";
}

int MakeDirectories(const std::string& directory) {
    for (size_t end = directory.find('/', 1); ; end = directory.find('/', end + 1)) {
        const std::string folder = directory.substr(0, end);
        if (!folder.empty() && ::mkdir(folder.c_str(), 0700) != 0 && errno != EEXIST) return errno;
        if (end == std::string::npos) break;
    }
    struct stat info {};
    if (::stat(directory.c_str(), &info) != 0) return errno;
    return S_ISDIR(info.st_mode) ? 0 : ENOTDIR;
}

std::string SampleDataDirectory(const std::string& programDirectory) {
    std::string program = programDirectory;
    while (program.size() > 1 && program.back() == '/') program.pop_back();
    const std::string prefix = program.substr(0, program.rfind('/'));
    for (const std::string& samples : {program + "/data", prefix + "/share/" + kProgramName + "/data"}) {
        struct stat info {};
        if (::stat(samples.c_str(), &info) == 0 && S_ISDIR(info.st_mode)) return samples;
    }
    return program;
}

}  // namespace platform

CString AfxWrittenFilesDirectory(int& error) {
    error = 0;
    {
        std::lock_guard<std::mutex> lock(g_dirMutex);
        if (!g_moduleDir.empty()) return CString(g_moduleDir.back() == '/' ? g_moduleDir : g_moduleDir + "/");
    }
    const std::string program = RealExecutablePath();
    const std::string directory = program.substr(0, program.rfind('/') + 1);
    // The effective user's rights decide, as they will when the file is created.
    if (faccessat(AT_FDCWD, directory.c_str(), W_OK | X_OK, AT_EACCESS) == 0) return CString(directory);
    const std::string own = platform::UserDataDirectory();
    error = platform::MakeDirectories(own);
    return CString(own);
}
