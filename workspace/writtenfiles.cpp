// The workspace's result and output files: the members that make them and write the run's blocks, on the
// formats of files/, and the messages of what went wrong.
#include "files/resultfiles.h"
#include "files/verification.h"
#include "workspace/workspace.h"

namespace {

void ShowError(CVantrelDlg& dlg, const char* text) { dlg.MessageBox(text, "Error", MB_ICONHAND); }

// A block that the file can't take is lost and the run goes on without saving: the training is worth its
// curves and read-outs, and the user can stop it. The failure is told once per run. A file that misses a
// block is incomplete, as after a write that fails (AppendToFile), and later blocks would only make it look
// whole; and a folder that has vanished would answer every further trial with a box that holds the worker,
// and the user, until it is closed. So the path is emptied and nothing more is written.
void AppendBlock(CVantrelDlg& dlg, CString& path, const std::vector<std::string>& block) {
    CString failure;
    int openError = 0;
    const AppendResult result = AppendToFile(path, block, failure, openError);
    if (result == AppendResult::CannotOpen) {
        dlg.AppendInfo(WriteFailureLine(path, openError));
        path.Empty();
        ShowError(dlg, "Open Result File Failed!");
    } else if (!failure.IsEmpty()) {
        ShowError(dlg, failure);
    }
}

CResultSection TrainedSection(const CVantrelDlg& dlg) {
    return {dlg.m_pInputWeights, dlg.m_pOutputWeights, dlg.m_pCenters, dlg.m_pWidths};
}

}  // namespace

int CVantrelDlg::CreateResultFile(CString* path) {
    int error = 0;
    if (!CreateStampedFile("result.txt", *path, error)) {
        AppendInfo(WriteFailureLine(*path, error));
        ShowError(*this, "Create Result File Failed!");
        return 0;
    }
    return 1;
}

void CVantrelDlg::WriteRunResults(CString* path, UINT units, UINT iterations, double error) {
    const CResultSection initial{m_pInitInputWeights, m_pInitOutputWeights, m_pInitCenters, m_pInitWidths};
    AppendBlock(*this, *path, ResultBlock(units, m_nInputs, iterations, error, &initial, TrainedSection(*this)));
}

void CVantrelDlg::WriteErrCorResults(CString* path, UINT units, UINT iterations, double error) {
    AppendBlock(*this, *path, ResultBlock(units, m_nInputs, iterations, error, nullptr, TrainedSection(*this)));
}

int CVantrelDlg::CreateOutputFile(CString* stampedPath, CString* outputPath) {
    int error = 0;
    const OutputFiles made = CreateOutputFiles(*stampedPath, *outputPath, error);
    if (made == OutputFiles::Made) return 1;
    const bool stamped = made == OutputFiles::StampedFailed;
    AppendInfo(WriteFailureLine(stamped ? *stampedPath : *outputPath, error));
    ShowError(*this, stamped ? "Create Result File Failed!" : "Create Result File Failed (output.txt)!");
    return 0;
}
