// The grid dialogs of Verification and the radio group that chooses its pattern set.
#include "workspace/workspace.h"

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

void CTest1DDlg::OnOK() {
    if (!UpdateData(TRUE)) return;
    if (!(m_dMaxValue > m_dMinValue)) {
        MessageBox("Maximum value should be larger than minimum value!", "Error", MB_ICONHAND);
        return;
    }
    if (m_nPoints == 0) {
        MessageBox("Number of points should be larger than zero!", "Error", MB_ICONHAND);
        return;
    }
    CDialog::OnOK();
}

void CTest2DDlg::OnOK() {
    if (!UpdateData(TRUE)) return;
    if (!(m_dMaxX > m_dMinX)) {
        MessageBox("X: maximum value should be larger than minimum value!", "Error", MB_ICONHAND);
        return;
    }
    if (!(m_dMaxY > m_dMinY)) {
        MessageBox("Y: maximum value should be larger than minimum value!", "Error", MB_ICONHAND);
        return;
    }
    if (m_nPointsX == 0 || m_nPointsY == 0) {
        MessageBox("Number of points should be larger than zero!", "Error", MB_ICONHAND);
        return;
    }
    CDialog::OnOK();
}

// ---- Generalization Setting: four radio buttons, each a group of its own, so each click sets all four -------

namespace {

void CheckOnly(CVantrelDlg& dlg, const CButton& chosen) {
    for (CButton* button : {&dlg.m_btnCreate1D, &dlg.m_btnCreate2D, &dlg.m_btnTrainingPatterns,
                            &dlg.m_btnTestingPatterns})
        button->SendMessage(BM_SETCHECK, button == &chosen ? BST_CHECKED : BST_UNCHECKED);
}

}  // namespace

void CVantrelDlg::OnTrainingPatterns() {
    m_nGeneralization = GeneralizationTrainingPatterns;
    CheckOnly(*this, m_btnTrainingPatterns);
}

void CVantrelDlg::OnTestingPatterns() {
    m_nGeneralization = GeneralizationTestingPatterns;
    CheckOnly(*this, m_btnTestingPatterns);
}

void CVantrelDlg::OnCreate1DPatterns() {
    m_nGeneralization = GeneralizationCreate1D;
    CheckOnly(*this, m_btnCreate1D);
}

void CVantrelDlg::OnCreate2DPatterns() {
    m_nGeneralization = GeneralizationCreate2D;
    CheckOnly(*this, m_btnCreate2D);
}
