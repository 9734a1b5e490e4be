#include "platform/app.h"

#include <QApplication>
#include <clocale>

CWinApp::CWinApp() = default;

void AfxEnableControlContainer() {}

void AfxInitPlatform() {
    std::setlocale(LC_NUMERIC, "C");
}

int CWinApp::Run(int argc, char** argv) {
    QApplication application(argc, argv);
    QApplication::setApplicationName("Vantrel");
    AfxInitPlatform();
    InitInstance();
    return ExitInstance();
}
