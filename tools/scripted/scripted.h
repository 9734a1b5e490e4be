// A prompt hook that answers prompts from a queue and reports what was shown: the scripted runner's and the
// tests'. Every report is one line, given to the printer in the order it happened.
#pragma once

#include <deque>
#include <functional>
#include <string>
#include <vector>

#include "platform/prompt.h"

class CScriptedPrompts : public CPromptHook {
public:
    using Printer = std::function<void(const std::string&)>;

    struct DialogAction {
        enum Kind { Click, Set, Ok, Cancel, Close, Accessible } kind;
        int id = 0;
        std::string text;
    };

    explicit CScriptedPrompts(Printer printer);
    ~CScriptedPrompts() override;

    // The next file dialog ends with OK and path (cancel: it is cancelled). source is the answer's own text,
    // reported if the answer is never used.
    void QueueFile(const std::string& path, bool cancel, const std::string& source);
    // The next modal dialog of template idd runs these actions after its OnInitDialog.
    void QueueDialog(int idd, std::vector<DialogAction> actions, const std::string& source);
    // Reports "unused answer: SOURCE" for every answer still queued, and drops them.
    void ReportUnused();
    // Set when an answer named a control that its dialog does not have; the runner stops on it.
    const std::string& ScriptError() const { return m_scriptError; }
    // The message boxes shown so far, as printed (for tests).
    const std::vector<std::string>& Boxes() const { return m_boxes; }

    int MessageBox(CWnd* owner, const CString& text, const CString& caption, UINT type) override;
    INT_PTR RunModal(CDialog& dialog) override;
    INT_PTR RunFileDialog(CFileDialog& dialog) override;
    UINT TrackPopupMenu(const CMenu& menu, int screenX, int screenY) override;
    void OpenDocument(const CString& path) override;

private:
    struct Answer {
        bool isFile = false;
        bool cancel = false;
        std::string path;
        int idd = 0;
        std::vector<DialogAction> actions;
        std::string source;
    };
    void RunAction(CDialog& dialog, const DialogAction& action);
    static void PressCancel(CDialog& dialog);

    Printer m_print;
    std::deque<Answer> m_answers;
    std::string m_scriptError;
    std::vector<std::string> m_boxes;
};

// "stop", "exclamation", "question", "information", or "none".
const char* AfxIconName(UINT type);
