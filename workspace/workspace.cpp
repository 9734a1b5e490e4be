#include "workspace/workspace.h"

#include "platform/thread.h"

CVantrelDlg::CVantrelDlg(CWnd* parent) : CDialog(IDD, parent) {}

CVantrelDlg::~CVantrelDlg() {
    // A worker must never outlive the arrays it uses: the window's close waits for it, and so does this.
    m_cancel.Abandon();
    if (AfxRunningWorkers() > 0) AfxWaitForWorkers();
    m_bTraining = false;
    ReleaseArrays();
}
