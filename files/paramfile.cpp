// Load From File: a network from a parameter file in place of a drawn one.
#include "files/paramfile.h"

#include <climits>
#include <string>

#include "files/initialization.h"
#include "files/scanner.h"
#include "workspace/workspace.h"

ParamFileStatus ParseParameterText(std::string_view text, UINT nInputs, CNetworkParameters& params) {
    // The unit count is row 1's count divided by the inputs: without inputs there is nothing to divide by.
    if (nInputs == 0) return ParamFileStatus::NoInputs;
    CRowScanner rows(text);
    const std::size_t n = nInputs;
    const std::size_t first = ScanRowValues(rows, params.inputWeights);
    // Row 1 must hold whole units. A surplus has no room in the input weights, and dropping it would take a
    // file made for another data set without a word: such a file is refused with the mismatch message.
    if (first % n != 0 || first / n > UINT_MAX) return ParamFileStatus::UnitsMismatch;
    const std::size_t u = first / n;
    if (ScanRowValues(rows, params.outputWeights) != u + 1) return ParamFileStatus::UnitsMismatch;
    if (ScanRowValues(rows, params.centers) != n * u) return ParamFileStatus::UnitsMismatch;
    if (ScanRowValues(rows, params.widths) != u) return ParamFileStatus::UnitsMismatch;
    params.units = static_cast<UINT>(u);
    return ParamFileStatus::Ok;
}

namespace {

void CopyValues(const std::vector<double>& values, double* working, double* initial) {
    for (std::size_t k = 0; k < values.size(); ++k) {
        working[k] = values[k];
        initial[k] = values[k];
    }
}

}  // namespace

bool LoadParameterFile(CVantrelDlg& dlg) {
    if (dlg.m_nInputs == 0) {  // a data set without inputs is never loaded; this guards the division
        dlg.MessageBox("Number of Inputs Should Be Larger Than Zero", "Error", MB_ICONHAND);
        return false;
    }
    CFileDialog fileDlg(TRUE, "txt", nullptr, 6, "Initial files (*.ini)|*.ini|");
    if (fileDlg.DoModal() != IDOK) {
        dlg.m_bNetworkReady = false;
        return false;
    }
    std::string text;
    const ReadTextResult read = ReadScanText(fileDlg.GetPathName(), text);
    if (read != ReadTextResult::Ok) {
        dlg.MessageBox(read == ReadTextResult::CannotOpen ? "Sorry, Cannot Open File!"
                                                          : "Parameter file is too large to load!",
                       "Error", MB_ICONHAND);
        dlg.m_bNetworkReady = false;
        return false;
    }

    CNetworkParameters params;
    if (ParseParameterText(text, dlg.m_nInputs, params) != ParamFileStatus::Ok) {
        dlg.MessageBox("Number of RBF units does not match!", "Error", MB_ICONHAND);
        return false;
    }
    if (!ReplaceNetworkArrays(dlg, params.units)) {
        dlg.m_bNetworkReady = false;
        return false;
    }
    CopyValues(params.inputWeights, dlg.m_pInputWeights, dlg.m_pInitInputWeights);
    CopyValues(params.outputWeights, dlg.m_pOutputWeights, dlg.m_pInitOutputWeights);
    CopyValues(params.centers, dlg.m_pCenters, dlg.m_pInitCenters);
    CopyValues(params.widths, dlg.m_pWidths, dlg.m_pInitWidths);
    return true;
}
