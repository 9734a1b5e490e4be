// Sample problems for tests and benchmarks (see samples.h).
#include "reference/samples.h"

#include <cmath>
#include <random>

#include "workspace/blocks.h"
#include "workspace/workspace.h"

void MakeSample(CVantrelDlg& dlg, const CSampleShape& shape) {
    std::mt19937 random(shape.seed);
    std::uniform_real_distribution<double> unit(-1.0, 1.0);
    const size_t P = shape.nPatterns, n = shape.nInputs, u = shape.nUnits;
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
    double* inputs = dlg.m_pInputs;
    double* targets = dlg.m_pTargets;
    for (size_t p = 0; p < P; ++p) {
        double sum = 0.0;
        for (size_t i = 0; i < n; ++i) sum += inputs[p * n + i] = unit(random);
        targets[p] = std::sin(3.0 * sum);
    }

    double* V = dlg.m_pInputWeights;
    double* W = dlg.m_pOutputWeights;
    double* S = dlg.m_pWidths;
    double* C = dlg.m_pCenters;
    W[0] = 0.1 * unit(random);
    for (size_t h = 0; h < u; ++h) {
        W[h + 1] = unit(random);
        S[h] = 0.6 + 0.4 * unit(random);
        for (size_t i = 0; i < n; ++i) {
            V[h * n + i] = 1.0 + 0.3 * unit(random);
            C[h * n + i] = unit(random);
        }
    }
    dlg.PackParameters();
}

UINT UnitsForParams(UINT params, UINT inputs) {
    if (params < 1 || (params - 1) % (inputs + 2) != 0) return 0;
    return (params - 1) / (inputs + 2);
}
