// The grid dialogs of Verification: their fields and the edits they exchange with.
#include "workspace/dialogs.h"

void CTest1DDlg::DoDataExchange(CDataExchange* dx) {
    CDialog::DoDataExchange(dx);
    DDX_Text(dx, IDC_1D_MAXIMUM_VALUE, m_dMaxValue);
    DDX_Text(dx, IDC_1D_MINIMUM_VALUE, m_dMinValue);
    DDX_Text(dx, IDC_1D_NUMBER_OF_POINTS, m_nPoints);
}

void CTest2DDlg::DoDataExchange(CDataExchange* dx) {
    CDialog::DoDataExchange(dx);
    DDX_Text(dx, IDC_X_MAXIMUM_VALUE, m_dMaxX);
    DDX_Text(dx, IDC_X_MINIMUM_VALUE, m_dMinX);
    DDX_Text(dx, IDC_X_NUMBER_OF_POINTS, m_nPointsX);
    DDX_Text(dx, IDC_Y_MAXIMUM_VALUE, m_dMaxY);
    DDX_Text(dx, IDC_Y_MINIMUM_VALUE, m_dMinY);
    DDX_Text(dx, IDC_Y_NUMBER_OF_POINTS, m_nPointsY);
}
