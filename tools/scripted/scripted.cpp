#include "tools/scripted/scripted.h"

#include "platform/window.h"

const char* AfxIconName(UINT type) {
    switch (type & MB_ICONMASK) {
        case MB_ICONHAND: return "stop";
        case MB_ICONEXCLAMATION: return "exclamation";
        case MB_ICONQUESTION: return "question";
        case MB_ICONINFORMATION: return "information";
        default: return "none";
    }
}

CScriptedPrompts::CScriptedPrompts(Printer printer) : m_print(std::move(printer)) {}
CScriptedPrompts::~CScriptedPrompts() = default;

void CScriptedPrompts::QueueFile(const std::string& path, bool cancel, const std::string& source) {
    Answer answer;
    answer.isFile = true;
    answer.cancel = cancel;
    answer.path = path;
    answer.source = source;
    m_answers.push_back(std::move(answer));
}

void CScriptedPrompts::QueueDialog(int idd, std::vector<DialogAction> actions, const std::string& source) {
    Answer answer;
    answer.idd = idd;
    answer.actions = std::move(actions);
    answer.source = source;
    m_answers.push_back(std::move(answer));
}

void CScriptedPrompts::ReportUnused() {
    for (const Answer& answer : m_answers) m_print("unused answer: " + answer.source);
    m_answers.clear();
}

int CScriptedPrompts::MessageBox(CWnd*, const CString& text, const CString& caption, UINT type) {
    const std::string line =
        "box " + caption.str() + " [" + AfxIconName(type) + "]: " + text.str();
    m_boxes.push_back(line);
    m_print(line);
    return IDOK;
}

INT_PTR CScriptedPrompts::RunFileDialog(CFileDialog& dialog) {
    for (auto it = m_answers.begin(); it != m_answers.end(); ++it) {
        if (!it->isFile) continue;
        const Answer answer = *it;
        m_answers.erase(it);
        if (answer.cancel) return IDCANCEL;
        dialog.SetPathName(CString(answer.path));
        return IDOK;
    }
    m_print("file dialog: no answer, cancelled");
    return IDCANCEL;
}

INT_PTR CScriptedPrompts::RunModal(CDialog& dialog) {
    const std::string idd = std::to_string(dialog.TemplateId());
    Answer answer;
    bool found = false;
    for (auto it = m_answers.begin(); it != m_answers.end(); ++it) {
        if (it->isFile || it->idd != static_cast<int>(dialog.TemplateId())) continue;
        answer = *it;
        m_answers.erase(it);
        found = true;
        break;
    }
    if (!found) {
        m_print("dialog " + idd + ": no answer, cancelled");
        PressCancel(dialog);
        return dialog.Result();
    }
    for (const DialogAction& action : answer.actions) {
        if (dialog.IsEnded() || !m_scriptError.empty()) break;
        RunAction(dialog, action);
    }
    if (!dialog.IsEnded()) {
        m_print("dialog " + idd + ": still open, cancelled");
        PressCancel(dialog);
    }
    return dialog.Result();
}

void CScriptedPrompts::RunAction(CDialog& dialog, const DialogAction& action) {
    platform::DialogControls* window = dialog.Window();
    if (window == nullptr) return;
    if (action.kind != DialogAction::Ok && action.kind != DialogAction::Cancel && action.kind != DialogAction::Close &&
        !window->HasControl(action.id)) {
        m_scriptError = "dialog " + std::to_string(dialog.TemplateId()) + " has no control " + std::to_string(action.id);
        return;
    }
    switch (action.kind) {
        case DialogAction::Click: window->ClickControl(action.id); break;
        case DialogAction::Set: window->TypeText(action.id, action.text); break;
        case DialogAction::Ok: window->Deliver(AfxMessage{WM_COMMAND, BN_CLICKED, static_cast<UINT>(IDOK)}); break;
        case DialogAction::Cancel:
            window->Deliver(AfxMessage{WM_COMMAND, BN_CLICKED, static_cast<UINT>(IDCANCEL)});
            break;
        case DialogAction::Close: window->Deliver(AfxMessage{WM_CLOSE}); break;
        case DialogAction::Accessible: {
            const auto [role, name] = window->Accessible(action.id);
            m_print("accessible " + std::to_string(action.id) + ": " + role + ": " + name);
            break;
        }
    }
}

void CScriptedPrompts::PressCancel(CDialog& dialog) {
    if (platform::DialogControls* window = dialog.Window())
        window->Deliver(AfxMessage{WM_COMMAND, BN_CLICKED, static_cast<UINT>(IDCANCEL)});
    if (!dialog.IsEnded()) dialog.EndDialog(IDCANCEL);  // a dialog that ignores Cancel is ended all the same
}

UINT CScriptedPrompts::TrackPopupMenu(const CMenu& menu, int, int) {
    // Shown and dismissed: a script chooses a command with "command ID".
    std::string line = "menu:";
    for (const CMenu::Item& item : menu.Items())
        if (!(item.flags & MF_SEPARATOR)) line += (line.size() > 5 ? " | " : " ") + item.text.str();
    m_print(line);
    return 0;
}

void CScriptedPrompts::OpenDocument(const CString& path) { m_print("opened " + path.str()); }
