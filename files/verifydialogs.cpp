// The grid dialogs of Verification: their fields and the edits they exchange with.
#include "workspace/dialogs.h"

void CTest1DDlg::DoDataExchange(CDataExchange* dx) {
    CDialog::DoDataExchange(dx);
    DDX_Text(dx, 1106, m_dMaxValue);
    DDX_Text(dx, 1105, m_dMinValue);
    DDX_Text(dx, 1107, m_nPoints);
}

void CTest2DDlg::DoDataExchange(CDataExchange* dx) {
    CDialog::DoDataExchange(dx);
    DDX_Text(dx, 1109, m_dMaxX);
    DDX_Text(dx, 1108, m_dMinX);
    DDX_Text(dx, 1110, m_nPointsX);
    DDX_Text(dx, 1112, m_dMaxY);
    DDX_Text(dx, 1111, m_dMinY);
    DDX_Text(dx, 1113, m_nPointsY);
}
