#include "engine/policy.h"

#include <algorithm>
#include <climits>
#include <new>
#include <vector>

#include "engine/kernels.h"

namespace engine {

CParamLayout CNetworkPolicy::Layout() { return LayoutOf(m_store.Network(), IsImprovedAlgorithm(m_store.GetAlgorithm())); }

void CNetworkPolicy::InitializeNetwork() {
    DrawNetwork(m_store.InitSettings(), m_patterns, m_store.Network(), m_store.InitialNetwork(), m_store.NewDraw(),
                m_cancel);
}

void CNetworkPolicy::PackParameters() {
    // The vector's length is a count: a network whose parameters it can't count is refused before any block.
    const CNetwork net = m_store.Network();
    if (ParameterCount(net.nUnits, net.nInputs, net.nOutputs, IsImprovedAlgorithm(m_store.GetAlgorithm())) > UINT_MAX)
        throw std::bad_alloc();
    const CParamLayout layout = Layout();
    m_store.SizeParameters(layout.Count());
    engine::PackParameters(layout, m_store.Network(), m_store.Step().pParams);
}

void CNetworkPolicy::UnpackParameters() {
    engine::UnpackParameters(Layout(), m_store.Step().pParams, m_store.Network());
}

double CNetworkPolicy::ComputeError() {
    // No pattern gives 0 / 0, a NaN, which every caller treats as a finished error.
    return m_patterns.SumSquaredErrors(m_store.Network(), false, m_cancel) / static_cast<double>(Patterns());
}

double CNetworkPolicy::ComputeOutputs() {
    return m_patterns.SumSquaredErrors(m_store.Network(), true, m_cancel) / static_cast<double>(Patterns());
}

double CNetworkPolicy::Accumulated(bool improved, bool secondOrder) {
    double* spare = m_store.SizeDerivatives(secondOrder);
    const CStepArrays s = m_store.Step();
    return m_patterns.SumDerivatives(m_store.Network(), improved, s.nParams, secondOrder ? s.pHessian : nullptr,
                                     s.pGradient, spare, m_cancel);
}

void CNetworkPolicy::Accumulate(bool improved, bool secondOrder) { Accumulated(improved, secondOrder); }

double CNetworkPolicy::AccumulateGradientAndError(bool improved) {
    return Accumulated(improved, false) / static_cast<double>(Patterns());
}

void CNetworkPolicy::SolveHessian(const double* diagonal, double damping, double* x, CNextTry* next) {
    const CStepArrays s = m_store.Step();
    const int n = static_cast<int>(s.nParams);
    if (!next) return kernels::SolveDamped(s.pHessian, n, diagonal, damping, s.pGradient, x, m_store.Spare(), m_cancel);
    next->solved = false;  // and so it stays when this try throws
    next->solved = kernels::SolveDampedWithNext(s.pHessian, n, diagonal, damping, s.pGradient, x, next->damping,
                                                next->x, m_store.Spare(), m_cancel);
}

void CNetworkPolicy::ResetNetwork() {
    m_store.SetNoUnits();
    const CNetwork net = m_store.Network();
    std::fill_n(net.pOutputWeights, net.nOutputs, 1.0);
    // Where the first unit goes is decided by the targets alone: outputs of 0.0 leave |target| as the error.
    m_patterns.ClearOutputs();
}

void CNetworkPolicy::AddUnitAtWorstPattern() {
    const UINT worst = m_patterns.WorstPattern();
    std::vector<double> row(m_patterns.Inputs());
    if (Patterns() > 0) m_patterns.PatternInputs(&worst, 1, row.data());
    m_store.AddUnit();
    const CNetwork net = m_store.Network();
    PlaceUnitAt(net, net.nUnits - 1, row.data());
}

}  // namespace engine
