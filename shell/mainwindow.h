// The desktop shell: the application object and the main dialog's handlers (defined here on the workspace,
// CVantrelDlg, declared in workspace/workspace.h), the plots (plots.h) and the resources (resources.cpp).
#pragma once

#include "platform/app.h"
#include "platform/templates.h"
#include "workspace/workspace.h"

// The window's resources (resources.cpp): its dialog templates, the plots' menus, the string table and the
// icon. Every program that shows the window hands them to the platform at start-up (AfxSetResourceTable),
// before it builds the first dialog.
const ResourceTable& VantrelResources();

class CVantrelApp : public CWinApp {
public:
    CVantrelApp() = default;
    BOOL InitInstance() override;
    int ExitInstance() override { return CWinApp::ExitInstance(); }
};
