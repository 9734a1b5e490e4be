// The settings dialog of online training: the extra number of units and the file of new patterns. Its path
// edit is read-only, so Browse is the only way to set the path; the dialog is a workspace member, and what
// was chosen stays from one opening to the next.
#include "files/datafile.h"
#include "workspace/dialogs.h"

BEGIN_MESSAGE_MAP(COnlineSettingsDlg, CDialog)
ON_BN_CLICKED(IDC_BROWSE, OnBrowse)
END_MESSAGE_MAP()

void COnlineSettingsDlg::DoDataExchange(CDataExchange* dx) {
    CDialog::DoDataExchange(dx);
    DDX_Text(dx, IDC_CURRENT_NUMBER_OF_RBF_UNITS, m_nCurrentUnits);
    DDX_Text(dx, IDC_EXTRA_NUMBER_OF_RBF_UNITS, m_nExtraUnits);
    DDX_Text(dx, IDC_NEW_DATA, m_strNewDataPath);
}

void COnlineSettingsDlg::OnBrowse() {
    UpdateData(TRUE);
    CFileDialog fileDlg(TRUE, "txt", nullptr, 6, kDataFileFilter);
    if (fileDlg.DoModal() == IDOK) m_strNewDataPath = fileDlg.GetPathName();
    UpdateData(FALSE);
}

void COnlineSettingsDlg::OnOK() {
    if (!UpdateData(TRUE)) return;
    if (m_nExtraUnits == 0) {
        MessageBox("Number of Extea RBF Units Should Be Larger Than Zero!", "Error", MB_ICONHAND);
        return;
    }
    CDialog::OnOK();
}
