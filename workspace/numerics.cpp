// The workspace's network members: each sizes the workspace's blocks where it must, then hands them to the
// engine on the run's cancel token.
#include <algorithm>
#include <climits>
#include <new>

#include "engine/kernels.h"
#include "platform/clock.h"
#include "workspace/blocks.h"
#include "workspace/network.h"
#include "workspace/workspace.h"

engine::CNetwork NetworkOf(const CVantrelDlg& dlg) {
    return engine::CNetwork{dlg.m_pInputWeights, dlg.m_pOutputWeights, dlg.m_pWidths, dlg.m_pCenters,
                            dlg.m_nUnits,        dlg.m_nInputs,        dlg.m_nOutputs};
}

engine::CNetwork InitialNetworkOf(const CVantrelDlg& dlg) {
    return engine::CNetwork{dlg.m_pInitInputWeights, dlg.m_pInitOutputWeights, dlg.m_pInitWidths,
                            dlg.m_pInitCenters,      dlg.m_nUnits,              dlg.m_nInputs, dlg.m_nOutputs};
}

engine::CPatterns PatternsOf(const CVantrelDlg& dlg) {
    return engine::CPatterns{dlg.m_pInputs, dlg.m_pTargets, dlg.m_nPatterns, dlg.m_nInputs, dlg.m_nOutputs};
}

engine::CNetworkView ViewOf(const CVantrelDlg& dlg, bool improved) {
    return engine::ViewOf(NetworkOf(dlg), PatternsOf(dlg), improved);
}

engine::CParamLayout LayoutOf(const CVantrelDlg& dlg) {
    return engine::LayoutOf(NetworkOf(dlg), engine::IsImprovedAlgorithm(dlg.m_nAlgorithm));
}

engine::CInitSettings InitSettingsOf(const CInitializationDlg& s) {
    engine::CInitSettings settings;
    settings.inputWeights = {s.m_nInputWeightMode, s.m_dInputWeightMin, s.m_dInputWeightMax, s.m_dInputWeightFixed};
    settings.outputWeights = {s.m_nOutputWeightMode, s.m_dOutputWeightMin, s.m_dOutputWeightMax,
                              s.m_dOutputWeightFixed};
    settings.widths = {s.m_nWidthMode, s.m_dWidthMin, s.m_dWidthMax, s.m_dWidthFixed};
    settings.centerMode = s.m_nCenterMode;
    return settings;
}

double NetworkOutput(const CVantrelDlg& dlg, const double* x) {
    return engine::NetworkOutput(NetworkOf(dlg), x, dlg.m_nInputs, engine::CCancelToken::Never());
}

void CVantrelDlg::PackParameters() {
    // The vector's length is a count: a network whose parameters it can't count is refused before any block.
    const bool improved = engine::IsImprovedAlgorithm(m_nAlgorithm);
    if (engine::ParameterCount(m_nUnits, m_nInputs, m_nOutputs, improved) > UINT_MAX) throw std::bad_alloc();
    const engine::CParamLayout layout = LayoutOf(*this);
    CBlockCounts counts = CountsOf(*this);
    counts.params = layout.Count();
    ReplaceBlocks(*this, {Block::Params, Block::Delta}, counts);
    m_nParams = layout.Count();
    engine::PackParameters(layout, NetworkOf(*this), m_pParams);
}

void CVantrelDlg::UnpackParameters() { engine::UnpackParameters(LayoutOf(*this), m_pParams, NetworkOf(*this)); }

double CVantrelDlg::ComputeError() { return engine::AverageError(ViewOf(*this, false), nullptr, m_cancel); }

double CVantrelDlg::ComputeOutputs() { return engine::AverageError(ViewOf(*this, false), m_pOutputs, m_cancel); }

double CVantrelDlg::EvaluatePoint(double x, double y) {
    const double point[2] = {x, y};
    // Callers have two inputs; a narrower network reads only what its rows hold.
    return engine::NetworkOutput(NetworkOf(*this), point, std::min<UINT>(m_nInputs, 2), m_cancel);
}

UINT CVantrelDlg::FindWorstPattern() { return engine::FindWorstPattern(m_pTargets, m_pOutputs, m_nPatterns); }

namespace {

double Accumulate(CVantrelDlg& dlg, bool improved, bool secondOrder) {
    // The kernel writes every element of the gradient and the quasi-Hessian, and uses m_pHessianInv as its
    // spare storage on the way: blocks that have their size already are kept from one iteration to the next,
    // neither taken anew nor cleared.
    if (secondOrder)
        FitBlocks(dlg, {Block::Gradient, Block::Hessian, Block::HessianInv}, CountsOf(dlg));
    else
        FitBlocks(dlg, {Block::Gradient}, CountsOf(dlg));
    return engine::kernels::AccumulateDerivatives(ViewOf(dlg, improved), dlg.m_nParams,
                                                  secondOrder ? dlg.m_pHessian : nullptr, dlg.m_pGradient,
                                                  secondOrder ? dlg.m_pHessianInv : nullptr, dlg.m_cancel);
}

}  // namespace

void CVantrelDlg::AccumulateSecondOrder() { Accumulate(*this, false, true); }

void CVantrelDlg::AccumulateImprovedSecondOrder() { Accumulate(*this, true, true); }

void CVantrelDlg::AccumulateGradient() { Accumulate(*this, false, false); }

void CVantrelDlg::AccumulateImprovedGradient() { Accumulate(*this, true, false); }

double AccumulateGradientAndError(CVantrelDlg& dlg, bool improved) {
    return Accumulate(dlg, improved, false) / static_cast<double>(dlg.m_nPatterns);
}

void CVantrelDlg::InitializeNetwork() {
    engine::CSeededRand random(GetTickCount());
    engine::DrawNetwork(InitSettingsOf(m_dlgInitialization), PatternsOf(*this), NetworkOf(*this),
                        InitialNetworkOf(*this), random, m_cancel);
}

void CVantrelDlg::LUdcmp(double* a, int n, int* indx) { engine::kernels::FactorLU(a, n, indx, m_cancel); }

void CVantrelDlg::SolveHessian(const double* diagonal, double damping, double* x) {
    engine::kernels::SolveDamped(m_pHessian, static_cast<int>(m_nParams), diagonal, damping, m_pGradient, x,
                                 m_pHessianInv, m_cancel);
}

void CVantrelDlg::ResetNetwork() {
    // The blocks are replaced whole, so a failed allocation leaves the old network as it was.
    CBlockCounts counts = CountsOf(*this);
    counts.units = 0;
    ReplaceBlocks(*this, {Block::InputWeights, Block::OutputWeights, Block::Widths, Block::Centers, Block::Outputs},
                  counts);
    std::fill(m_pOutputWeights, m_pOutputWeights + m_nOutputs, 1.0);
    m_nUnits = 0;
    m_nNetworkInputs = m_nInputs;
    m_nNetworkPatterns = m_nPatterns;
}

void CVantrelDlg::AddUnitAtWorstPattern() {
    const UINT worst = FindWorstPattern();
    CBlockCounts counts = CountsOf(*this);
    counts.units = m_nUnits + size_t(1);
    GrowBlocks(*this, {Block::InputWeights, Block::OutputWeights, Block::Widths, Block::Centers}, counts);
    m_nUnits = m_nUnits + 1;
    engine::PlaceUnitAt(NetworkOf(*this), m_nUnits - 1, m_pInputs + size_t(worst) * m_nInputs);
    CString text;
    text.Format("%d", static_cast<int>(m_nUnits));
    GetDlgItem(IDC_CURRENT_RBF_UNITS)->SetWindowText(text);
}
