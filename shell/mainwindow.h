// The desktop shell: the application object and the main dialog's handlers (defined here on the workspace,
// CVantrelDlg, declared in workspace/workspace.h), the plots (plots.h) and the resources (resources.cpp).
#pragma once

#include "platform/app.h"
#include "workspace/workspace.h"

class CVantrelApp : public CWinApp {
public:
    CVantrelApp() = default;
    BOOL InitInstance() override;
    int ExitInstance() override { return CWinApp::ExitInstance(); }
};
