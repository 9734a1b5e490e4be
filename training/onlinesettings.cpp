// The settings dialog of online training: its exchange with the controls.
#include "workspace/dialogs.h"

void COnlineSettingsDlg::DoDataExchange(CDataExchange* dx) {
    CDialog::DoDataExchange(dx);
    DDX_Text(dx, IDC_CURRENT_NUMBER_OF_RBF_UNITS, m_nCurrentUnits);
    DDX_Text(dx, IDC_EXTRA_NUMBER_OF_RBF_UNITS, m_nExtraUnits);
    DDX_Text(dx, IDC_NEW_DATA, m_strNewDataPath);
}
