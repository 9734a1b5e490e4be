// Sample problems for tests and benchmarks (see samples.h).
#include "network/samples.h"

#include <cmath>
#include <random>

#include "workspace/workspace.h"

namespace {

double* Fresh(double*& block, size_t count) {
    delete[] block;
    block = new double[count];
    return block;
}

}  // namespace

void MakeSample(CVantrelDlg& dlg, const CSampleShape& shape) {
    std::mt19937 random(shape.seed);
    std::uniform_real_distribution<double> unit(-1.0, 1.0);
    const size_t P = shape.nPatterns, n = shape.nInputs, u = shape.nUnits;
    dlg.m_nPatterns = shape.nPatterns;
    dlg.m_nInputs = shape.nInputs;
    dlg.m_nOutputs = 1;
    dlg.m_nUnits = shape.nUnits;
    dlg.m_nAlgorithm = shape.nAlgorithm;

    double* inputs = Fresh(dlg.m_pInputs, P * n);
    double* targets = Fresh(dlg.m_pTargets, P);
    for (size_t p = 0; p < P; ++p) {
        double sum = 0.0;
        for (size_t i = 0; i < n; ++i) sum += inputs[p * n + i] = unit(random);
        targets[p] = std::sin(3.0 * sum);
    }
    Fresh(dlg.m_pOutputs, P);

    double* V = Fresh(dlg.m_pInputWeights, u * n);
    double* W = Fresh(dlg.m_pOutputWeights, u + 1);
    double* S = Fresh(dlg.m_pWidths, u);
    double* C = Fresh(dlg.m_pCenters, u * n);
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
