// A network of one output as the Python package hands it over: a dict of four arrays (input_weights
// (units, inputs), output_weights (units + 1, bias first), widths (units,), centers (units, inputs)).
#pragma once

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <string>

#include "engine/network.h"

// The four arrays of a network dict, held while the engine reads them, checked against each other and
// against the inputs of the patterns they are to meet: the engine reads them by these counts alone.
struct CNetworkArrays {
    using Array = pybind11::array_t<double, pybind11::array::c_style | pybind11::array::forcecast>;
    CNetworkArrays(const pybind11::dict& network, pybind11::ssize_t inputs)
        : inputWeights(network["input_weights"].cast<Array>()),
          outputWeights(network["output_weights"].cast<Array>()),
          widths(network["widths"].cast<Array>()),
          centers(network["centers"].cast<Array>()) {
        const pybind11::ssize_t u = widths.size();
        const bool fit = widths.ndim() == 1 && outputWeights.ndim() == 1 && outputWeights.size() == u + 1 &&
                         inputWeights.ndim() == 2 && inputWeights.shape(0) == u && inputWeights.shape(1) == inputs &&
                         centers.ndim() == 2 && centers.shape(0) == u && centers.shape(1) == inputs;
        if (!fit)
            throw pybind11::value_error("The network's arrays do not fit together or do not fit " +
                                        std::to_string(inputs) +
                                        " inputs: input_weights and centers must be (units, inputs), widths (units,) "
                                        "and output_weights (units + 1,).");
    }
    engine::CNetwork View() const {
        return engine::CNetwork{const_cast<double*>(inputWeights.data()), const_cast<double*>(outputWeights.data()),
                                const_cast<double*>(widths.data()),       const_cast<double*>(centers.data()),
                                static_cast<engine::UINT>(widths.size()), static_cast<engine::UINT>(centers.shape(1)), 1};
    }
    Array inputWeights, outputWeights, widths, centers;
};

