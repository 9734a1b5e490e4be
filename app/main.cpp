// The application object and its start.
#include "shell/mainwindow.h"

BOOL CVantrelApp::InitInstance() {
    AfxEnableControlContainer();
    Enable3dControls();
    CVantrelDlg dlg;
    m_pMainWnd = &dlg;
    dlg.DoModal();
    m_pMainWnd = nullptr;
    return FALSE;
}

static CVantrelApp theApp;

int main(int argc, char** argv) { return theApp.Run(argc, argv); }
