// The native side of training on a cluster: a pattern source whose sums a Python object computes where the
// patterns lie (vantrel/_cluster.py), and the kernels that its tasks call on the workers. The run stays in the
// calling process and drives the engine's own loops; only networks go out and only sums come back.
#pragma once

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <functional>

#include "engine/patternsource.h"
#include "fit_thread.h"

namespace vantrel_python {

namespace py = pybind11;
using Array = py::array_t<double, py::array::c_style | py::array::forcecast>;

// A network as a dict of arrays (network_arrays.h), copied from the engine's.
py::dict NetworkDict(const engine::CNetwork& net);

// The patterns of a Python object with the methods of vantrel._cluster.DaskPatterns. Called on the run's
// thread, each call is handed to the fit's calling thread, which runs it under the GIL (the run's thread never
// touches the interpreter). What the object raises reaches the fit's caller, and the run is abandoned.
class CPythonPatterns : public engine::CPatternSource {
public:
    // source: kept alive by the caller, as is the fit's thread.
    CPythonPatterns(const py::object& source, CFitThread& thread);

    engine::UINT Patterns() override { return m_patterns; }
    engine::UINT Inputs() override { return m_inputs; }
    double SumDerivatives(const engine::CNetwork& net, bool improved, engine::UINT nParams, double* hessian,
                          double* gradient, double* spare, const engine::CCancelToken& cancel) override;
    double SumSquaredErrors(const engine::CNetwork& net, bool keep, const engine::CCancelToken& cancel) override;
    void ClearOutputs() override;
    engine::UINT WorstPattern() override;
    void PatternInputs(const engine::UINT* indices, engine::UINT count, double* rows) override;
    void InputRange(double* lo, double* hi) override;

private:
    // Runs call on the calling thread; throws CCancelled when the run was abandoned first.
    void OnCaller(const std::function<void()>& call);

    const py::object& m_source;
    CFitThread& m_thread;
    engine::UINT m_patterns = 0, m_inputs = 0;
};

// The workers' kernels and the readers of blocks of a pattern file, as functions of the module.
void BindClusterKernels(py::module_& m);

}  // namespace vantrel_python
