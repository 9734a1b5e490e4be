// Load Data: the data set file into m_pInputs and m_pTargets, and the Data Set Information dialog.
#include <algorithm>
#include <climits>
#include <new>
#include <string>

#include "files/datafile.h"
#include "files/scanner.h"
#include "workspace/blocks.h"
#include "workspace/workspace.h"

namespace {

// Allocates both pattern arrays or neither.
bool AllocatePatternArrays(CVantrelDlg& dlg) {
    try {
        ReplaceBlocks(dlg, {Block::Inputs, Block::Targets}, CountsOf(dlg));
    } catch (const std::bad_alloc&) {
        return false;
    }
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
    if (fileDlg.DoModal() != IDOK) {
        m_bDataLoaded = false;
        return;
    }
    m_strDataPath = fileDlg.GetPathName();
    m_strDataTitle = fileDlg.GetFileTitle();

    std::string text;
    const ReadTextResult read = ReadScanText(m_strDataPath, text);
    if (read != ReadTextResult::Ok) {
        MessageBox(read == ReadTextResult::CannotOpen ? kCannotOpenFile : kDataSetTooLarge, "Error",
                   MB_ICONHAND);
        m_bDataLoaded = false;
        return;
    }

    if (HasBareLineFeeds(text)) ShowLineFeedNotice(*this, m_strDataPath);

    // The old set goes before the new one is read, so that memory holds one data set at a time; the text goes
    // once its rows are read.
    ReleaseBlocks(*this, {Block::Inputs, Block::Targets});
    CPatternRows rows;
    const bool fits = ReadPatterns(text, rows);
    std::string().swap(text);

    if (rows.shape.patterns > UINT_MAX || rows.shape.columns > UINT_MAX) {
        MessageBox(kDataSetTooLarge, "Error", MB_ICONHAND);
        m_bDataLoaded = false;
        return;
    }
    m_nPatterns = static_cast<UINT>(rows.shape.patterns);
    m_nOutputs = 1;
    m_nInputs = rows.shape.columns > 0 ? static_cast<UINT>(rows.shape.columns - 1) : 0;

    m_dlgDataSetInfo.m_nInputs = m_nInputs;
    m_dlgDataSetInfo.m_nOutputs = m_nOutputs;
    m_dlgDataSetInfo.m_nPatterns = m_nPatterns;
    m_dlgDataSetInfo.DoModal();  // however it ends, the load goes on
    m_bClassification = m_nInputs == 2 && m_dlgDataSetInfo.m_nDataSetType == 0;

    if (!fits || !AllocatePatternArrays(*this)) {
        // Nothing was loaded: the counts go back to those of no data, so that no loop walks the missing arrays.
        m_nPatterns = 0;
        m_nInputs = 0;
        m_nOutputs = 0;
        MessageBox(kDataSetTooLarge, "Error", MB_ICONHAND);
        m_bDataLoaded = false;
        return;
    }
    std::copy(rows.inputs.begin(), rows.inputs.end(), m_pInputs);
    std::copy(rows.targets.begin(), rows.targets.end(), m_pTargets);
    if (rows.values != rows.inputs.size() + rows.targets.size()) {
        MessageBox(kDataFileIncomplete, "Error", MB_ICONHAND);
        m_bDataLoaded = false;
        return;
    }

    // A set without patterns or without inputs (reached only by closing the information dialog without OK)
    // can't be trained or verified: counts divide the error and size the network. It is refused here, and
    // stays in the workspace as an incomplete file would.
    if (m_nPatterns == 0 || m_nInputs == 0) {
        MessageBox(m_nPatterns == 0 ? kNoPatterns : kNoInputs, "Error", MB_ICONHAND);
        m_bDataLoaded = false;
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
