// The information list: at most kMaxInfoLines lines, the oldest cleared all at once. A member of the workspace,
// since runs and the written files' members (below the window's shell) tell it what they did.
#include <string>

#include "platform/thread.h"
#include "platform/uiqueue.h"
#include "workspace/workspace.h"

namespace {

constexpr int kMaxInfoLines = 2000;

}  // namespace

void CVantrelDlg::AppendInfo(CString strLine) {
    // A run's worker tells of a result file that failed: the count of lines is the main thread's alone.
    if (!AfxIsGuiThread()) {
        platform::CallOnGui([&] { AppendInfo(strLine); });
        return;
    }
    if (m_nInfoLines == kMaxInfoLines) ClearInfo();
    GetDlgItem(IDC_INFO_LIST)->SendMessage(LB_INSERTSTRING, m_nInfoLines, reinterpret_cast<LPARAM>(static_cast<const char*>(strLine)));
    ++m_nInfoLines;
    GetDlgItem(IDC_INFO_LIST)->SendMessage(LB_SETCURSEL, m_nInfoLines - 1);
}

void CVantrelDlg::ClearInfo() {
    GetDlgItem(IDC_INFO_LIST)->SendMessage(LB_RESETCONTENT);
    m_nInfoLines = 0;
}

void CVantrelDlg::AppendPathInfo(const char* title, const CString& path) {
    // The list cuts what is wider than itself (some 45 characters): the folder is broken behind its slashes.
    constexpr std::size_t kLineWidth = 44;
    const std::string whole = path.str();
    const std::size_t slash = whole.rfind('/') + 1;
    AppendInfo(CString(std::string(title) + " " + whole.substr(slash)));
    std::string line = "in ";
    for (std::size_t at = 0; at < slash;) {
        const std::size_t next = whole.find('/', at) + 1;
        const std::string part = whole.substr(at, next - at);
        if (line.size() > 3 && line.size() + part.size() > kLineWidth) {
            AppendInfo(CString(line));
            line = "   ";
        }
        line += part;
        at = next;
    }
    AppendInfo(CString(line));
}
