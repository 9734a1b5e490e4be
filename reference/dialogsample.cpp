// Sample problems in a workspace (see dialogsample.h).
#include "reference/dialogsample.h"

#include <algorithm>

#include "workspace/blocks.h"
#include "workspace/workspace.h"

void MakeSample(CVantrelDlg& dlg, const CSampleShape& shape) {
    const CSampleArrays s = DrawSample(shape);
    dlg.m_nPatterns = shape.nPatterns;
    dlg.m_nInputs = shape.nInputs;
    dlg.m_nOutputs = 1;
    dlg.m_nUnits = shape.nUnits;
    dlg.m_nNetworkInputs = shape.nInputs;
    dlg.m_nAlgorithm = shape.nAlgorithm;
    ReplaceBlocks(dlg,
                  {Block::Inputs, Block::Targets, Block::Outputs, Block::InputWeights, Block::OutputWeights,
                   Block::Widths, Block::Centers},
                  CountsOf(dlg));
    std::copy(s.inputs.begin(), s.inputs.end(), dlg.m_pInputs);
    std::copy(s.targets.begin(), s.targets.end(), dlg.m_pTargets);
    std::copy(s.inputWeights.begin(), s.inputWeights.end(), dlg.m_pInputWeights);
    std::copy(s.outputWeights.begin(), s.outputWeights.end(), dlg.m_pOutputWeights);
    std::copy(s.widths.begin(), s.widths.end(), dlg.m_pWidths);
    std::copy(s.centers.begin(), s.centers.end(), dlg.m_pCenters);
    dlg.PackParameters();
}
