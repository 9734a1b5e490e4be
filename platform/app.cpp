#include "platform/app.h"

#include <QApplication>
#include <QFont>
#include <clocale>

CWinApp::CWinApp() = default;

void AfxEnableControlContainer() {}

void AfxInitPlatform() {
    std::setlocale(LC_NUMERIC, "C");
    QFont::insertSubstitution("MS Sans Serif", "Liberation Sans");
    QFont::insertSubstitution("Times New Roman", "Liberation Serif");
}

int CWinApp::Run(int argc, char** argv) {
    QApplication application(argc, argv);
    QApplication::setApplicationName("Vantrel");
    AfxInitPlatform();
    InitInstance();
    return ExitInstance();
}
