#include "engine/buffers.h"

#include <algorithm>
#include <climits>
#include <new>

namespace engine {

void CBufferStore::SetUnits(UINT units, UINT inputs) {
    const size_t weights = size_t(units) * inputs;
    m_nUnits = units;
    m_nInputs = inputs;
    for (std::vector<double>* v : {&m_inputWeights, &m_centers, &m_initInputWeights, &m_initCenters})
        v->assign(weights, 0.0);
    m_outputWeights.assign(units + size_t(1), 0.0);
    m_initOutputWeights.assign(units + size_t(1), 0.0);
    m_widths.assign(units, 0.0);
    m_initWidths.assign(units, 0.0);
}

void CBufferStore::SetNetwork(UINT units, UINT inputs, const double* inputWeights, const double* outputWeights,
                              const double* widths, const double* centers) {
    SetUnits(units, inputs);
    const size_t weights = size_t(units) * inputs;
    std::copy_n(inputWeights, weights, m_inputWeights.begin());
    std::copy_n(outputWeights, units + size_t(1), m_outputWeights.begin());
    std::copy_n(widths, units, m_widths.begin());
    std::copy_n(centers, weights, m_centers.begin());
}

void CBufferStore::SetInitialization(const CInitSettings& settings, CRandomSource* random) {
    m_init = settings;
    m_random = random;
}

CNetwork CBufferStore::Network() {
    return CNetwork{m_inputWeights.data(), m_outputWeights.data(), m_widths.data(), m_centers.data(),
                    m_nUnits,              m_nInputs,              kOutputs};
}

CNetwork CBufferStore::InitialNetwork() {
    return CNetwork{m_initInputWeights.data(), m_initOutputWeights.data(), m_initWidths.data(),
                    m_initCenters.data(),      m_nUnits,                   m_nInputs, kOutputs};
}

CStepArrays CBufferStore::Step() {
    return CStepArrays{m_params.data(), m_delta.data(), m_gradient.data(), m_hessian.data(), m_nParams};
}

void CBufferStore::SizeParameters(UINT nParams) {
    m_params.assign(nParams, 0.0);
    m_delta.assign(nParams, 0.0);
    m_nParams = nParams;
}

double* CBufferStore::SizeDerivatives(bool secondOrder) {
    const size_t n = m_nParams;
    m_gradient.resize(n);
    if (!secondOrder) return nullptr;
    m_hessian.resize(n * n);
    m_spare.resize(n * n);
    return m_spare.data();
}

void CBufferStore::SetNoUnits() { SetUnits(0, m_nInputs); }

void CBufferStore::AddUnit() {
    const size_t n = m_nInputs;
    m_inputWeights.resize((m_nUnits + size_t(1)) * n);
    m_outputWeights.resize(m_nUnits + size_t(2));
    m_widths.resize(m_nUnits + size_t(1));
    m_centers.resize((m_nUnits + size_t(1)) * n);
    ++m_nUnits;
}

CRandomSource& CBufferStore::NewDraw() { return m_random ? *m_random : m_unseeded; }

void CPatternBuffers::SetPatterns(const double* inputs, const double* targets, UINT count, UINT inputCount) {
    m_nPatterns = count;
    m_nInputs = inputCount;
    m_inputs.assign(inputs, inputs + size_t(count) * inputCount);
    m_targets.assign(targets, targets + count);
    m_outputs.assign(count, 0.0);
}

void CPatternBuffers::AppendPatterns(const double* inputs, const double* targets, UINT count) {
    if (count > UINT_MAX - m_nPatterns) throw std::bad_alloc();
    m_inputs.insert(m_inputs.end(), inputs, inputs + size_t(count) * m_nInputs);
    m_targets.insert(m_targets.end(), targets, targets + count);
    m_nPatterns += count;
    m_outputs.resize(m_nPatterns, 0.0);
}

}  // namespace engine
