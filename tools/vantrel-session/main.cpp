// vantrel-session [--dir DIR] SCRIPT: runs the main dialog hidden and feeds it a script of user events.
#include <sys/stat.h>
#include <unistd.h>

#include <QApplication>
#include <cerrno>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <sstream>

#include "engine/blas_setup.h"
#include "platform/app.h"
#include "platform/files.h"
#include "runner.h"
#include "script.h"
#include "shell/mainwindow.h"

namespace {

int Usage() {
    std::cerr << "usage: vantrel-session [--dir DIR] SCRIPT" << std::endl;
    return kSessionScriptError;
}

// Paths stay bytes from the command line to the files: a Linux name need not be UTF-8, and a Qt string would
// change the bytes that are not. The absolute form drops the "." steps and doubled slashes of a typed path but
// keeps "..", which behind a symbolic link is not the parent that the text shows.
std::string AbsolutePath(const std::string& path) {
    std::string whole = path;
    if (path.empty() || path[0] != '/') {
        char* cwd = getcwd(nullptr, 0);
        whole = std::string(cwd != nullptr ? cwd : ".") + "/" + path;
        std::free(cwd);
    }
    std::string tidy;
    std::istringstream steps(whole);
    for (std::string step; std::getline(steps, step, '/');)
        if (!step.empty() && step != ".") tidy += "/" + step;
    return tidy.empty() ? "/" : tidy;
}

std::string DirectoryOf(const std::string& absolutePath) {
    const size_t slash = absolutePath.rfind('/');
    return slash == 0 ? "/" : absolutePath.substr(0, slash);
}

// Why the session can't write its files into directory (an absolute path), or empty when it can. The files go
// into that very directory or nowhere: a path too long to name them in would be cut short to an ancestor.
std::string UnusableDirectory(const std::string& directory) {
    // Room for the longest name written there, a timestamped one moved aside ("20991231_235959_result.100000.txt"),
    // or the program's own name that the directory stands beside, with their separator.
    constexpr size_t kRoomForNames = 64;
    struct stat info {};
    if (stat(directory.c_str(), &info) != 0) return std::strerror(errno);
    if (!S_ISDIR(info.st_mode)) return std::strerror(ENOTDIR);
    if (access(directory.c_str(), W_OK | X_OK) != 0) return std::strerror(errno);
    if (directory.size() + kRoomForNames >= PATH_MAX) return std::strerror(ENAMETOOLONG);
    return "";
}

// The absolute path of the directory given with --dir, or empty after telling on standard error why it can't be
// used. It is refused, never replaced: files written anywhere else would be lost to the caller.
std::string OutputDirectory(const std::string& dir) {
    const std::string absolute = AbsolutePath(dir);
    const std::string reason = dir.empty() ? std::strerror(ENOENT) : UnusableDirectory(absolute);
    if (reason.empty()) return absolute;
    std::cerr << "cannot use --dir " << dir << ": " << reason << std::endl;
    return "";
}

}  // namespace

int main(int argc, char** argv) {
    engine::StartWithBlasSettings(argv);
    std::string dir;
    bool hasDir = false;
    std::string scriptPath;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "--dir" && i + 1 < argc) {
            dir = argv[++i];
            hasDir = true;
        } else if (scriptPath.empty() && arg.rfind("--", 0) != 0) {
            scriptPath = arg;
        } else {
            return Usage();
        }
    }
    if (scriptPath.empty()) return Usage();
    const std::string outputDir = hasDir ? OutputDirectory(dir) : std::string();
    if (hasDir && outputDir.empty()) return kSessionScriptError;

    std::ifstream in(scriptPath, std::ios::binary);
    if (!in) {
        std::cerr << "cannot read " << scriptPath << std::endl;
        return kSessionScriptError;
    }
    std::stringstream text;
    text << in.rdbuf();
    std::vector<SessionCommand> commands;
    SessionScriptError error;
    if (!ParseSessionScript(text.str(), commands, error)) {
        std::cerr << "line " << error.line << ": " << error.message << std::endl;
        return kSessionScriptError;
    }

    // Hidden: the offscreen platform unless a platform was asked for.
    if (std::getenv("QT_QPA_PLATFORM") == nullptr) setenv("QT_QPA_PLATFORM", "offscreen", 1);
    if (std::getenv("XDG_RUNTIME_DIR") == nullptr) {
        // Qt wants a private runtime directory; without one it warns on standard error, into the transcript.
        char runtime[] = "/tmp/vantrel-runtime-XXXXXX";
        if (mkdtemp(runtime) != nullptr) setenv("XDG_RUNTIME_DIR", runtime, 1);
    }
    QApplication application(argc, argv);
    QApplication::setApplicationName("Vantrel");
    AfxInitPlatform();
    AfxSetResourceTable(VantrelResources());
    const std::string scriptDir = DirectoryOf(AbsolutePath(scriptPath));
    // A session given a directory of its own writes everything there, pictures too, and nothing beside the
    // script.
    if (!hasDir) return RunSession(commands, scriptDir, scriptDir);
    AfxSetModuleDirectory(outputDir);
    return RunSession(commands, scriptDir, outputDir);
}
