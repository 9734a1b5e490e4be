// The engine's own trainee: a network of one output, its patterns and its training arrays in vectors that it
// owns. The window trains its workspace's blocks instead; tests, benchmarks and the Python module train this.
// Both call the same kernels in the same order, so the same start gives the same bits.
#pragma once

#include <vector>

#include "engine/draw.h"
#include "engine/trainee.h"

namespace engine {

class CNetworkBuffers : public CTrainee {
public:
    // The token is the one the runs on this trainee are given; the caller keeps it alive.
    explicit CNetworkBuffers(const CCancelToken& cancel = CCancelToken::Never()) : m_cancel(cancel) {}

    // Copies count patterns of `inputs` inputs and one desired output each. The network keeps its arrays,
    // which must then have the same number of inputs before the next run.
    void SetPatterns(const double* inputs, const double* targets, UINT count, UINT inputCount);
    // Appends patterns of the same number of inputs behind the others (online training's new data); the
    // kept outputs grow with them (0.0 for the new).
    void AppendPatterns(const double* inputs, const double* targets, UINT count);
    // A network of `units` units of the patterns' inputs, every element 0.0 (the initial copy too).
    void SetUnits(UINT units);
    // The network's arrays from the caller's: units x inputs, units + 1 (bias first), units, units x inputs.
    void SetNetwork(UINT units, const double* inputWeights, const double* outputWeights, const double* widths,
                    const double* centers);
    // The algorithm decides the layout of the parameter vector.
    void SetAlgorithm(Algorithm algorithm) { m_algorithm = algorithm; }
    // How InitializeNetwork draws, and from which random source (the caller's, kept alive while used).
    void SetInitialization(const CInitSettings& settings, CRandomSource* random);

    CNetwork Network();
    CNetwork InitialNetwork();
    CPatterns PatternArrays() const;
    const std::vector<double>& Outputs() const { return m_outputs; }

    UINT Patterns() const override { return m_nPatterns; }
    UINT Inputs() const override { return m_nInputs; }
    UINT Units() const override { return m_nUnits; }
    CStepArrays Step() override;
    void InitializeNetwork() override;
    void PackParameters() override;
    void UnpackParameters() override;
    double ComputeError() override;
    double ComputeOutputs() override;
    void Accumulate(bool improved, bool secondOrder) override;
    double AccumulateGradientAndError(bool improved) override;
    void SolveHessian(const double* diagonal, double damping, double* x) override;
    void ResetNetwork() override;
    void AddUnitAtWorstPattern() override;

private:
    CParamLayout Layout();
    double Accumulated(bool improved, bool secondOrder);

    const CCancelToken& m_cancel;
    Algorithm m_algorithm = kSecondOrder;
    CInitSettings m_init;
    CRandomSource* m_random = nullptr;
    UINT m_nPatterns = 0, m_nInputs = 0, m_nUnits = 0, m_nParams = 0;
    static constexpr UINT kOutputs = 1;
    std::vector<double> m_inputs, m_targets, m_outputs;
    std::vector<double> m_inputWeights, m_outputWeights, m_widths, m_centers;
    std::vector<double> m_initInputWeights, m_initOutputWeights, m_initWidths, m_initCenters;
    std::vector<double> m_params, m_delta, m_gradient, m_hessian, m_spare;
};

}  // namespace engine
