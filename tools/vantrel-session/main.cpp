// vantrel-session [--dir DIR] SCRIPT: runs the main dialog hidden and feeds it a script of user events.
#include <QApplication>
#include <QFileInfo>
#include <cstdlib>
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

}  // namespace

int main(int argc, char** argv) {
    engine::StartWithBlasSettings(argv);
    std::string dir;
    std::string scriptPath;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "--dir" && i + 1 < argc) dir = argv[++i];
        else if (scriptPath.empty() && arg.rfind("--", 0) != 0) scriptPath = arg;
        else return Usage();
    }
    if (scriptPath.empty()) return Usage();

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
    const std::string scriptDir = QFileInfo(QString::fromStdString(scriptPath)).absolutePath().toStdString();
    // A session given a directory of its own writes everything there, pictures too, and nothing beside the
    // script.
    std::string outputDir = scriptDir;
    if (!dir.empty()) {
        outputDir = QFileInfo(QString::fromStdString(dir)).absoluteFilePath().toStdString();
        AfxSetModuleDirectory(outputDir);
    }
    return RunSession(commands, scriptDir, outputDir);
}
