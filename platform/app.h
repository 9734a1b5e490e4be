// The application object and the start of the window system.
#pragma once

#include "platform/window.h"

class CWinApp {
public:
    CWinApp();
    virtual ~CWinApp() = default;
    virtual BOOL InitInstance() { return FALSE; }
    virtual int ExitInstance() { return 0; }
    void Enable3dControls() {}
    // Starts the window system, runs InitInstance and ExitInstance, returns the exit code.
    int Run(int argc, char** argv);

    CWnd* m_pMainWnd = nullptr;
};

void AfxEnableControlContainer();

// After the window system has started: numbers are read and written with a point whatever the user's locale
// (Qt adopts the user's locale, and with a decimal comma atof and "%f" would silently change numbers).
void AfxInitPlatform();
