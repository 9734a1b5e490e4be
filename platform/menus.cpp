// Menus, file dialogs, string resources and the desktop's "open".
#include <QApplication>

#include "platform/prompt.h"
#include "platform/templates.h"
#include "platform/window.h"

CMenu::CMenu() = default;
CMenu::~CMenu() = default;

BOOL CMenu::LoadMenu(UINT resourceId) {
    const MenuTemplate* tpl = AfxFindMenuTemplate(static_cast<int>(resourceId));
    if (tpl == nullptr) return FALSE;
    DestroyMenu();
    auto popup = std::make_unique<CMenu>();
    for (int i = 0; i < tpl->itemCount; ++i) popup->AppendMenu(MF_STRING, tpl->items[i].id, tpl->items[i].text);
    m_items.push_back(Item{0, 0, tpl->popupName});
    m_popups.push_back(std::move(popup));
    return TRUE;
}

BOOL CMenu::AppendMenu(UINT flags, UINT id, LPCTSTR text) {
    m_items.push_back(Item{flags, id, CString(text)});
    return TRUE;
}

CMenu* CMenu::GetSubMenu(int position) {
    if (position < 0 || position >= static_cast<int>(m_popups.size())) return nullptr;
    return m_popups[static_cast<size_t>(position)].get();
}

BOOL CMenu::TrackPopupMenu(UINT, int x, int y, CWnd* owner) {
    const UINT command = AfxPromptHook().TrackPopupMenu(*this, x, y);
    if (command != 0 && owner != nullptr) {
        AfxMessage message{WM_COMMAND, 0, command};
        owner->OnWndMsg(message);
    }
    return TRUE;
}

BOOL CMenu::DestroyMenu() {
    m_items.clear();
    m_popups.clear();
    return TRUE;
}

bool CMenu::HasItem(UINT id) const {
    for (const Item& item : m_items)
        if (item.id == id && !(item.flags & MF_SEPARATOR)) return true;
    return false;
}

CFileDialog::CFileDialog(BOOL openFileDialog, LPCTSTR, LPCTSTR fileName, DWORD, LPCTSTR filter, CWnd*)
    : m_open(openFileDialog), m_filter(filter), m_path(fileName) {}

INT_PTR CFileDialog::DoModal() { return AfxPromptHook().RunFileDialog(*this); }

CString CFileDialog::GetFileTitle() const {
    CString name = m_path.Mid(m_path.ReverseFind('/') + 1);
    const int dot = name.ReverseFind('.');
    return dot > 0 ? name.Left(dot) : name;
}

BOOL AfxLoadString(UINT id, CString& text) {
    const ResourceTable& table = AfxGetResourceTable();
    for (int i = 0; i < table.stringCount; ++i)
        if (table.strings[i].id == static_cast<int>(id)) {
            text = table.strings[i].text;
            return TRUE;
        }
    text.Empty();
    return FALSE;
}

INT_PTR ShellExecuteA(void*, LPCTSTR operation, LPCTSTR file, LPCTSTR, LPCTSTR, int) {
    if (operation == nullptr || CString(operation) != "open" || file == nullptr) return 2;
    AfxPromptHook().OpenDocument(CString(file));
    return 42;  // above 32: success
}

BOOL PtInRect(const RECT* rect, POINT pt) {
    return (pt.x >= rect->left && pt.x < rect->right && pt.y >= rect->top && pt.y < rect->bottom) ? TRUE : FALSE;
}

int GetSystemMetrics(int index) { return (index == SM_CXICON || index == SM_CYICON) ? 32 : 0; }
