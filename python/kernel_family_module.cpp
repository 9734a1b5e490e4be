// vantrel._kernel_family: the BLAS kernel family that the processor's features allow at best, as the window
// chooses it. A module of its own that does not load the BLAS, unlike _engine: the package asks it while
// OPENBLAS_CORETYPE can still take effect.
#include <pybind11/pybind11.h>

#include "engine/blas_setup.h"

namespace py = pybind11;

PYBIND11_MODULE(_kernel_family, m) {
    m.doc() = "The BLAS kernel family that the processor allows at best, without loading the BLAS.";
    m.def("best", []() -> py::object {
        const char* family = engine::BestKernelFamily();
        return family != nullptr ? py::object(py::str(family)) : py::object(py::none());
    });
}
