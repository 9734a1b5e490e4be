// The native side of training on a cluster: a pattern source whose sums a Python object computes where the
// patterns lie (vantrel/_cluster.py), and the kernels that its tasks call on the workers. The run stays in the
// calling process and drives the engine's own loops; only networks go out and only sums come back.
#pragma once

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <exception>

#include "engine/patternsource.h"

namespace vantrel_python {

namespace py = pybind11;
using Array = py::array_t<double, py::array::c_style | py::array::forcecast>;

// A network of one output as a dict of arrays: input_weights (units x inputs), output_weights (units + 1,
// bias first), widths (units), centers (units x inputs).
py::dict NetworkDict(const engine::CNetwork& net);

// The arrays of such a dict, kept alive with it, and the network they make. Throws ValueError when their
// sizes don't make one network of `inputs` inputs.
class CNetworkArrays {
public:
    CNetworkArrays(const py::dict& network, engine::UINT inputs);
    const engine::CNetwork& Network() const { return m_net; }

private:
    Array m_inputWeights, m_outputWeights, m_widths, m_centers;
    engine::CNetwork m_net;
};

// The patterns of a Python object with the methods of vantrel._cluster.DaskPatterns. Called on the run's
// thread, each call takes the GIL for its while. What the object raises ends the run as abandoned, and is kept
// for the caller to raise once the run has unwound.
class CPythonPatterns : public engine::CPatternSource {
public:
    CPythonPatterns(py::object source, const engine::CCancelToken& cancel);

    engine::UINT Patterns() override { return m_patterns; }
    engine::UINT Inputs() override { return m_inputs; }
    double SumDerivatives(const engine::CNetwork& net, bool improved, engine::UINT nParams, double* hessian,
                          double* gradient, double* spare, const engine::CCancelToken& cancel) override;
    double SumSquaredErrors(const engine::CNetwork& net, bool keep, const engine::CCancelToken& cancel) override;
    void ClearOutputs() override;
    engine::UINT WorstPattern() override;
    void PatternInputs(const engine::UINT* indices, engine::UINT count, double* rows) override;
    void InputRange(double* lo, double* hi) override;

    // What the Python side raised, or null.
    std::exception_ptr Failure() const { return m_failure; }

private:
    template <class... Args>
    py::object Call(const char* name, Args&&... args);

    py::object m_source;
    const engine::CCancelToken& m_cancel;
    engine::UINT m_patterns = 0, m_inputs = 0;
    std::exception_ptr m_failure;
};

// The workers' kernels and the readers of blocks of a pattern file, as functions of the module.
void BindClusterKernels(py::module_& m);

}  // namespace vantrel_python
