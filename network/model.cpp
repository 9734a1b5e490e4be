// The network model: packing of the parameter vector, the network output, the error measure and the
// worst-pattern search.
#include <climits>
#include <cmath>
#include <cstring>
#include <new>

#include "network/kernels.h"
#include "network/network.h"
#include "platform/thread.h"
#include "workspace/blocks.h"
#include "workspace/workspace.h"

bool IsImprovedAlgorithm(int nAlgorithm) { return nAlgorithm == 1 || nAlgorithm == 4; }

CParamLayout LayoutOf(const CVantrelDlg& dlg) {
    CParamLayout layout;
    layout.nUnits = dlg.m_nUnits;
    layout.nInputs = dlg.m_nInputs;
    layout.nOutputs = dlg.m_nOutputs;
    layout.bImproved = IsImprovedAlgorithm(dlg.m_nAlgorithm);
    return layout;
}

CNetworkView ViewOf(const CVantrelDlg& dlg, bool bImproved) {
    CNetworkView view;
    view.pInputs = dlg.m_pInputs;
    view.pTargets = dlg.m_pTargets;
    view.pInputWeights = dlg.m_pInputWeights;
    view.pOutputWeights = dlg.m_pOutputWeights;
    view.pWidths = dlg.m_pWidths;
    view.pCenters = dlg.m_pCenters;
    view.nPatterns = dlg.m_nPatterns;
    view.layout = LayoutOf(dlg);
    view.layout.bImproved = bImproved;
    return view;
}

namespace {

void CopyBlock(double* to, const double* from, UINT count) {
    if (count > 0) std::memcpy(to, from, sizeof(double) * count);
}

// Output of the network for one input vector whose first `used` elements count; the rows of V and C stand at
// stride m_nInputs.
double OutputAt(const CVantrelDlg& dlg, const double* x, UINT used) {
    const UINT n = dlg.m_nInputs;
    const double* w = dlg.m_pOutputWeights;
    double y = w[0];
    for (UINT h = 0; h < dlg.m_nUnits; ++h) {
        if ((h & 0xFFFF) == 0xFFFF) AfxThrowIfAbandoned();  // a network of millions of units takes a while
        const double* v = dlg.m_pInputWeights + static_cast<size_t>(h) * n;
        const double* c = dlg.m_pCenters + static_cast<size_t>(h) * n;
        double dist = 0.0;
        for (UINT i = 0; i < used; ++i) {
            const double a = v[i] * x[i] - c[i];
            dist += a * a;
        }
        y += w[h + 1] * std::exp(-dist / dlg.m_pWidths[h]);
    }
    return y;
}

// The average sum square error; with outputs given, y of every pattern is stored there as well. No pattern
// gives 0 / 0, a NaN, which every caller already treats as a finished error.
double AverageError(const CVantrelDlg& dlg, double* outputs) {
    return kernels::SumSquaredErrors(ViewOf(dlg, false), outputs) / static_cast<double>(dlg.m_nPatterns);
}

}  // namespace

void CVantrelDlg::PackParameters() {
    // The vector's length is a count: a network whose parameters it can't count is refused before any block.
    const double count = double(m_nUnits + 1.0) * m_nOutputs + m_nUnits +
                         double(m_nUnits) * m_nInputs * (IsImprovedAlgorithm(m_nAlgorithm) ? 2 : 1);
    if (count > UINT_MAX) throw std::bad_alloc();
    const CParamLayout layout = LayoutOf(*this);
    CBlockCounts counts = CountsOf(*this);
    counts.params = layout.Count();
    ReplaceBlocks(*this, {Block::Params, Block::Delta}, counts);
    m_nParams = layout.Count();

    const UINT weights = m_nUnits * m_nInputs;
    CopyBlock(m_pParams, m_pOutputWeights, layout.OutputWeightCount());
    CopyBlock(m_pParams + layout.Widths(), m_pWidths, m_nUnits);
    if (layout.bImproved) CopyBlock(m_pParams + layout.InputWeights(), m_pInputWeights, weights);
    CopyBlock(m_pParams + layout.Centers(), m_pCenters, weights);
}

void CVantrelDlg::UnpackParameters() {
    const CParamLayout layout = LayoutOf(*this);
    const UINT weights = m_nUnits * m_nInputs;
    CopyBlock(m_pOutputWeights, m_pParams, layout.OutputWeightCount());
    CopyBlock(m_pWidths, m_pParams + layout.Widths(), m_nUnits);
    if (layout.bImproved) CopyBlock(m_pInputWeights, m_pParams + layout.InputWeights(), weights);
    CopyBlock(m_pCenters, m_pParams + layout.Centers(), weights);
}

double NetworkOutput(const CVantrelDlg& dlg, const double* x) { return OutputAt(dlg, x, dlg.m_nInputs); }

double CVantrelDlg::ComputeError() { return AverageError(*this, nullptr); }

double CVantrelDlg::ComputeOutputs() { return AverageError(*this, m_pOutputs); }

double CVantrelDlg::EvaluatePoint(double x, double y) {
    const double point[2] = {x, y};
    // Callers have two inputs; a narrower network reads only what its rows hold.
    return OutputAt(*this, point, m_nInputs < 2 ? m_nInputs : 2);
}

UINT CVantrelDlg::FindWorstPattern() {
    // With no pattern there is nothing to compare: the first index is the only sensible answer, and no
    // element is read.
    if (m_nPatterns == 0) return 0;
    UINT worst = 0;
    double largest = std::fabs(m_pTargets[0] - m_pOutputs[0]);
    for (UINT p = 0; p < m_nPatterns; ++p) {
        const double a = std::fabs(m_pTargets[p] - m_pOutputs[p]);
        if (largest < a) {
            largest = a;
            worst = p;
        }
    }
    return worst;
}
