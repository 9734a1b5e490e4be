#include "platform/window.h"

#include "platform/prompt.h"
#include "platform/templates.h"
#include "platform/thread.h"
#include "platform/uiqueue.h"

using platform::DialogControls;

namespace {

constexpr UINT SC_CLOSE = 0xF060;

// Keys under which queued operations of one control coalesce: one per control and kind of operation.
const void* TextKey(const DialogControls& window, int id) { return window.ControlKey(id); }
const void* PaintKey(const DialogControls& window, int id) {
    const void* key = window.ControlKey(id);
    return key != nullptr ? static_cast<const char*>(key) + 1 : nullptr;
}

// Messages whose lParam is the text of a line.
bool CarriesText(UINT message) {
    return message == LB_ADDSTRING || message == LB_INSERTSTRING || message == CB_ADDSTRING ||
           message == CB_INSERTSTRING;
}

// Messages that only change a control: a worker may queue them without waiting for their result.
bool IsFireAndForget(UINT message) {
    switch (message) {
        case BM_SETCHECK: case LB_RESETCONTENT: case LB_SETCURSEL: case CB_RESETCONTENT: case CB_SETCURSEL:
        case WM_SETICON:
            return true;
        default:
            return CarriesText(message);
    }
}

// GetDlgItem of a dialog without a window, or of an unknown ID, gives this inert window: its operations do
// nothing, so logic can run without a window (unit tests) and a wrong ID never crashes the program.
CWnd& DetachedWindow() {
    static CWnd detached;
    return detached;
}

}  // namespace

CWnd::~CWnd() = default;

void CWnd::DoDataExchange(CDataExchange*) {}

CWnd* CWnd::GetDlgItem(int id) const {
    if (m_window == nullptr) return &DetachedWindow();
    CWnd* item = Item(id);
    return item != nullptr ? item : &DetachedWindow();
}

BOOL CWnd::SubclassDlgItem(UINT id, CWnd* parent) {
    const int control = static_cast<int>(id);
    if (parent == nullptr || parent->m_window == nullptr || !parent->m_window->HasControl(control)) return FALSE;
    // Data exchange binds the wrappers again at every UpdateData, while a worker may be using them (a control
    // operation, a plot's repaint): a binding that stands as asked is not written again.
    if (m_window == parent->m_window && m_nID == control && parent->Item(control) == this) return TRUE;
    Attach(*this, parent->m_window, control);
    parent->BindItem(control, this);
    return TRUE;
}

void CWnd::Attach(CWnd& wrapper, DialogControls* window, int id) {
    wrapper.m_window = window;
    wrapper.m_nID = id;
}

void CWnd::SetWindowText(LPCTSTR text) {
    if (m_window == nullptr) return;
    const std::string value(text != nullptr ? text : "");
    if (AfxIsGuiThread()) {
        m_window->SetText(m_nID, value);
        return;
    }
    std::weak_ptr<DialogControls> window = m_window->weak_from_this();
    const int id = m_nID;
    platform::PostToGui([window, id, value] { if (auto open = window.lock()) open->SetText(id, value); },
                        TextKey(*m_window, id));
}

BOOL CWnd::EnableWindow(BOOL enable) {
    if (m_window == nullptr) return FALSE;
    if (AfxIsGuiThread()) {
        const bool was = m_window->IsEnabled(m_nID);
        m_window->SetEnabled(m_nID, enable != FALSE);
        return was ? FALSE : TRUE;
    }
    std::weak_ptr<DialogControls> window = m_window->weak_from_this();
    const int id = m_nID;
    platform::PostToGui([window, id, enable] { if (auto open = window.lock()) open->SetEnabled(id, enable != FALSE); });
    return FALSE;
}

LRESULT CWnd::SendMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    if (m_window == nullptr) return 0;
    if (!AfxIsGuiThread() && IsFireAndForget(message)) {
        // The text behind a string message must outlive the caller's buffer.
        std::string text;
        if (CarriesText(message)) text = reinterpret_cast<const char*>(lParam);
        std::weak_ptr<DialogControls> window = m_window->weak_from_this();
        const int id = m_nID;
        platform::PostToGui([window, id, message, wParam, lParam, text] {
            auto open = window.lock();
            if (!open) return;
            open->Send(id, message, wParam, CarriesText(message) ? reinterpret_cast<LPARAM>(text.c_str()) : lParam);
        });
        return 0;
    }
    LRESULT result = 0;
    platform::CallOnGui([&] { result = m_window->Send(m_nID, message, wParam, lParam); });
    return result;
}

int CWnd::MessageBox(LPCTSTR text, LPCTSTR caption, UINT type) {
    const CString body(text);
    const CString title(caption != nullptr ? caption : "Error");
    int result = IDOK;
    platform::CallOnGui([&] { result = AfxPromptHook().MessageBox(this, body, title, type); });
    return result;
}

namespace {
struct DataExchangeFailed {};
}  // namespace

void CDataExchange::Fail() { throw DataExchangeFailed{}; }

BOOL CWnd::UpdateData(BOOL saveAndValidate) {
    BOOL ok = TRUE;
    platform::CallOnGui([&] {
        CDataExchange dx(this, saveAndValidate);
        try {
            DoDataExchange(&dx);
        } catch (const DataExchangeFailed&) {
            ok = FALSE;
        }
    });
    return ok;
}

void CWnd::InvalidateRect(const RECT*, BOOL) {
    if (m_window == nullptr) return;
    if (AfxIsGuiThread()) {
        m_window->Repaint(m_nID);
        return;
    }
    std::weak_ptr<DialogControls> window = m_window->weak_from_this();
    const int id = m_nID;
    platform::PostToGui([window, id] { if (auto open = window.lock()) open->Repaint(id); }, PaintKey(*m_window, id));
}

void CWnd::GetClientRect(RECT* rect) const {
    *rect = RECT{};
    if (m_window == nullptr) return;
    platform::CallOnGui([&] { *rect = m_window->ClientRect(m_nID); });
}

void CWnd::GetWindowRect(RECT* rect) const {
    *rect = RECT{};
    if (m_window == nullptr) return;
    platform::CallOnGui([&] { *rect = m_window->ScreenRect(m_nID); });
}

void CWnd::ClientToScreen(POINT* point) const {
    if (m_window == nullptr) return;
    platform::CallOnGui([&] { *point = m_window->ToScreen(m_nID, *point); });
}

BOOL CWnd::IsIconic() const {
    if (m_window == nullptr) return FALSE;
    bool minimized = false;
    platform::CallOnGui([&] { minimized = m_window->IsMinimized(); });
    return minimized ? TRUE : FALSE;
}

CMenu* CWnd::GetSystemMenu(BOOL) {
    return (m_window != nullptr && m_nID == 0) ? &m_window->SystemMenu() : nullptr;
}

LRESULT CWnd::Default() {
    if (m_currentMessage == nullptr) return 0;
    const AfxMessage& message = *m_currentMessage;
    if (message.message == WM_CLOSE) {
        // The dialog manager ends a dialog on its close box through the base class's Cancel.
        if (auto* dialog = dynamic_cast<CDialog*>(this)) dialog->CDialog::OnCancel();
    } else if (message.message == WM_SYSCOMMAND && (message.id & 0xFFF0) == SC_CLOSE) {
        OnWndMsg(AfxMessage{WM_CLOSE});
    }
    return 0;
}

bool CWnd::OnWndMsg(const AfxMessage&) { return false; }

// ---- CDialog -------------------------------------------------------------------------------------------

CDialog::CDialog(UINT templateId, CWnd*) : m_templateId(templateId) {}

// The members bound by DDX_Control are gone by now: the window is closed without touching them.
CDialog::~CDialog() {
    m_boundItems.clear();
    CloseWindow();
}

INT_PTR CDialog::DoModal() {
    if (!OpenWindow(true)) return -1;
    OnInitDialog();
    const INT_PTR result = m_ended ? m_result : AfxPromptHook().RunModal(*this);
    CloseWindow();
    return result;
}

BOOL CDialog::CreateHidden() {
    if (!OpenWindow(false)) return FALSE;
    OnInitDialog();
    return TRUE;
}

bool CDialog::OpenWindow(bool modal) {
    const DialogTemplate* tpl = AfxFindDialogTemplate(static_cast<int>(m_templateId));
    if (tpl == nullptr) return false;
    CloseWindow();
    std::shared_ptr<DialogControls> window = platform::OpenDialogWindow(*this, *tpl, modal);
    if (window == nullptr) return false;
    m_windowHeld = window;
    Attach(*this, window.get(), 0);
    for (int i = 0; i < tpl->controlCount; ++i) {
        const int id = tpl->controls[i].id;
        if (id <= 0) continue;
        auto item = std::make_unique<CWnd>();
        Attach(*item, window.get(), id);
        m_plainItems[id] = std::move(item);
    }
    m_ended = false;
    m_result = IDCANCEL;
    return true;
}

void CDialog::CloseWindow() {
    if (m_windowHeld == nullptr) return;
    for (auto& [id, wrapper] : m_boundItems) Attach(*wrapper, nullptr, id);
    m_boundItems.clear();
    m_plainItems.clear();
    Attach(*this, nullptr, 0);
    m_windowHeld.reset();
}

CWnd* CDialog::Item(int id) const {
    if (id == 0) return const_cast<CDialog*>(this);
    auto bound = m_boundItems.find(id);
    if (bound != m_boundItems.end()) return bound->second;
    auto plain = m_plainItems.find(id);
    return plain == m_plainItems.end() ? nullptr : plain->second.get();
}

void CDialog::BindItem(int id, CWnd* wrapper) { m_boundItems[id] = wrapper; }

void CDialog::DeliverFromWindow(const AfxMessage& message) { OnWndMsg(message); }

bool CDialog::PaintFromWindow(int id) {
    CWnd* item = id > 0 ? Item(id) : nullptr;
    if (item == nullptr || !item->PaintsItself()) return false;
    item->OnPaint();
    return true;
}

BOOL CDialog::OnInitDialog() {
    UpdateData(FALSE);
    return TRUE;
}

void CDialog::OnOK() {
    if (!UpdateData(TRUE)) return;
    EndDialog(IDOK);
}

void CDialog::OnCancel() { EndDialog(IDCANCEL); }

void CDialog::EndDialog(int result) {
    m_ended = true;
    m_result = result;
    if (Window() != nullptr) Window()->End(result);
}

bool CDialog::OnWndMsg(const AfxMessage& message) {
    if (message.message == WM_COMMAND && message.code == BN_CLICKED) {
        if (message.id == static_cast<UINT>(IDOK)) {
            OnOK();
            return true;
        }
        if (message.id == static_cast<UINT>(IDCANCEL)) {
            OnCancel();
            return true;
        }
    }
    if (message.message == WM_CLOSE) {
        OnCancel();  // the close box of a dialog is its Cancel
        return true;
    }
    if (message.message == WM_SYSCOMMAND && (message.id & 0xFFF0) == SC_CLOSE) return OnWndMsg(AfxMessage{WM_CLOSE});
    return false;
}
