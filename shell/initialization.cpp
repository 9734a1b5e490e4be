// Initialization: how the network begins, drawn by the dialog's settings or read from a parameter file, and the
// settings summary of the information list.
#include "shell/initialization.h"

#include <new>
#include <string>

#include "files/paramfile.h"
#include "files/scanner.h"
#include "workspace/blocks.h"
#include "workspace/workspace.h"

namespace {

CString Formatted(const char* format, double value) {
    CString line;
    line.Format(format, value);
    return line;
}

CString Formatted(const char* format, double lower, double upper) {
    CString line;
    line.Format(format, lower, upper);
    return line;
}

// Counts are unsigned: "%u" prints what "%d" would for every count up to 2^31, and the right number beyond.
CString FormattedCount(const char* format, UINT value) {
    CString line;
    line.Format(format, value);
    return line;
}

void AppendInitialValueLines(const CInitializationDlg& init, std::vector<CString>& lines) {
    lines.push_back(init.m_nInputWeightMode == 0
                        ? Formatted("Input Weight: randomly generated between %.2f and %.2f", init.m_dInputWeightMin,
                                    init.m_dInputWeightMax)
                        : Formatted("Input Weight: selected as %.2f", init.m_dInputWeightFixed));
    lines.push_back(init.m_nOutputWeightMode == 0
                        ? Formatted("Output Weight: randomly generated between %.2f and %.2f",
                                    init.m_dOutputWeightMin, init.m_dOutputWeightMax)
                        : Formatted("Output Weight: selected as %.2f", init.m_dOutputWeightFixed));
    lines.push_back(init.m_nWidthMode == 0 ? Formatted("Width: randomly generated between %.2f and %.2f",
                                                       init.m_dWidthMin, init.m_dWidthMax)
                                           : Formatted("Width: selected as %.2f", init.m_dWidthFixed));
    if (init.m_nCenterMode == 0)
        lines.push_back("Center: randomly generated in the same range of inputs");
    else if (init.m_nCenterMode == 1)
        lines.push_back("Center: randomly selected from the input patterns");
    else
        lines.push_back("Center: randomly and uniquely selected from the input patterns");
}

}  // namespace

bool ReplaceNetworkArrays(CVantrelDlg& dlg, UINT units) {
    CBlockCounts counts = CountsOf(dlg);
    counts.units = units;
    // A count too large for memory leaves the network as it was.
    try {
        ReplaceBlocks(dlg,
                      {Block::InputWeights, Block::OutputWeights, Block::Widths, Block::Centers,
                       Block::InitInputWeights, Block::InitOutputWeights, Block::InitWidths, Block::InitCenters},
                      counts);
    } catch (const std::bad_alloc&) {
        dlg.MessageBox("Number of RBF units is too large!", "Error", MB_ICONHAND);
        return false;
    }
    dlg.m_nUnits = units;
    dlg.m_nNetworkInputs = dlg.m_nInputs;
    return true;
}

const char* InitializationError(const CInitializationDlg& dlg) {
    if (dlg.m_nInputWeightMode == 0 && dlg.m_dInputWeightMin > dlg.m_dInputWeightMax)
        return "Input Weights: Lower boundary should be less than upper boundary!";
    if (dlg.m_nOutputWeightMode == 0 && dlg.m_dOutputWeightMin > dlg.m_dOutputWeightMax)
        return "Output Weights: Lower boundary should be less than upper boundary!";
    if (dlg.m_nWidthMode == 0 && dlg.m_dWidthMin > dlg.m_dWidthMax)
        return "Widths: Lower boundary should be less than upper boundary!";
    if (dlg.m_nWidthMode == 0 && dlg.m_dWidthMin <= 0) return "Widths: Minimum widths should be larger than zero!";
    if (dlg.m_nWidthMode == 0 && dlg.m_dWidthMax <= 0) return "Widths: Maximum widths should be larger than zero!";
    if (dlg.m_nWidthMode == 1 && dlg.m_dWidthFixed <= 0) return "Widths: Fixed widths should be larger than zero!";
    // Drawing centers without repetition needs as many distinct patterns as units.
    if (dlg.m_nCenterMode == 2 && dlg.m_nUnits > dlg.m_nPatterns)
        return "Number of RBF units cannot larger than Number of patterns";
    return nullptr;
}

std::vector<CString> SettingsLines(const CVantrelDlg& dlg) {
    static const char* const kAlgorithmLines[] = {
        "Selected Algorithm: Second Order Gradient Algorithm", "Selected Algorithm: Improved Second Order Algorithm",
        "Selected Algorithm: Error Correction Algorithm", "Selected Algorithm: First Order Gradient Method",
        "Selected Algorithm: Improved First Order Method"};
    const int algorithm = dlg.m_nAlgorithm;
    const bool firstOrder = algorithm == 3 || algorithm == 4;
    std::vector<CString> lines;
    if (algorithm >= 0 && algorithm <= 4) lines.push_back(kAlgorithmLines[algorithm]);
    lines.push_back(FormattedCount("Number of Patterns: %u", dlg.m_nPatterns));
    lines.push_back(FormattedCount("Number of Inputs: %u", dlg.m_nInputs));
    lines.push_back(FormattedCount("Number of Outputs: %u", dlg.m_nOutputs));
    lines.push_back(FormattedCount("Total Number of RBF Units: %u", algorithm == 2 ? dlg.m_nMaxUnits : dlg.m_nUnits));
    lines.push_back(Formatted("Desired Error: %.6f", dlg.m_dDesiredError));
    if (firstOrder) {
        lines.push_back(Formatted("Learning Constant: %.4f", dlg.m_dLearningConstant));
        lines.push_back(Formatted("Momentum: %.4f", dlg.m_dMomentum));
    }
    if (algorithm == 2) return lines;
    if (dlg.m_dlgInitialization.m_nLoadFromFile != 0)
        lines.push_back("Read Parameters from file!");
    else
        AppendInitialValueLines(dlg.m_dlgInitialization, lines);
    return lines;
}

void CVantrelDlg::ShowSettings() {
    UpdateData(TRUE);
    ClearInfo();
    for (const CString& line : SettingsLines(*this)) AppendInfo(line);
}

namespace {

void CopyValues(const std::vector<double>& values, double* working, double* initial) {
    for (std::size_t k = 0; k < values.size(); ++k) {
        working[k] = values[k];
        initial[k] = values[k];
    }
}

// The Load From File path: asks for the file, reads it and replaces the network arrays. True when the network
// was read; otherwise it has shown its message and set m_bNetworkReady as the case asks.
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
        dlg.MessageBox(read == ReadTextResult::CannotOpen ? kCannotOpenFile : kParamFileTooLarge,
                       "Error", MB_ICONHAND);
        dlg.m_bNetworkReady = false;
        return false;
    }

    CNetworkParameters params;
    if (ParseParameterText(text, dlg.m_nInputs, params) != ParamFileStatus::Ok) {
        dlg.MessageBox(kUnitsMismatch, "Error", MB_ICONHAND);
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

}  // namespace

void CVantrelDlg::OnInitialization() {
    UpdateData(TRUE);
    if (!m_bDataLoaded) {
        MessageBox("Please Load Data Set !", "Error", MB_ICONHAND);
        return;
    }
    if (m_nAlgorithm == engine::kErrorCorrection) {
        if (m_dlgErrCorInit.DoModal() != IDOK) {
            m_bNetworkReady = false;
            return;
        }
        m_nMaxUnits = m_dlgErrCorInit.m_nMaxUnits;  // the run builds the network itself
    } else {
        m_dlgInitialization.m_dMomentum = m_dMomentum;
        m_dlgInitialization.m_dLearningConstant = m_dLearningConstant;
        m_dlgInitialization.m_nPatterns = m_nPatterns;
        if (m_dlgInitialization.DoModal() != IDOK) {
            m_bNetworkReady = false;
            return;
        }
        m_dMomentum = m_dlgInitialization.m_dMomentum;
        m_dLearningConstant = m_dlgInitialization.m_dLearningConstant;
        if (m_dlgInitialization.m_nLoadFromFile != 0) {
            if (!LoadParameterFile(*this)) return;
        } else {
            if (!ReplaceNetworkArrays(*this, m_dlgInitialization.m_nUnits)) {
                m_bNetworkReady = false;
                return;
            }
            InitializeNetwork();
        }
    }
    m_bNetworkReady = true;
    UpdateData(FALSE);
    ShowSettings();
}
