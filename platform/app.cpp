#include "platform/app.h"

#include <QApplication>
#include <clocale>

#include "platform/files.h"

CWinApp::CWinApp() = default;

void AfxEnableControlContainer() {}

void AfxInitPlatform() {
    std::setlocale(LC_NUMERIC, "C");
}

int CWinApp::Run(int argc, char** argv) {
    QApplication application(argc, argv);
    QApplication::setApplicationName("Vantrel");
    // Desktops match the window to its menu entry, and so to the entry's icon, by this name.
    QGuiApplication::setDesktopFileName(kProgramName);
    AfxInitPlatform();
    InitInstance();
    return ExitInstance();
}
