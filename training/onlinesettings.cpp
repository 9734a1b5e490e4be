// The settings dialog of online training: its exchange with the controls.
#include "workspace/dialogs.h"

void COnlineSettingsDlg::DoDataExchange(CDataExchange* dx) {
    CDialog::DoDataExchange(dx);
    DDX_Text(dx, 1116, m_nCurrentUnits);
    DDX_Text(dx, 1117, m_nExtraUnits);
    DDX_Text(dx, 1115, m_strNewDataPath);
}
