// Verification: the press of its button. Both output files are made first, then the pattern set of the chosen
// path, then one row per pattern into both; the timestamped file is opened on the desktop at the end.
#include <string>
#include <utility>

#include "files/datafile.h"
#include "files/resultfiles.h"
#include "files/scanner.h"
#include "files/verification.h"
#include "platform/files.h"
#include "workspace/network.h"
#include "workspace/workspace.h"

namespace {

void ShowError(CVantrelDlg& dlg, const char* text) { dlg.MessageBox(text, "Error", MB_ICONHAND); }

bool TrainingPatterns(CVantrelDlg& dlg, CPatternSet& set) {
    const std::size_t count = dlg.m_nPatterns;
    const std::size_t inputs = count * dlg.m_nInputs;
    const std::size_t targets = count * dlg.m_nOutputs;
    set = CPatternSet(dlg.m_nInputs, dlg.m_nOutputs, count, std::vector<double>(dlg.m_pInputs, dlg.m_pInputs + inputs),
                      std::vector<double>(dlg.m_pTargets, dlg.m_pTargets + targets));
    return true;
}

bool TestingPatterns(CVantrelDlg& dlg, CPatternSet& set) {
    CFileDialog fileDlg(TRUE, "txt", nullptr, 6, kDataFileFilter);
    if (fileDlg.DoModal() != IDOK) return false;
    std::string text;
    const ReadTextResult read = ReadScanText(fileDlg.GetPathName(), text);
    if (read == ReadTextResult::CannotOpen) {
        dlg.MessageBox("Data file opening failed", "Error", MB_ICONEXCLAMATION);
        return false;
    }
    if (read != ReadTextResult::Ok) {
        ShowError(dlg, kDataSetTooLarge);
        return false;
    }
    CPatternRows rows;
    const bool fits = ReadPatterns(text, rows);
    if (rows.shape.columns != static_cast<std::size_t>(dlg.m_nInputs) + dlg.m_nOutputs) {
        ShowError(dlg, "Training Data does not match the testing data!");
        return false;
    }
    if (!fits) {
        ShowError(dlg, kDataSetTooLarge);
        return false;
    }
    set = CPatternSet(rows.nInputs, 1, rows.shape.patterns, std::move(rows.inputs), std::move(rows.targets));
    return true;
}

// A generated grid is only for a set of its own number of inputs; its dialog then says where it lies.
bool GridChosen(CVantrelDlg& dlg, UINT inputs, const char* otherInputs, CDialog& gridDialog) {
    if (dlg.m_nInputs != inputs) {
        ShowError(dlg, otherInputs);
        return false;
    }
    return gridDialog.DoModal() == IDOK;
}

bool Grid1D(CVantrelDlg& dlg, CPatternSet& set) {
    if (!GridChosen(dlg, 1, "This Testing is only for 1-D inputs", dlg.m_dlgTest1D)) return false;
    const CTest1DDlg& grid = dlg.m_dlgTest1D;
    set = CPatternSet(CGridAxis{grid.m_dMinValue, grid.m_dMaxValue, grid.m_nPoints});
    return true;
}

bool Grid2D(CVantrelDlg& dlg, CPatternSet& set) {
    if (!GridChosen(dlg, 2, "This Testing is only for 2-D inputs", dlg.m_dlgTest2D)) return false;
    const CTest2DDlg& grid = dlg.m_dlgTest2D;
    set = CPatternSet(CGridAxis{grid.m_dMinX, grid.m_dMaxX, grid.m_nPointsX},
                      CGridAxis{grid.m_dMinY, grid.m_dMaxY, grid.m_nPointsY});
    return true;
}

// Load Data of a set with another number of inputs keeps the trained network, whose rows then have another
// stride than the patterns: no output computed from it would mean anything, and it would read past its arrays.
// Such a press ends with a message before the first row. A network of no units reads no input and fits all.
bool NetworkFitsInputs(CVantrelDlg& dlg) {
    if (dlg.m_pOutputWeights != nullptr && (dlg.m_nUnits == 0 || dlg.m_nNetworkInputs == dlg.m_nInputs))
        return true;
    CString text;
    text.Format("Inputs of the network: %u, of the data set: %u. Initialize and train the network on this data set.",
                dlg.m_nNetworkInputs, dlg.m_nInputs);
    ShowError(dlg, text);
    return false;
}

// The pattern set of the chosen path; false when the press ends here, after the path's own message if any.
bool BuildPatternSet(CVantrelDlg& dlg, CPatternSet& set) {
    switch (dlg.m_nGeneralization) {
        case GeneralizationTrainingPatterns: return TrainingPatterns(dlg, set);
        case GeneralizationTestingPatterns: return TestingPatterns(dlg, set);
        case GeneralizationCreate1D: return Grid1D(dlg, set);
        case GeneralizationCreate2D: return Grid2D(dlg, set);
        default: return false;
    }
}

}  // namespace

void CVantrelDlg::OnVerification() {
    CString stampedPath;
    CString outputPath;
    if (!CreateOutputFile(&stampedPath, &outputPath)) {
        ShowError(*this, "Create File Failed!");
        return;
    }
    AppendPathInfo("Output file:", stampedPath);
    AppendPathInfo("Output file:", outputPath);
    CFile stamped;
    CFile output;
    if (!stamped.Open(stampedPath, CFile::modeWrite)) {
        AppendInfo(WriteFailureLine(stampedPath, stamped.GetError()));
        ShowError(*this, "Saving Data file Open failed");
        return;
    }
    if (!output.Open(outputPath, CFile::modeWrite)) {
        AppendInfo(WriteFailureLine(outputPath, output.GetError()));
        ShowError(*this, "Saving Data file output.txt Open failed");
        return;
    }
    CPatternSet set;
    if (!BuildPatternSet(*this, set)) return;
    if (set.Count() > 0 && !NetworkFitsInputs(*this)) return;
    WriteVerificationRows(NetworkOf(*this), set, stamped, output);
    // Each file that the disk could not take is named with its cause; an incomplete file is not shown as
    // the verification's result.
    auto close = [this](CFile& file, const CString& path) {
        const CString failure = CloseWrittenFile(file, path);
        if (!failure.IsEmpty()) ShowError(*this, failure);
        return failure.IsEmpty();
    };
    const bool stampedSaved = close(stamped, stampedPath);
    const bool outputSaved = close(output, outputPath);
    if (stampedSaved && outputSaved) ShellExecuteA(nullptr, "open", stampedPath, nullptr, nullptr, SW_SHOW);
}
