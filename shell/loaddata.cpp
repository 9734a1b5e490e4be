// Load Data: the data set file into m_pInputs and m_pTargets, and the Data Set Information dialog.
#include <algorithm>
#include <new>

#include "files/datafile.h"
#include "workspace/blocks.h"
#include "workspace/workspace.h"

namespace {

void ShowError(CVantrelDlg& dlg, const char* text) { dlg.MessageBox(text, "Error", MB_ICONHAND); }

// Allocates both pattern arrays or neither.
bool AllocatePatternArrays(CVantrelDlg& dlg) {
    try {
        ReplaceBlocks(dlg, {Block::Inputs, Block::Targets}, CountsOf(dlg));
    } catch (const std::bad_alloc&) {
        return false;
    }
    return true;
}

// A refusal before the counts are known leaves the Data Set Information dialog nothing to show.
bool RefusedBeforeCounts(DataSetStatus status) {
    return status == DataSetStatus::CannotOpen || status == DataSetStatus::TextTooLarge ||
           status == DataSetStatus::CountsTooLarge;
}

// The counts of the set read, shown in the Data Set Information dialog, which asks whether it is a
// classification set.
void AskDataSetType(CVantrelDlg& dlg, const CPatternRows& rows) {
    dlg.m_nPatterns = static_cast<UINT>(rows.shape.patterns);
    dlg.m_nOutputs = 1;
    dlg.m_nInputs = rows.nInputs;
    dlg.m_dlgDataSetInfo.m_nInputs = dlg.m_nInputs;
    dlg.m_dlgDataSetInfo.m_nOutputs = dlg.m_nOutputs;
    dlg.m_dlgDataSetInfo.m_nPatterns = dlg.m_nPatterns;
    dlg.m_dlgDataSetInfo.DoModal();  // however it ends, the load goes on
    dlg.m_bClassification = dlg.m_nInputs == 2 && dlg.m_dlgDataSetInfo.m_nDataSetType == 0;
}

// The rows into new pattern blocks. False when they don't fit: the counts then go back to those of no data,
// so that no loop walks the missing arrays.
bool StorePatterns(CVantrelDlg& dlg, const CPatternRows& rows, DataSetStatus status) {
    if (status == DataSetStatus::RowsTooLarge || !AllocatePatternArrays(dlg)) {
        dlg.m_nPatterns = 0;
        dlg.m_nInputs = 0;
        dlg.m_nOutputs = 0;
        return false;
    }
    std::copy(rows.inputs.begin(), rows.inputs.end(), dlg.m_pInputs);
    std::copy(rows.targets.begin(), rows.targets.end(), dlg.m_pTargets);
    return true;
}

// Lines that end in a bare LF (a file written on Linux) lose their last character to the scanner, which a user
// would otherwise meet only as outputs a digit short, or as a refusal after the Data Set Information dialog:
// the information list says so before that dialog opens, with the conversion that mends the file. The lines are
// short, for the list cuts what is wider than itself.
void ShowLineFeedNotice(CVantrelDlg& dlg, const CString& path) {
    const std::string name = path.str().substr(path.str().rfind('/') + 1);
    dlg.AppendInfo(CString("The lines of " + name + " end in LF,"));
    dlg.AppendInfo("not CR LF: each line loses its last character,");
    dlg.AppendInfo("so every desired output is a digit short,");
    dlg.AppendInfo("or the file is refused as incomplete.");
    dlg.AppendInfo("Convert it in its folder and load it again:");
    dlg.AppendInfo(CString(CrLfConversion(name)));
}

}  // namespace

void CVantrelDlg::OnLoadData() {
    m_bNetworkReady = false;
    m_nInputs = 0;
    m_nOutputs = 0;
    m_nPatterns = 0;
    UpdateData(TRUE);

    CFileDialog fileDlg(TRUE, "txt", nullptr, 6, kDataFileFilter);
    const bool chosen = fileDlg.DoModal() == IDOK;
    m_bDataLoaded = false;  // until the new set has passed every rule
    if (!chosen) return;
    m_strDataPath = fileDlg.GetPathName();
    m_strDataTitle = fileDlg.GetFileTitle();

    // The old set goes before the new one is read, so that memory holds one data set at a time; the text goes
    // once its rows are read.
    ReleaseBlocks(*this, {Block::Inputs, Block::Targets});
    CPatternRows rows;
    const DataSetStatus status = ReadDataSet(m_strDataPath, rows);
    if (RefusedBeforeCounts(status)) {
        ShowError(*this, DataSetMessage(status));
        return;
    }
    if (rows.bareLineFeeds) ShowLineFeedNotice(*this, m_strDataPath);
    AskDataSetType(*this, rows);
    if (!StorePatterns(*this, rows, status)) {
        ShowError(*this, kDataSetTooLarge);
        return;
    }
    // A set with values missing, without patterns or without inputs (the last two reached only by closing the
    // information dialog without OK) can't be trained or verified: counts divide the error and size the
    // network. It is refused here, and stays in the workspace.
    if (status != DataSetStatus::Ok) {
        ShowError(*this, DataSetMessage(status));
        return;
    }

    // The patterns of a two-input classification set go to the data plot; its grid waits for a run.
    if (m_bClassification) m_dataPlot.SetPatterns(m_pInputs, m_nInputs, m_pTargets, m_nPatterns);
    m_dataPlot.RefreshDataPlot(m_bClassification);

    m_bDataLoaded = true;
    UpdateData(FALSE);
}

// ---- Data Set Information dialog ----------------------------------------------------------------------------

BEGIN_MESSAGE_MAP(CDataSetInfoDlg, CDialog)
ON_BN_CLICKED(IDC_CLASSIFICATION, OnClassification)
ON_BN_CLICKED(IDC_APPROXIMATION, OnApproximation)
END_MESSAGE_MAP()

void CDataSetInfoDlg::DoDataExchange(CDataExchange* dx) {
    CDialog::DoDataExchange(dx);
    DDX_Text(dx, IDC_NUMBER_OF_INPUTS, m_nInputs);
    DDX_Text(dx, IDC_NUMBER_OF_OUTPUTS, m_nOutputs);
    DDX_Radio(dx, IDC_CLASSIFICATION, m_nDataSetType);
    DDX_Text(dx, IDC_NUMBER_OF_PATTERNS, m_nPatterns);
}

void CDataSetInfoDlg::OnOK() {
    if (!UpdateData(TRUE)) return;
    if (m_nInputs == 0) {
        MessageBox(kNoInputs, "Error", MB_ICONHAND);
        return;
    }
    if (m_nOutputs == 0) {
        MessageBox("Number of Outputs Should Be Larger Than Zero", "Error", MB_ICONHAND);
        return;
    }
    CDialog::OnOK();
}

void CDataSetInfoDlg::OnClassification() { m_nDataSetType = 0; }

void CDataSetInfoDlg::OnApproximation() { m_nDataSetType = 1; }
