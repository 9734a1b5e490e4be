#include "platform/window.h"

#include <QApplication>
#include <QFrame>
#include <QPointer>
#include <QWidget>

#include "platform/dialogwindow.h"
#include "platform/prompt.h"
#include "platform/templates.h"
#include "platform/thread.h"
#include "platform/uiqueue.h"

using platform::DialogWindow;

namespace {

constexpr UINT SC_CLOSE = 0xF060;

// Keys under which queued operations of one control coalesce: one per control and kind of operation.
const void* TextKey(QWidget* widget) { return widget; }
const void* PaintKey(QWidget* widget) { return reinterpret_cast<const char*>(widget) + 1; }

// Messages that only change a control: a worker may queue them without waiting for their result.
bool IsFireAndForget(UINT message) {
    switch (message) {
        case BM_SETCHECK: case LB_INSERTSTRING: case LB_RESETCONTENT: case LB_SETCURSEL:
        case CB_INSERTSTRING: case CB_RESETCONTENT: case CB_SETCURSEL: case WM_SETICON:
            return true;
        default:
            return false;
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
    CWnd* item = m_window->Proxy(id);
    return item != nullptr ? item : &DetachedWindow();
}

void CWnd::SetWindowText(LPCTSTR text) {
    if (m_window == nullptr) return;
    const std::string value(text != nullptr ? text : "");
    if (AfxIsGuiThread()) {
        m_window->SetText(m_nID, value);
        return;
    }
    QPointer<DialogWindow> window(m_window);
    const int id = m_nID;
    platform::PostToGui([window, id, value] { if (window) window->SetText(id, value); },
                        TextKey(id == 0 ? window.data() : window->Control(id)));
}

void CWnd::GetWindowText(CString& text) const {
    if (m_window == nullptr) {
        text.Empty();
        return;
    }
    std::string value;
    platform::CallOnGui([&] { value = m_window->Text(m_nID); });
    text = CString(value);
}

BOOL CWnd::EnableWindow(BOOL enable) {
    if (m_window == nullptr) return FALSE;
    if (AfxIsGuiThread()) {
        const bool was = m_window->IsEnabled(m_nID);
        m_window->SetEnabled(m_nID, enable != FALSE);
        return was ? FALSE : TRUE;
    }
    QPointer<DialogWindow> window(m_window);
    const int id = m_nID;
    platform::PostToGui([window, id, enable] { if (window) window->SetEnabled(id, enable != FALSE); });
    return FALSE;
}

BOOL CWnd::IsWindowEnabled() const {
    if (m_window == nullptr) return FALSE;
    bool enabled = false;
    platform::CallOnGui([&] { enabled = m_window->IsEnabled(m_nID); });
    return enabled ? TRUE : FALSE;
}

LRESULT CWnd::SendMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    if (m_window == nullptr) return 0;
    if (!AfxIsGuiThread() && IsFireAndForget(message)) {
        // The text behind a string message must outlive the caller's buffer.
        std::string text;
        if (message == LB_INSERTSTRING || message == CB_INSERTSTRING)
            text = reinterpret_cast<const char*>(lParam);
        QPointer<DialogWindow> window(m_window);
        const int id = m_nID;
        platform::PostToGui([window, id, message, wParam, lParam, text] {
            if (!window) return;
            const bool isString = message == LB_INSERTSTRING || message == CB_INSERTSTRING;
            window->Send(id, message, wParam, isString ? reinterpret_cast<LPARAM>(text.c_str()) : lParam);
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
    QPointer<DialogWindow> window(m_window);
    const int id = m_nID;
    auto repaint = [window, id] {
        if (!window) return;
        if (QWidget* widget = id == 0 ? window.data() : window->Control(id)) widget->update();
    };
    if (AfxIsGuiThread()) repaint();
    else platform::PostToGui(repaint, PaintKey(id == 0 ? window.data() : window->Control(id)));
}

void CWnd::GetClientRect(RECT* rect) const {
    *rect = RECT{};
    if (m_window == nullptr) return;
    platform::CallOnGui([&] {
        QWidget* widget = m_nID == 0 ? m_window : m_window->Control(m_nID);
        if (widget == nullptr) return;
        QRect client = widget->rect();
        if (auto* frame = qobject_cast<QFrame*>(widget)) client = frame->contentsRect();
        rect->right = client.width();
        rect->bottom = client.height();
    });
}

void CWnd::GetWindowRect(RECT* rect) const {
    *rect = RECT{};
    if (m_window == nullptr) return;
    platform::CallOnGui([&] {
        QWidget* widget = m_nID == 0 ? m_window : m_window->Control(m_nID);
        if (widget == nullptr) return;
        const QPoint topLeft = widget->mapToGlobal(QPoint(0, 0));
        *rect = RECT{topLeft.x(), topLeft.y(), topLeft.x() + widget->width(), topLeft.y() + widget->height()};
    });
}

void CWnd::ClientToScreen(POINT* point) const {
    if (m_window == nullptr) return;
    platform::CallOnGui([&] {
        QWidget* widget = m_nID == 0 ? m_window : m_window->Control(m_nID);
        if (widget == nullptr) return;
        const QPoint global = widget->mapToGlobal(QPoint(point->x, point->y));
        point->x = global.x();
        point->y = global.y();
    });
}

BOOL CWnd::IsIconic() const {
    if (m_window == nullptr) return FALSE;
    bool minimized = false;
    platform::CallOnGui([&] { minimized = m_window->isMinimized(); });
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

CDialog::~CDialog() { DestroyWindowNow(); }

INT_PTR CDialog::DoModal() {
    const DialogTemplate* tpl = AfxFindDialogTemplate(static_cast<int>(m_templateId));
    if (tpl == nullptr || QApplication::instance() == nullptr) return -1;
    auto window = std::make_unique<DialogWindow>(this, *tpl, platform::ActiveDialogWidget());
    m_ended = false;
    m_result = IDCANCEL;
    OnInitDialog();
    const INT_PTR result = m_ended ? m_result : AfxPromptHook().RunModal(*this);
    window.reset();
    return result;
}

BOOL CDialog::CreateHidden() {
    const DialogTemplate* tpl = AfxFindDialogTemplate(static_cast<int>(m_templateId));
    if (tpl == nullptr || QApplication::instance() == nullptr) return FALSE;
    m_owned = std::make_unique<DialogWindow>(this, *tpl, nullptr);
    m_ended = false;
    m_result = IDCANCEL;
    OnInitDialog();
    return TRUE;
}

void CDialog::DestroyWindowNow() { m_owned.reset(); }

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
    if (m_window != nullptr) m_window->done(result);
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
