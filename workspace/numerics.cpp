// The workspace's network members: thin calls of the engine's network policy on the workspace's blocks
// (trainee.h), which sizes them where it must and runs on the run's cancel token.
#include <algorithm>

#include "engine/kernels.h"
#include "platform/clock.h"
#include "workspace/blocks.h"
#include "workspace/network.h"
#include "workspace/trainee.h"
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

// ---- the workspace as the policy's store and source -------------------------------------------------------

engine::Algorithm CWorkspaceStore::GetAlgorithm() { return static_cast<engine::Algorithm>(m_dlg.m_nAlgorithm); }

engine::CNetwork CWorkspaceStore::Network() { return NetworkOf(m_dlg); }

engine::CNetwork CWorkspaceStore::InitialNetwork() { return InitialNetworkOf(m_dlg); }

engine::CStepArrays CWorkspaceStore::Step() {
    return engine::CStepArrays{m_dlg.m_pParams, m_dlg.m_pDelta, m_dlg.m_pGradient, m_dlg.m_pHessian,
                               m_dlg.m_nParams};
}

void CWorkspaceStore::SizeParameters(UINT nParams) {
    CBlockCounts counts = CountsOf(m_dlg);
    counts.params = nParams;
    ReplaceBlocks(m_dlg, {Block::Params, Block::Delta}, counts);
    m_dlg.m_nParams = nParams;
}

double* CWorkspaceStore::SizeDerivatives(bool secondOrder) {
    // The accumulation writes every element of the gradient and the quasi-Hessian, and uses m_pHessianInv as
    // its spare storage on the way: blocks that have their size already are kept from one iteration to the
    // next, neither taken anew nor cleared.
    if (!secondOrder) {
        FitBlocks(m_dlg, {Block::Gradient}, CountsOf(m_dlg));
        return nullptr;
    }
    FitBlocks(m_dlg, {Block::Gradient, Block::Hessian, Block::HessianInv}, CountsOf(m_dlg));
    return m_dlg.m_pHessianInv;
}

double* CWorkspaceStore::Spare() { return m_dlg.m_pHessianInv; }

void CWorkspaceStore::SetNoUnits() {
    // The blocks are replaced whole, so a failed allocation leaves the old network as it was.
    CBlockCounts counts = CountsOf(m_dlg);
    counts.units = 0;
    ReplaceBlocks(m_dlg, {Block::InputWeights, Block::OutputWeights, Block::Widths, Block::Centers, Block::Outputs},
                  counts);
    m_dlg.m_nUnits = 0;
    m_dlg.m_nNetworkInputs = m_dlg.m_nInputs;
    m_dlg.m_nNetworkPatterns = m_dlg.m_nPatterns;
}

void CWorkspaceStore::AddUnit() {
    CBlockCounts counts = CountsOf(m_dlg);
    counts.units = m_dlg.m_nUnits + size_t(1);
    GrowBlocks(m_dlg, {Block::InputWeights, Block::OutputWeights, Block::Widths, Block::Centers}, counts);
    m_dlg.m_nUnits = m_dlg.m_nUnits + 1;
}

const engine::CInitSettings& CWorkspaceStore::InitSettings() {
    m_init = InitSettingsOf(m_dlg.m_dlgInitialization);
    return m_init;
}

engine::CRandomSource& CWorkspaceStore::NewDraw() {
    // Every draw starts from the tick of its own moment, so trials drawn one after another differ.
    return m_random.emplace(GetTickCount());
}

engine::CLocalPatterns::CArrays CWorkspacePatterns::Arrays() { return CArrays{PatternsOf(m_dlg), m_dlg.m_pOutputs}; }

CWorkspaceTrainee::CWorkspaceTrainee(CVantrelDlg& dlg)
    : CNetworkPolicy(m_store, m_patterns, dlg.m_cancel), m_store(dlg), m_patterns(dlg) {}

// ---- the members ----------------------------------------------------------------------------------------------

void CVantrelDlg::PackParameters() { CWorkspaceTrainee(*this).PackParameters(); }

void CVantrelDlg::UnpackParameters() { CWorkspaceTrainee(*this).UnpackParameters(); }

double CVantrelDlg::ComputeError() { return CWorkspaceTrainee(*this).ComputeError(); }

double CVantrelDlg::ComputeOutputs() { return CWorkspaceTrainee(*this).ComputeOutputs(); }

double CVantrelDlg::EvaluatePoint(double x, double y) {
    const double point[2] = {x, y};
    // Callers have two inputs; a narrower network reads only what its rows hold.
    return engine::NetworkOutput(NetworkOf(*this), point, std::min<UINT>(m_nInputs, 2), m_cancel);
}

UINT CVantrelDlg::FindWorstPattern() { return CWorkspaceTrainee(*this).WorstPattern(); }

void CVantrelDlg::AccumulateSecondOrder() { CWorkspaceTrainee(*this).Accumulate(false, true); }

void CVantrelDlg::AccumulateImprovedSecondOrder() { CWorkspaceTrainee(*this).Accumulate(true, true); }

void CVantrelDlg::AccumulateGradient() { CWorkspaceTrainee(*this).Accumulate(false, false); }

void CVantrelDlg::AccumulateImprovedGradient() { CWorkspaceTrainee(*this).Accumulate(true, false); }

void CVantrelDlg::InitializeNetwork() { CWorkspaceTrainee(*this).InitializeNetwork(); }

void CVantrelDlg::LUdcmp(double* a, int n, int* indx) { engine::kernels::FactorLU(a, n, indx, m_cancel); }

void CVantrelDlg::SolveHessian(const double* diagonal, double damping, double* x) {
    CWorkspaceTrainee(*this).SolveHessian(diagonal, damping, x, nullptr);
}

void CVantrelDlg::ResetNetwork() { CWorkspaceTrainee(*this).ResetNetwork(); }

void CVantrelDlg::AddUnitAtWorstPattern() { CWorkspaceTrainee(*this).AddUnitAtWorstPattern(); }
