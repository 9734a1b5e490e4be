// Online training: a network that the Error Correction Algorithm has grown is extended by the next run, with
// new patterns merged behind the old ones and with extra units. This file arms that run; the run itself is
// TrainByErrorCorrection with m_bOnline set.
#include <algorithm>
#include <climits>
#include <new>
#include <string>

#include "files/datafile.h"
#include "files/scanner.h"
#include "training/training.h"
#include "workspace/blocks.h"

namespace {

constexpr const char* kRunUnderWay =
    "Online Training can't be switched while training is under way: wait for the run to end, or stop it.";

void UncheckOnline(CVantrelDlg& dlg) {
    dlg.m_bOnline = 0;
    dlg.m_btnOnline.SendMessage(BM_SETCHECK, BST_UNCHECKED);
}

// The patterns of a classification set, old and new alike, go to the data plot over an empty grid: the
// network's decision regions of the old set say nothing of the new bounds until the run has drawn them.
void ShowMergedPatterns(CVantrelDlg& dlg) {
    if (dlg.m_bClassification) dlg.m_dataPlot.SetPatterns(dlg.m_pInputs, dlg.m_nInputs, dlg.m_pTargets, dlg.m_nPatterns);
    dlg.m_dataPlot.RefreshDataPlot(dlg.m_bClassification);
}

}  // namespace

namespace training {

const char* const kNetworkOfAnotherSet =
    "The RBF network was trained on another data set: train it on this one with the Error Correction Algorithm "
    "before Online Training.";

bool NetworkFitsPatterns(const CVantrelDlg& dlg) {
    return dlg.m_nInputs == dlg.m_nNetworkInputs && dlg.m_nPatterns == dlg.m_nNetworkPatterns;
}

}  // namespace training

void CVantrelDlg::OnOnlineTraining() {
    // The box has already flipped when this runs. During a run, and after Stop until the worker has finished
    // its iteration (m_bTraining is cleared only then), the patterns, outputs and counts that the worker reads
    // must stay as they are, and the controls it locked must stay locked: the click is refused and the box
    // goes back to how it stood.
    if (m_bTraining) {
        m_btnOnline.SendMessage(BM_SETCHECK, m_bOnline != 0 ? BST_CHECKED : BST_UNCHECKED);
        MessageBox(kRunUnderWay, "Error", MB_ICONHAND);
        return;
    }
    m_bOnline = m_bOnline == 0 ? 1 : 0;
    if (m_bOnline == 0) {
        training::EnableItems(*this, kOnlineLockedControls, TRUE);
        return;
    }
    if (m_nUnits == 0) {
        MessageBox("Pre-Trained RBF Network is Required!", "Error", MB_ICONHAND);
        UncheckOnline(*this);
        return;
    }
    if (!training::NetworkFitsPatterns(*this)) {
        MessageBox(training::kNetworkOfAnotherSet, "Error", MB_ICONHAND);
        UncheckOnline(*this);
        return;
    }
    m_dlgOnlineSettings.m_nCurrentUnits = m_nUnits;
    if (m_dlgOnlineSettings.DoModal() != IDOK) {
        UncheckOnline(*this);
        return;
    }
    m_nMaxUnits = m_dlgOnlineSettings.m_nExtraUnits;
    CString& path = m_dlgOnlineSettings.m_strNewDataPath;
    if (!path.IsEmpty() && !LoadOnlineData(&path)) {
        UncheckOnline(*this);
        return;
    }
    ShowMergedPatterns(*this);
    training::EnableItems(*this, kOnlineLockedControls, FALSE);
}

int CVantrelDlg::LoadOnlineData(CString* path) {
    std::string text;
    const ReadTextResult read = ReadScanText(*path, text);
    if (read != ReadTextResult::Ok) {
        MessageBox(read == ReadTextResult::CannotOpen ? "New Data File Open Failed!" : kDataSetTooLarge, "Error",
                   MB_ICONHAND);
        return 0;
    }
    CPatternRows rows;
    const bool fits = ReadPatterns(text, rows);
    std::string().swap(text);
    if (rows.shape.columns != std::size_t(m_nInputs) + 1) {
        MessageBox("New Data Does Not Match Old Data!", "Error", MB_ICONHAND);
        return 0;
    }
    if (!fits || rows.shape.patterns > UINT_MAX - m_nPatterns) {
        MessageBox(kDataSetTooLarge, "Error", MB_ICONHAND);
        return 0;
    }
    // The network fits the data set (checked before), so m_pOutputs has a row for each old pattern.
    const std::size_t oldPatterns = m_nPatterns, n = m_nInputs, outputs = m_nOutputs;
    CBlockCounts counts = CountsOf(*this);
    counts.patterns = oldPatterns + rows.shape.patterns;
    try {
        GrowBlocks(*this, {Block::Inputs, Block::Targets, Block::Outputs}, counts);
    } catch (const std::bad_alloc&) {
        MessageBox(kDataSetTooLarge, "Error", MB_ICONHAND);
        return 0;
    }
    // Rows shorter than the first leave the last elements of the new rows at the 0.0 that the reader starts
    // them with, as a token without a number reads; longer rows were read only as far as the rows reach.
    const std::size_t targetRoom = std::min(rows.targets.size(), rows.shape.patterns * outputs);
    std::copy(rows.inputs.begin(), rows.inputs.end(), m_pInputs + oldPatterns * n);
    std::copy(rows.targets.begin(), rows.targets.begin() + targetRoom, m_pTargets + oldPatterns * outputs);
    m_nPatterns = static_cast<UINT>(counts.patterns);
    m_nNetworkPatterns = m_nPatterns;
    return 1;
}
