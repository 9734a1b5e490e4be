#include "engine/buffers.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <new>

#include "engine/kernels.h"

namespace engine {

namespace {

// The C library's generator as it stands, seeded by nobody here.
class CRandAsItStands : public CRandomSource {
public:
    int Next() override { return std::rand(); }
};

}  // namespace

void CNetworkBuffers::SetPatterns(const double* inputs, const double* targets, UINT count, UINT inputCount) {
    m_nPatterns = count;
    m_nInputs = inputCount;
    m_inputs.assign(inputs, inputs + size_t(count) * inputCount);
    m_targets.assign(targets, targets + count);
    m_outputs.assign(count, 0.0);
}

void CNetworkBuffers::AppendPatterns(const double* inputs, const double* targets, UINT count) {
    if (count > UINT_MAX - m_nPatterns) throw std::bad_alloc();
    m_inputs.insert(m_inputs.end(), inputs, inputs + size_t(count) * m_nInputs);
    m_targets.insert(m_targets.end(), targets, targets + count);
    m_nPatterns += count;
    m_outputs.resize(m_nPatterns, 0.0);
}

void CNetworkBuffers::SetUnits(UINT units) {
    const size_t weights = size_t(units) * m_nInputs;
    m_nUnits = units;
    for (std::vector<double>* v : {&m_inputWeights, &m_centers, &m_initInputWeights, &m_initCenters})
        v->assign(weights, 0.0);
    m_outputWeights.assign(units + size_t(1), 0.0);
    m_initOutputWeights.assign(units + size_t(1), 0.0);
    m_widths.assign(units, 0.0);
    m_initWidths.assign(units, 0.0);
}

void CNetworkBuffers::SetNetwork(UINT units, const double* inputWeights, const double* outputWeights,
                                 const double* widths, const double* centers) {
    SetUnits(units);
    const size_t weights = size_t(units) * m_nInputs;
    std::copy_n(inputWeights, weights, m_inputWeights.begin());
    std::copy_n(outputWeights, units + size_t(1), m_outputWeights.begin());
    std::copy_n(widths, units, m_widths.begin());
    std::copy_n(centers, weights, m_centers.begin());
}

void CNetworkBuffers::SetInitialization(const CInitSettings& settings, CRandomSource* random) {
    m_init = settings;
    m_random = random;
}

CNetwork CNetworkBuffers::Network() {
    return CNetwork{m_inputWeights.data(), m_outputWeights.data(), m_widths.data(), m_centers.data(),
                    m_nUnits,              m_nInputs,              kOutputs};
}

CNetwork CNetworkBuffers::InitialNetwork() {
    return CNetwork{m_initInputWeights.data(), m_initOutputWeights.data(), m_initWidths.data(),
                    m_initCenters.data(),      m_nUnits,                   m_nInputs, kOutputs};
}

CPatterns CNetworkBuffers::PatternArrays() const {
    return CPatterns{m_inputs.data(), m_targets.data(), m_nPatterns, m_nInputs, kOutputs};
}

CStepArrays CNetworkBuffers::Step() {
    return CStepArrays{m_params.data(), m_delta.data(), m_gradient.data(), m_hessian.data(), m_nParams};
}

CParamLayout CNetworkBuffers::Layout() { return LayoutOf(Network(), IsImprovedAlgorithm(m_algorithm)); }

void CNetworkBuffers::InitializeNetwork() {
    // A caller that set no source gets the C library's generator as it stands. Seeding a fallback here would
    // reseed the one generator that the caller's source draws from as well, and every draw would be alike.
    CRandAsItStands fallback;
    DrawNetwork(m_init, PatternArrays(), Network(), InitialNetwork(), m_random ? *m_random : fallback, m_cancel);
}

void CNetworkBuffers::PackParameters() {
    if (ParameterCount(m_nUnits, m_nInputs, kOutputs, IsImprovedAlgorithm(m_algorithm)) > UINT_MAX)
        throw std::bad_alloc();
    const CParamLayout layout = Layout();
    m_params.assign(layout.Count(), 0.0);
    m_delta.assign(layout.Count(), 0.0);
    m_nParams = layout.Count();
    engine::PackParameters(layout, Network(), m_params.data());
}

void CNetworkBuffers::UnpackParameters() { engine::UnpackParameters(Layout(), m_params.data(), Network()); }

double CNetworkBuffers::ComputeError() {
    return AverageError(ViewOf(Network(), PatternArrays(), false), nullptr, m_cancel);
}

double CNetworkBuffers::ComputeOutputs() {
    return AverageError(ViewOf(Network(), PatternArrays(), false), m_outputs.data(), m_cancel);
}

double CNetworkBuffers::Accumulated(bool improved, bool secondOrder) {
    const size_t n = m_nParams;
    m_gradient.resize(n);
    if (secondOrder) {
        // Every element is written by the kernel, and the spare is left all 0.0: no clearing needed here.
        m_hessian.resize(n * n);
        m_spare.resize(n * n);
    }
    return kernels::AccumulateDerivatives(ViewOf(Network(), PatternArrays(), improved), m_nParams,
                                          secondOrder ? m_hessian.data() : nullptr, m_gradient.data(),
                                          secondOrder ? m_spare.data() : nullptr, m_cancel);
}

void CNetworkBuffers::Accumulate(bool improved, bool secondOrder) { Accumulated(improved, secondOrder); }

double CNetworkBuffers::AccumulateGradientAndError(bool improved) {
    return Accumulated(improved, false) / static_cast<double>(m_nPatterns);
}

void CNetworkBuffers::SolveHessian(const double* diagonal, double damping, double* x) {
    kernels::SolveDamped(m_hessian.data(), static_cast<int>(m_nParams), diagonal, damping, m_gradient.data(), x,
                         m_spare.data(), m_cancel);
}

void CNetworkBuffers::ResetNetwork() {
    SetUnits(0);
    m_outputWeights.assign(kOutputs, 1.0);
    m_outputs.assign(m_nPatterns, 0.0);
}

void CNetworkBuffers::AddUnitAtWorstPattern() {
    const UINT worst = FindWorstPattern(m_targets.data(), m_outputs.data(), m_nPatterns);
    const size_t n = m_nInputs;
    m_inputWeights.resize((m_nUnits + size_t(1)) * n);
    m_outputWeights.resize(m_nUnits + size_t(2));
    m_widths.resize(m_nUnits + size_t(1));
    m_centers.resize((m_nUnits + size_t(1)) * n);
    ++m_nUnits;
    PlaceUnitAt(Network(), m_nUnits - 1, m_inputs.data() + worst * n);
}

}  // namespace engine
