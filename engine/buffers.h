// The engine's own arrays for a network under training, in vectors: a store (CBufferStore) for the network
// policy of policy.h, and with patterns of its own beside it, the engine's own trainee (CNetworkBuffers). The
// window trains its workspace's blocks instead; tests, benchmarks and the Python module train these. All go
// through the one policy, so the same start gives the same bits.
#pragma once

#include <vector>

#include "engine/policy.h"

namespace engine {

// A network of one output and its training arrays, in vectors that it owns.
class CBufferStore : public CNetworkStore {
public:
    // A network of `units` units of `inputs` inputs, every element 0.0 (the initial copy too).
    void SetUnits(UINT units, UINT inputs);
    // The network's arrays from the caller's: units x inputs, units + 1 (bias first), units, units x inputs.
    void SetNetwork(UINT units, UINT inputs, const double* inputWeights, const double* outputWeights,
                    const double* widths, const double* centers);
    void SetAlgorithm(Algorithm algorithm) { m_algorithm = algorithm; }
    // How a new network is drawn, and from which random source (the caller's, kept alive while used).
    void SetInitialization(const CInitSettings& settings, CRandomSource* random);

    Algorithm GetAlgorithm() override { return m_algorithm; }
    CNetwork Network() override;
    CNetwork InitialNetwork() override;
    CStepArrays Step() override;
    void SizeParameters(UINT nParams) override;
    double* SizeDerivatives(bool secondOrder) override;
    double* Spare() override { return m_spare.data(); }
    void SetNoUnits() override;
    void AddUnit() override;
    const CInitSettings& InitSettings() override { return m_init; }
    CRandomSource& NewDraw() override;

private:
    static constexpr UINT kOutputs = 1;
    Algorithm m_algorithm = kSecondOrder;
    CInitSettings m_init;
    CRandomSource* m_random = nullptr;
    CSeededRand m_unseeded{1};  // without a source of the caller's: the sequence of a generator never seeded
    UINT m_nInputs = 0, m_nUnits = 0, m_nParams = 0;
    std::vector<double> m_inputWeights, m_outputWeights, m_widths, m_centers;
    std::vector<double> m_initInputWeights, m_initOutputWeights, m_initWidths, m_initCenters;
    std::vector<double> m_params, m_delta, m_gradient, m_hessian, m_spare;
};

// Patterns of one desired output each, in vectors that it owns, and the outputs kept of them.
class CPatternBuffers : public CLocalPatterns {
public:
    // Copies count patterns of `inputs` inputs and one desired output each.
    void SetPatterns(const double* inputs, const double* targets, UINT count, UINT inputCount);
    // Appends patterns of the same number of inputs behind the others (online training's new data); the
    // kept outputs grow with them (0.0 for the new).
    void AppendPatterns(const double* inputs, const double* targets, UINT count);
    CArrays Arrays() override { return CArrays{View(), m_outputs.data()}; }
    CPatterns View() const { return CPatterns{m_inputs.data(), m_targets.data(), m_nPatterns, m_nInputs, 1}; }
    const std::vector<double>& Outputs() const { return m_outputs; }

private:
    UINT m_nPatterns = 0, m_nInputs = 0;
    std::vector<double> m_inputs, m_targets, m_outputs;
};

// The engine's own trainee: a store, its patterns, and the policy over both.
class CNetworkBuffers : public CNetworkPolicy {
public:
    // The token is the one the runs on this trainee are given; the caller keeps it alive.
    explicit CNetworkBuffers(const CCancelToken& cancel = CCancelToken::Never())
        : CNetworkPolicy(m_store, m_patterns, cancel) {}
    CNetworkBuffers(const CNetworkBuffers&) = delete;
    CNetworkBuffers& operator=(const CNetworkBuffers&) = delete;

    // The patterns; the network keeps its arrays, which must then have the same number of inputs before the
    // next run.
    void SetPatterns(const double* inputs, const double* targets, UINT count, UINT inputCount) {
        m_patterns.SetPatterns(inputs, targets, count, inputCount);
    }
    void AppendPatterns(const double* inputs, const double* targets, UINT count) {
        m_patterns.AppendPatterns(inputs, targets, count);
    }
    // A network of `units` units of the patterns' inputs, every element 0.0 (the initial copy too).
    void SetUnits(UINT units) { m_store.SetUnits(units, m_patterns.Inputs()); }
    void SetNetwork(UINT units, const double* inputWeights, const double* outputWeights, const double* widths,
                    const double* centers) {
        m_store.SetNetwork(units, m_patterns.Inputs(), inputWeights, outputWeights, widths, centers);
    }
    void SetAlgorithm(Algorithm algorithm) { m_store.SetAlgorithm(algorithm); }
    void SetInitialization(const CInitSettings& settings, CRandomSource* random) {
        m_store.SetInitialization(settings, random);
    }

    CNetwork Network() { return m_store.Network(); }
    CBufferStore& Store() { return m_store; }
    CNetwork InitialNetwork() { return m_store.InitialNetwork(); }
    CPatterns PatternArrays() const { return m_patterns.View(); }
    const std::vector<double>& Outputs() const { return m_patterns.Outputs(); }

private:
    // The policy's base is constructed before these and only keeps references to them until it is used.
    CBufferStore m_store;
    CPatternBuffers m_patterns;
};

}  // namespace engine
