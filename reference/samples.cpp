// Sample problems for tests and benchmarks (see samples.h).
#include "reference/samples.h"

#include <cmath>
#include <random>

CSampleArrays DrawSample(const CSampleShape& shape) {
    std::mt19937 random(shape.seed);
    std::uniform_real_distribution<double> unit(-1.0, 1.0);
    const size_t P = shape.nPatterns, n = shape.nInputs, u = shape.nUnits;
    CSampleArrays s;
    s.inputs.resize(P * n);
    s.targets.resize(P);
    for (size_t p = 0; p < P; ++p) {
        double sum = 0.0;
        for (size_t i = 0; i < n; ++i) sum += s.inputs[p * n + i] = unit(random);
        s.targets[p] = std::sin(3.0 * sum);
    }
    s.inputWeights.resize(u * n);
    s.outputWeights.resize(u + 1);
    s.widths.resize(u);
    s.centers.resize(u * n);
    s.outputWeights[0] = 0.1 * unit(random);
    for (size_t h = 0; h < u; ++h) {
        s.outputWeights[h + 1] = unit(random);
        s.widths[h] = 0.6 + 0.4 * unit(random);
        for (size_t i = 0; i < n; ++i) {
            s.inputWeights[h * n + i] = 1.0 + 0.3 * unit(random);
            s.centers[h * n + i] = unit(random);
        }
    }
    return s;
}

void MakeSample(engine::CNetworkBuffers& buffers, const CSampleShape& shape) {
    const CSampleArrays s = DrawSample(shape);
    buffers.SetPatterns(s.inputs.data(), s.targets.data(), shape.nPatterns, shape.nInputs);
    buffers.SetNetwork(shape.nUnits, s.inputWeights.data(), s.outputWeights.data(), s.widths.data(),
                       s.centers.data());
    buffers.SetAlgorithm(static_cast<engine::Algorithm>(shape.nAlgorithm));
    buffers.PackParameters();
}

engine::UINT UnitsForParams(engine::UINT params, engine::UINT inputs) {
    if (params < 1 || (params - 1) % (inputs + 2) != 0) return 0;
    return (params - 1) / (inputs + 2);
}
