// The Initialization dialog (how each parameter group starts, or Load From File) and the Error Correction
// Algorithm's dialog (the largest number of units).
#include "workspace/dialogs.h"

#include "platform/dialoglink.h"
#include "shell/initialization.h"

namespace {

// The controls of the manual selection that Load From File disables, besides the edits of the three groups.
constexpr int kManualControls[] = {IDC_INPUT_WEIGHTS_RANDOM,  IDC_INPUT_WEIGHTS_FIXED,     IDC_OUTPUT_WEIGHTS_RANDOM,
                                   IDC_OUTPUT_WEIGHTS_FIXED,  IDC_WIDTHS_RANDOM,           IDC_WIDTHS_FIXED,
                                   IDC_CENTERS_FROM_INPUT_RANGE, IDC_CENTERS_WITH_REPETITION,
                                   IDC_CENTERS_NO_REPETITION, IDC_NUMBER_OF_RBF_UNITS};
constexpr int kGroupEdits[] = {IDC_INPUT_WEIGHTS_LOWER,  IDC_INPUT_WEIGHTS_UPPER,  IDC_INPUT_WEIGHTS_VALUE,
                               IDC_OUTPUT_WEIGHTS_LOWER, IDC_OUTPUT_WEIGHTS_UPPER, IDC_OUTPUT_WEIGHTS_VALUE,
                               IDC_WIDTHS_LOWER,         IDC_WIDTHS_UPPER,         IDC_WIDTHS_VALUE};

// What a screen reader calls each edit of a parameter group: its row and its column. The labels beside them
// ("and", and the group names above their rows) would name them "and" or after another row.
struct CNamedEdit {
    int id;
    const char* name;
};
constexpr CNamedEdit kGroupEditNames[] = {
    {IDC_INPUT_WEIGHTS_LOWER, "Input Weights: lower bound"},
    {IDC_INPUT_WEIGHTS_UPPER, "Input Weights: upper bound"},
    {IDC_INPUT_WEIGHTS_VALUE, "Input Weights: fixed value"},
    {IDC_OUTPUT_WEIGHTS_LOWER, "Output Weights: lower bound"},
    {IDC_OUTPUT_WEIGHTS_UPPER, "Output Weights: upper bound"},
    {IDC_OUTPUT_WEIGHTS_VALUE, "Output Weights: fixed value"},
    {IDC_WIDTHS_LOWER, "Widths: lower bound"},
    {IDC_WIDTHS_UPPER, "Widths: upper bound"},
    {IDC_WIDTHS_VALUE, "Widths: fixed value"},
};

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
ON_BN_CLICKED(IDC_MANUALLY_SELECTION, OnManualSelection)
ON_BN_CLICKED(IDC_LOAD_FROM_FILE, OnLoadFromFile)
ON_BN_CLICKED(IDC_INPUT_WEIGHTS_RANDOM, OnInputWeightRandom)
ON_BN_CLICKED(IDC_INPUT_WEIGHTS_FIXED, OnInputWeightFixed)
ON_BN_CLICKED(IDC_OUTPUT_WEIGHTS_RANDOM, OnOutputWeightRandom)
ON_BN_CLICKED(IDC_OUTPUT_WEIGHTS_FIXED, OnOutputWeightFixed)
ON_BN_CLICKED(IDC_WIDTHS_RANDOM, OnWidthRandom)
ON_BN_CLICKED(IDC_WIDTHS_FIXED, OnWidthFixed)
ON_BN_CLICKED(IDC_CENTERS_FROM_INPUT_RANGE, OnCenterFromRange)
ON_BN_CLICKED(IDC_CENTERS_WITH_REPETITION, OnCenterWithRepetition)
ON_BN_CLICKED(IDC_CENTERS_NO_REPETITION, OnCenterNoRepetition)
END_MESSAGE_MAP()

void CInitializationDlg::DoDataExchange(CDataExchange* dx) {
    CDialog::DoDataExchange(dx);
    DDX_Control(dx, IDC_LEARNING_CONSTANT, m_editLearningConstant);
    DDX_Control(dx, IDC_MOMENTUM, m_editMomentum);
    DDX_Control(dx, IDC_LOAD_FROM_FILE, m_btnLoadFromFile);
    DDX_Control(dx, IDC_MANUALLY_SELECTION, m_btnManual);
    DDX_Text(dx, IDC_INPUT_WEIGHTS_LOWER, m_dInputWeightMin);
    DDX_Text(dx, IDC_INPUT_WEIGHTS_UPPER, m_dInputWeightMax);
    DDX_Text(dx, IDC_INPUT_WEIGHTS_VALUE, m_dInputWeightFixed);
    DDX_Text(dx, IDC_OUTPUT_WEIGHTS_LOWER, m_dOutputWeightMin);
    DDX_Text(dx, IDC_OUTPUT_WEIGHTS_UPPER, m_dOutputWeightMax);
    DDX_Text(dx, IDC_OUTPUT_WEIGHTS_VALUE, m_dOutputWeightFixed);
    DDX_Text(dx, IDC_WIDTHS_LOWER, m_dWidthMin);
    DDX_Text(dx, IDC_WIDTHS_UPPER, m_dWidthMax);
    DDX_Text(dx, IDC_WIDTHS_VALUE, m_dWidthFixed);
    DDX_Radio(dx, IDC_INPUT_WEIGHTS_RANDOM, m_nInputWeightMode);
    DDX_Radio(dx, IDC_OUTPUT_WEIGHTS_RANDOM, m_nOutputWeightMode);
    DDX_Radio(dx, IDC_WIDTHS_RANDOM, m_nWidthMode);
    DDX_Radio(dx, IDC_CENTERS_FROM_INPUT_RANGE, m_nCenterMode);
    DDX_Text(dx, IDC_NUMBER_OF_RBF_UNITS, m_nUnits);
    DDX_Text(dx, IDC_MOMENTUM, m_dMomentum);
    DDX_Text(dx, IDC_LEARNING_CONSTANT, m_dLearningConstant);
}

BOOL CInitializationDlg::OnInitDialog() {
    CDialog::OnInitDialog();
    if (platform::DialogControls* window = Window())
        for (const CNamedEdit& edit : kGroupEditNames) window->SetAccessibleName(edit.id, edit.name);
    ApplyEnableRules();
    return TRUE;
}

// A value that the exchange refuses ("Please enter a number.") keeps the dialog open, as its own checks do:
// closed, it would leave the field as it stood before, and the network would be built from a value the user
// has just been told is wrong. The other dialogs with checks of their own do the same.
void CInitializationDlg::OnOK() {
    if (!UpdateData(TRUE)) return;
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
    SetCheck(*this, IDC_MANUALLY_SELECTION, manual);
    SetCheck(*this, IDC_LOAD_FROM_FILE, !manual);
    for (int id : kManualControls) EnableItem(*this, id, manual);
    if (!manual) {
        for (int id : kGroupEdits) EnableItem(*this, id, false);
        return;
    }
    ApplyGroupRule(m_nInputWeightMode, IDC_INPUT_WEIGHTS_LOWER, IDC_INPUT_WEIGHTS_UPPER, IDC_INPUT_WEIGHTS_VALUE);
    ApplyGroupRule(m_nOutputWeightMode, IDC_OUTPUT_WEIGHTS_LOWER, IDC_OUTPUT_WEIGHTS_UPPER, IDC_OUTPUT_WEIGHTS_VALUE);
    ApplyGroupRule(m_nWidthMode, IDC_WIDTHS_LOWER, IDC_WIDTHS_UPPER, IDC_WIDTHS_VALUE);
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
    ApplyGroupRule(m_nInputWeightMode, IDC_INPUT_WEIGHTS_LOWER, IDC_INPUT_WEIGHTS_UPPER, IDC_INPUT_WEIGHTS_VALUE);
}

void CInitializationDlg::OnInputWeightFixed() {
    m_nInputWeightMode = 1;
    ApplyGroupRule(m_nInputWeightMode, IDC_INPUT_WEIGHTS_LOWER, IDC_INPUT_WEIGHTS_UPPER, IDC_INPUT_WEIGHTS_VALUE);
}

void CInitializationDlg::OnOutputWeightRandom() {
    m_nOutputWeightMode = 0;
    ApplyGroupRule(m_nOutputWeightMode, IDC_OUTPUT_WEIGHTS_LOWER, IDC_OUTPUT_WEIGHTS_UPPER, IDC_OUTPUT_WEIGHTS_VALUE);
}

void CInitializationDlg::OnOutputWeightFixed() {
    m_nOutputWeightMode = 1;
    ApplyGroupRule(m_nOutputWeightMode, IDC_OUTPUT_WEIGHTS_LOWER, IDC_OUTPUT_WEIGHTS_UPPER, IDC_OUTPUT_WEIGHTS_VALUE);
}

void CInitializationDlg::OnWidthRandom() {
    m_nWidthMode = 0;
    ApplyGroupRule(m_nWidthMode, IDC_WIDTHS_LOWER, IDC_WIDTHS_UPPER, IDC_WIDTHS_VALUE);
}

void CInitializationDlg::OnWidthFixed() {
    m_nWidthMode = 1;
    ApplyGroupRule(m_nWidthMode, IDC_WIDTHS_LOWER, IDC_WIDTHS_UPPER, IDC_WIDTHS_VALUE);
}

void CInitializationDlg::OnCenterFromRange() { m_nCenterMode = 0; }

void CInitializationDlg::OnCenterWithRepetition() { m_nCenterMode = 1; }

void CInitializationDlg::OnCenterNoRepetition() { m_nCenterMode = 2; }

// ---- Error Correction dialog --------------------------------------------------------------------------------

void CErrCorInitDlg::DoDataExchange(CDataExchange* dx) {
    CDialog::DoDataExchange(dx);
    DDX_Text(dx, IDC_MAXIMUM_RBF_UNITS, m_nMaxUnits);
}
