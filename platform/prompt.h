// The one hook through which every prompt passes: modal dialogs, file dialogs, message boxes, popup menus and
// the desktop's "open". The application installs the hook that shows them to the user; tests and the scripted
// runner install one that answers them from a queue and records what was shown.
#pragma once

#include "platform/strings.h"
#include "platform/types.h"

class CDialog;
class CFileDialog;
class CMenu;
class CWnd;

class CPromptHook {
public:
    virtual ~CPromptHook() = default;
    // Called on the main thread. Returns IDOK.
    virtual int MessageBox(CWnd* owner, const CString& text, const CString& caption, UINT type) = 0;
    // Runs a dialog whose window is built and whose OnInitDialog has run, until EndDialog is called or the
    // hook gives up on it. Returns the dialog's result.
    virtual INT_PTR RunModal(CDialog& dialog) = 0;
    // Returns IDOK with the path set in the dialog, or IDCANCEL.
    virtual INT_PTR RunFileDialog(CFileDialog& dialog) = 0;
    // Shows a popup menu; returns the chosen command or 0.
    virtual UINT TrackPopupMenu(const CMenu& menu, int screenX, int screenY) = 0;
    virtual void OpenDocument(const CString& path) = 0;
};

// Installs a hook; null restores the interactive one. The caller keeps ownership.
void AfxSetPromptHook(CPromptHook* hook);
CPromptHook& AfxPromptHook();
// The hook that shows prompts to the user (interactive.cpp).
CPromptHook& AfxInteractivePrompts();

// The caption of message boxes that the layer raises itself (data exchange prompts).
const char* AfxAppTitle();
