// The Initialization dialog (how each parameter group starts, or Load From File) and the Error Correction
// Algorithm's dialog (the largest number of units).
#include "workspace/dialogs.h"

#include "files/initialization.h"

namespace {

// The controls of the manual selection that Load From File disables, besides the edits of the three groups.
constexpr int kManualControls[] = {1091, 1092, 1076, 1077, 1082, 1083, 1088, 1089, 1090, 1096};
constexpr int kGroupEdits[] = {1045, 1073, 1074, 1078, 1079, 1080, 1084, 1085, 1086};

// Controls exist only while the dialog has its window; without one these do nothing.
void EnableItem(const CWnd& dlg, int id, bool enable) {
    if (CWnd* item = dlg.GetDlgItem(id)) item->EnableWindow(enable ? TRUE : FALSE);
}

void SetCheck(const CWnd& dlg, int id, bool checked) {
    if (CWnd* item = dlg.GetDlgItem(id)) item->SendMessage(BM_SETCHECK, checked ? BST_CHECKED : BST_UNCHECKED);
}

}  // namespace

// ---- Initialization dialog ----------------------------------------------------------------------------------

BEGIN_MESSAGE_MAP(CInitializationDlg, CDialog)
ON_BN_CLICKED(1071, OnManualSelection)
ON_BN_CLICKED(1070, OnLoadFromFile)
ON_BN_CLICKED(1091, OnInputWeightRandom)
ON_BN_CLICKED(1092, OnInputWeightFixed)
ON_BN_CLICKED(1076, OnOutputWeightRandom)
ON_BN_CLICKED(1077, OnOutputWeightFixed)
ON_BN_CLICKED(1082, OnWidthRandom)
ON_BN_CLICKED(1083, OnWidthFixed)
ON_BN_CLICKED(1088, OnCenterFromRange)
ON_BN_CLICKED(1089, OnCenterWithRepetition)
ON_BN_CLICKED(1090, OnCenterNoRepetition)
END_MESSAGE_MAP()

void CInitializationDlg::DoDataExchange(CDataExchange* dx) {
    CDialog::DoDataExchange(dx);
    DDX_Control(dx, 1103, m_editLearningConstant);
    DDX_Control(dx, 1104, m_editMomentum);
    DDX_Control(dx, 1070, m_btnLoadFromFile);
    DDX_Control(dx, 1071, m_btnManual);
    DDX_Text(dx, 1045, m_dInputWeightMin);
    DDX_Text(dx, 1073, m_dInputWeightMax);
    DDX_Text(dx, 1074, m_dInputWeightFixed);
    DDX_Text(dx, 1078, m_dOutputWeightMin);
    DDX_Text(dx, 1079, m_dOutputWeightMax);
    DDX_Text(dx, 1080, m_dOutputWeightFixed);
    DDX_Text(dx, 1084, m_dWidthMin);
    DDX_Text(dx, 1085, m_dWidthMax);
    DDX_Text(dx, 1086, m_dWidthFixed);
    DDX_Radio(dx, 1091, m_nInputWeightMode);
    DDX_Radio(dx, 1076, m_nOutputWeightMode);
    DDX_Radio(dx, 1082, m_nWidthMode);
    DDX_Radio(dx, 1088, m_nCenterMode);
    DDX_Text(dx, 1096, m_nUnits);
    DDX_Text(dx, 1104, m_dMomentum);
    DDX_Text(dx, 1103, m_dLearningConstant);
}

BOOL CInitializationDlg::OnInitDialog() {
    CDialog::OnInitDialog();
    ApplyEnableRules();
    return TRUE;
}

void CInitializationDlg::OnOK() {
    UpdateData(TRUE);
    if (m_nLoadFromFile != 0) {
        EndDialog(IDOK);  // the file path has no tests here: the file's counts are its test
        return;
    }
    if (const char* error = InitializationError(*this)) {
        MessageBox(error, "Error", MB_ICONHAND);
        return;
    }
    EndDialog(IDOK);
}

// 1070 and 1071 are each the first of a group of their own, so they are checked and unchecked by hand.
void CInitializationDlg::ApplyEnableRules() {
    const bool manual = m_nLoadFromFile == 0;
    SetCheck(*this, 1071, manual);
    SetCheck(*this, 1070, !manual);
    for (int id : kManualControls) EnableItem(*this, id, manual);
    if (!manual) {
        for (int id : kGroupEdits) EnableItem(*this, id, false);
        return;
    }
    ApplyGroupRule(m_nInputWeightMode, 1045, 1073, 1074);
    ApplyGroupRule(m_nOutputWeightMode, 1078, 1079, 1080);
    ApplyGroupRule(m_nWidthMode, 1084, 1085, 1086);
}

void CInitializationDlg::ApplyGroupRule(int mode, int lowerId, int upperId, int fixedId) {
    EnableItem(*this, lowerId, mode == 0);
    EnableItem(*this, upperId, mode == 0);
    EnableItem(*this, fixedId, mode != 0);
}

void CInitializationDlg::OnManualSelection() {
    m_nLoadFromFile = 0;
    ApplyEnableRules();
}

void CInitializationDlg::OnLoadFromFile() {
    m_nLoadFromFile = 1;
    ApplyEnableRules();
}

void CInitializationDlg::OnInputWeightRandom() {
    m_nInputWeightMode = 0;
    ApplyGroupRule(m_nInputWeightMode, 1045, 1073, 1074);
}

void CInitializationDlg::OnInputWeightFixed() {
    m_nInputWeightMode = 1;
    ApplyGroupRule(m_nInputWeightMode, 1045, 1073, 1074);
}

void CInitializationDlg::OnOutputWeightRandom() {
    m_nOutputWeightMode = 0;
    ApplyGroupRule(m_nOutputWeightMode, 1078, 1079, 1080);
}

void CInitializationDlg::OnOutputWeightFixed() {
    m_nOutputWeightMode = 1;
    ApplyGroupRule(m_nOutputWeightMode, 1078, 1079, 1080);
}

void CInitializationDlg::OnWidthRandom() {
    m_nWidthMode = 0;
    ApplyGroupRule(m_nWidthMode, 1084, 1085, 1086);
}

void CInitializationDlg::OnWidthFixed() {
    m_nWidthMode = 1;
    ApplyGroupRule(m_nWidthMode, 1084, 1085, 1086);
}

void CInitializationDlg::OnCenterFromRange() { m_nCenterMode = 0; }

void CInitializationDlg::OnCenterWithRepetition() { m_nCenterMode = 1; }

void CInitializationDlg::OnCenterNoRepetition() { m_nCenterMode = 2; }

// ---- Error Correction dialog --------------------------------------------------------------------------------

void CErrCorInitDlg::DoDataExchange(CDataExchange* dx) {
    CDialog::DoDataExchange(dx);
    DDX_Text(dx, 1097, m_nMaxUnits);
}
