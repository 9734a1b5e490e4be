// Windows of the dialog layer: CWnd, CDialog and the control wrappers, data exchange and message maps.
//
// A dialog is built from its template (see templates.h) when it is shown. Until then a dialog object is plain
// data, so the workspace and its dialogs can be constructed and used without any window in unit tests.
//
// Thread rule: controls live on the main thread. A control operation called from a worker (text, enable
// state, check state, repaint, message box) is queued to the main thread in the order it was made; a message
// box from a worker blocks the worker until it is answered. Queued texts of one control coalesce: when a
// newer text for the same control is queued before the older one was shown, only the newer one is shown, at
// the newer one's place in the order.
#pragma once

#include <map>
#include <memory>
#include <vector>

#include "platform/dialoglink.h"
#include "platform/strings.h"
#include "platform/types.h"

class CDataExchange;
class CMenu;

// A message as the layer delivers it to a window's message map.
struct AfxMessage {
    AfxMessage(UINT msg = 0, UINT notifyCode = 0, UINT itemId = 0) : message(msg), code(notifyCode), id(itemId) {}
    UINT message = 0;  // WM_COMMAND, WM_CLOSE, WM_SYSCOMMAND, WM_PAINT, WM_RBUTTONDOWN, WM_QUERYDRAGICON
    UINT code = 0;     // WM_COMMAND: BN_CLICKED, CBN_SELCHANGE, or 0 for a menu command
    UINT id = 0;       // WM_COMMAND: control or command ID; WM_SYSCOMMAND: the command
    LPARAM lParam = 0;
    CPoint point;     // WM_RBUTTONDOWN: client coordinates
    UINT flags = 0;
};

class CWnd {
public:
    CWnd() = default;
    virtual ~CWnd();
    CWnd(const CWnd&) = delete;
    CWnd& operator=(const CWnd&) = delete;

    // Child control of this dialog by ID, or null when the dialog has no window or no such control.
    CWnd* GetDlgItem(int id) const;
    int GetDlgCtrlID() const { return m_nID; }

    void SetWindowText(LPCTSTR text);
    BOOL EnableWindow(BOOL enable = TRUE);
    LRESULT SendMessage(UINT message, WPARAM wParam = 0, LPARAM lParam = 0);

    int MessageBox(LPCTSTR text, LPCTSTR caption = nullptr, UINT type = MB_OK);
    BOOL UpdateData(BOOL saveAndValidate = TRUE);

    void InvalidateRect(const RECT* rect, BOOL erase = TRUE);
    void GetClientRect(RECT* rect) const;
    void GetWindowRect(RECT* rect) const;
    void ClientToScreen(POINT* point) const;
    BOOL IsIconic() const;
    CMenu* GetSystemMenu(BOOL revert);

    // Default processing of the message now being handled.
    LRESULT Default();

    // Messages reach a window through its message map (BEGIN_MESSAGE_MAP); true when handled.
    virtual bool OnWndMsg(const AfxMessage& message);

    // Painting of a control that draws itself (the plots). Called on the main thread.
    virtual void OnPaint() {}
    virtual bool PaintsItself() const { return false; }

    // From now on this wrapper stands for control id of parent's window (DDX_Control binds through it).
    // FALSE when parent has no window or its window no such control.
    BOOL SubclassDlgItem(UINT id, CWnd* parent);

    // The controls of the window this wrapper belongs to (dialoglink.h), null while it has none: for data
    // exchange, and for whoever acts in a user's place.
    platform::DialogControls* Window() const { return m_window; }

protected:
    virtual void DoDataExchange(CDataExchange* dx);
    // A window's wrappers of its controls, kept by the dialog: the one for id, or null.
    virtual CWnd* Item(int) const { return nullptr; }
    virtual void BindItem(int, CWnd*) {}
    // Ties wrapper to control id of window (null: to no window).
    static void Attach(CWnd& wrapper, platform::DialogControls* window, int id);

    const AfxMessage* m_currentMessage = nullptr;  // set while a message is dispatched, for Default()

private:
    platform::DialogControls* m_window = nullptr;
    int m_nID = 0;
};

class CStatic : public CWnd {};
class CButton : public CWnd {};
class CEdit : public CWnd {};
class CListBox : public CWnd {};
class CComboBox : public CWnd {};

class CDialog : public CWnd, private platform::DialogOwner {
public:
    explicit CDialog(UINT templateId, CWnd* parent = nullptr);
    ~CDialog() override;

    // Builds the window from the template, calls OnInitDialog and runs the dialog modally through the
    // prompt hook. Returns the value given to EndDialog.
    virtual INT_PTR DoModal();
    virtual BOOL OnInitDialog();
    virtual void OnOK();
    virtual void OnCancel();
    void EndDialog(int result);

    UINT TemplateId() const { return m_templateId; }
    // Whether EndDialog was called since the window was built, and with what: a prompt hook's modal loop
    // runs until then.
    bool IsEnded() const { return m_ended; }
    int Result() const { return m_result; }
    // Builds the window without running it modally and calls OnInitDialog (the session runner's main
    // dialog). The window stays hidden until shown.
    BOOL CreateHidden();

    bool OnWndMsg(const AfxMessage& message) override;

protected:
    CWnd* Item(int id) const override;
    void BindItem(int id, CWnd* wrapper) override;

    UINT m_templateId;
    bool m_ended = false;
    int m_result = 0;

private:
    bool OpenWindow(bool modal);
    void CloseWindow();
    void DeliverFromWindow(const AfxMessage& message) override;
    bool PaintFromWindow(int id) override;

    std::shared_ptr<platform::DialogControls> m_windowHeld;
    std::map<int, std::unique_ptr<CWnd>> m_plainItems;  // controls no member stands for
    std::map<int, CWnd*> m_boundItems;                  // members bound by DDX_Control
};

class CMenu {
public:
    CMenu();
    ~CMenu();
    BOOL LoadMenu(UINT resourceId);
    BOOL AppendMenu(UINT flags, UINT id = 0, LPCTSTR text = nullptr);
    CMenu* GetSubMenu(int position);
    // Shows the menu as a popup at a screen point; the chosen command is sent to owner as WM_COMMAND.
    BOOL TrackPopupMenu(UINT flags, int x, int y, CWnd* owner);
    BOOL DestroyMenu();

    struct Item {
        UINT flags = 0;
        UINT id = 0;
        CString text;
    };
    const std::vector<Item>& Items() const { return m_items; }
    bool HasItem(UINT id) const;

private:
    std::vector<Item> m_items;
    std::vector<std::unique_ptr<CMenu>> m_popups;
};

// Open or save file dialog.
class CFileDialog {
public:
    CFileDialog(BOOL openFileDialog, LPCTSTR defaultExt = nullptr, LPCTSTR fileName = nullptr, DWORD flags = 0,
                LPCTSTR filter = nullptr, CWnd* parent = nullptr);
    virtual ~CFileDialog() = default;
    virtual INT_PTR DoModal();
    CString GetPathName() const { return m_path; }
    // The file name without directory and extension.
    CString GetFileTitle() const;

    BOOL IsOpenDialog() const { return m_open; }
    const CString& Filter() const { return m_filter; }
    void SetPathName(const CString& path) { m_path = path; }

private:
    BOOL m_open;
    CString m_filter;
    CString m_path;
};

// Loads string resource id into text; returns FALSE when there is none.
BOOL AfxLoadString(UINT id, CString& text);

// Desktop "open" of a document: the operation must be "open".
INT_PTR ShellExecuteA(void* parent, LPCTSTR operation, LPCTSTR file, LPCTSTR parameters, LPCTSTR directory,
                      int showCommand);

// ---- message maps --------------------------------------------------------------------------------------
//
// A class declares DECLARE_MESSAGE_MAP() and lists its handlers between BEGIN_MESSAGE_MAP(Class, Base) and
// END_MESSAGE_MAP(); messages without an entry go to the base class's map.

template <class T>
struct AfxMsgMapEntry {
    UINT message;
    UINT code;
    UINT id;
    void (T::*onVoid)();
    void (T::*onSysCommand)(UINT, LPARAM);
    void (T::*onPoint)(UINT, CPoint);
    HCURSOR (T::*onQueryIcon)();
};

template <class T>
bool AfxDispatch(T* self, const AfxMsgMapEntry<T>& entry, const AfxMessage& msg) {
    if (entry.message != msg.message) return false;
    if (msg.message == WM_COMMAND && (entry.id != msg.id || entry.code != msg.code)) return false;
    if (entry.onVoid) (self->*entry.onVoid)();
    else if (entry.onSysCommand) (self->*entry.onSysCommand)(msg.id, msg.lParam);
    else if (entry.onPoint) (self->*entry.onPoint)(msg.flags, msg.point);
    else if (entry.onQueryIcon) (self->*entry.onQueryIcon)();
    return true;
}

#define DECLARE_MESSAGE_MAP() \
public:                       \
    bool OnWndMsg(const AfxMessage& message) override;

#define BEGIN_MESSAGE_MAP(theClass, baseClass)                        \
    bool theClass::OnWndMsg(const AfxMessage& afxMessage) {           \
        using ThisClass = theClass;                                   \
        using TheBaseClass = baseClass;                               \
        static const AfxMsgMapEntry<theClass> afxEntries[] = {
#define END_MESSAGE_MAP()                                                      \
    {0, 0, 0, nullptr, nullptr, nullptr, nullptr}                              \
    }                                                                          \
    ;                                                                          \
    for (const auto& entry : afxEntries)                                       \
        if (entry.message != 0) {                                              \
            const AfxMessage* saved = m_currentMessage;                        \
            m_currentMessage = &afxMessage;                                    \
            const bool handled = AfxDispatch(this, entry, afxMessage);         \
            m_currentMessage = saved;                                          \
            if (handled) return true;                                          \
        }                                                                      \
    return TheBaseClass::OnWndMsg(afxMessage);                                 \
    }

#define ON_BN_CLICKED(id, fn) {WM_COMMAND, BN_CLICKED, (id), &ThisClass::fn, nullptr, nullptr, nullptr},
#define ON_CBN_SELCHANGE(id, fn) {WM_COMMAND, CBN_SELCHANGE, (id), &ThisClass::fn, nullptr, nullptr, nullptr},
#define ON_COMMAND(id, fn) {WM_COMMAND, 0, (id), &ThisClass::fn, nullptr, nullptr, nullptr},
#define ON_WM_CLOSE() {WM_CLOSE, 0, 0, &ThisClass::OnClose, nullptr, nullptr, nullptr},
#define ON_WM_PAINT() {WM_PAINT, 0, 0, &ThisClass::OnPaint, nullptr, nullptr, nullptr},
#define ON_WM_SYSCOMMAND() {WM_SYSCOMMAND, 0, 0, nullptr, &ThisClass::OnSysCommand, nullptr, nullptr},
#define ON_WM_RBUTTONDOWN() {WM_RBUTTONDOWN, 0, 0, nullptr, nullptr, &ThisClass::OnRButtonDown, nullptr},
#define ON_WM_QUERYDRAGICON() {WM_QUERYDRAGICON, 0, 0, nullptr, nullptr, nullptr, &ThisClass::OnQueryDragIcon},

// ---- data exchange -------------------------------------------------------------------------------------

class CDataExchange {
public:
    CDataExchange(CWnd* dialog, BOOL saveAndValidate) : m_pDlgWnd(dialog), m_bSaveAndValidate(saveAndValidate) {}
    // Ends the exchange after a failed field; the layer catches it in UpdateData.
    [[noreturn]] void Fail();

    CWnd* m_pDlgWnd;
    BOOL m_bSaveAndValidate;
};

// Numbers show as the framework showed them: doubles with "%.15g", unsigned and signed with "%u"/"%d".
// A text that does not parse gets the framework's own prompt, and the exchange stops at that field.
void DDX_Text(CDataExchange* dx, int id, double& value);
void DDX_Text(CDataExchange* dx, int id, UINT& value);
void DDX_Text(CDataExchange* dx, int id, int& value);
void DDX_Text(CDataExchange* dx, int id, CString& value);
void DDX_Check(CDataExchange* dx, int id, int& value);
// value is the index of the checked button in the radio group that starts at control id, -1 for none.
void DDX_Radio(CDataExchange* dx, int id, int& value);
void DDX_Control(CDataExchange* dx, int id, CWnd& control);
