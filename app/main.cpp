// The application object and its start.
#include "engine/blas_setup.h"
#include "shell/mainwindow.h"

BOOL CVantrelApp::InitInstance() {
    AfxSetResourceTable(VantrelResources());
    AfxEnableControlContainer();
    Enable3dControls();
    CVantrelDlg dlg;
    m_pMainWnd = &dlg;
    dlg.DoModal();
    m_pMainWnd = nullptr;
    return FALSE;
}

static CVantrelApp theApp;

int main(int argc, char** argv) {
    engine::StartWithBlasSettings(argv);
    return theApp.Run(argc, argv);
}
