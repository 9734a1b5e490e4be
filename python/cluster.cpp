#include "cluster.h"

#include <pybind11/stl.h>

#include <algorithm>
#include <string>
#include <vector>

#include "engine/kernels.h"
#include "files/datafile.h"
#include "files/patternblocks.h"
#include "network_arrays.h"

namespace vantrel_python {

namespace {

py::array_t<double> Copy(const double* values, std::vector<py::ssize_t> shape) {
    py::array_t<double> out(shape);
    py::ssize_t size = 1;
    for (py::ssize_t extent : shape) size *= extent;
    std::copy_n(values, size, out.mutable_data());
    return out;
}

// A view of the patterns X (rows x inputs) and y (rows) for the network, checked against each other.
engine::CNetworkView PatternView(const engine::CNetwork& net, const Array& X, const Array& y, bool improved) {
    if (X.ndim() != 2 || y.ndim() != 1 || X.shape(0) != y.shape(0) || X.shape(1) != net.nInputs)
        throw py::value_error("the patterns do not fit the network: X must be rows x inputs and y one per row");
    const engine::CPatterns patterns{X.data(), y.data(), static_cast<engine::UINT>(X.shape(0)), net.nInputs, 1};
    return engine::ViewOf(net, patterns, improved);
}

// The sums of one partition of patterns (an aligned run of chunks), as the whole set's tree takes them.
py::tuple PartitionSums(const py::dict& network, const Array& X, const Array& y, bool improved,
                        engine::UINT nParams, bool hessian) {
    const CNetworkArrays arrays(network, X.ndim() == 2 ? X.shape(1) : 0);
    const engine::CNetworkView view = PatternView(arrays.View(), X, y, improved);
    const size_t n = nParams;
    std::vector<double> gradient(n), square(hessian ? n * n : 0), spare(hessian ? n * n : 0);
    double sse = 0.0;
    {
        py::gil_scoped_release release;
        sse = engine::kernels::AccumulateDerivatives(view, nParams, hessian ? square.data() : nullptr,
                                                     gradient.data(), hessian ? spare.data() : nullptr,
                                                     engine::CCancelToken::Never());
    }
    const auto size = static_cast<py::ssize_t>(n);
    return py::make_tuple(sse, Copy(gradient.data(), {size}),
                          hessian ? py::object(Copy(square.data(), {size, size})) : py::object(py::none()));
}

// The sum of squared errors of one partition, and the output of each of its patterns.
py::tuple PartitionOutputs(const py::dict& network, const Array& X, const Array& y) {
    const CNetworkArrays arrays(network, X.ndim() == 2 ? X.shape(1) : 0);
    const engine::CNetworkView view = PatternView(arrays.View(), X, y, false);
    py::array_t<double> outputs(static_cast<py::ssize_t>(view.nPatterns));
    double sse = 0.0;
    {
        double* out = outputs.mutable_data();
        py::gil_scoped_release release;
        sse = engine::kernels::SumSquaredErrors(view, out, engine::CCancelToken::Never());
    }
    return py::make_tuple(sse, outputs);
}

// The partitions' sums added by the tree over their indices (each an aligned run of one span of chunks).
py::array_t<double> AddByTree(const std::vector<Array>& sums) {
    if (sums.empty()) throw py::value_error("no sums to add");
    std::vector<std::vector<double>> copies;
    std::vector<double*> pointers;
    for (const Array& s : sums) {
        if (s.size() != sums[0].size()) throw py::value_error("sums of different sizes can't be added");
        copies.emplace_back(s.data(), s.data() + s.size());
        pointers.push_back(copies.back().data());
    }
    engine::kernels::AddByTree(pointers.data(), static_cast<engine::UINT>(pointers.size()), copies[0].size());
    std::vector<py::ssize_t> shape(sums[0].shape(), sums[0].shape() + sums[0].ndim());
    return Copy(copies[0].data(), shape);
}

py::tuple MeasureBlockOf(const py::bytes& data) {
    const std::string_view bytes(data);
    const CBlockText block = MakeBlockText(bytes.data(), bytes.size());
    const CBlockMeasure measure = MeasureBlock(block.text);
    py::array_t<unsigned long long> rows(static_cast<py::ssize_t>(measure.tokensOfRows.size()));
    std::copy(measure.tokensOfRows.begin(), measure.tokensOfRows.end(), rows.mutable_data());
    return py::make_tuple(block.endsText, measure.firstRowTokens, rows);
}

py::tuple ReadBlock(const py::bytes& data, engine::UINT nInputs) {
    const std::string_view bytes(data);
    const CBlockText block = MakeBlockText(bytes.data(), bytes.size());
    std::vector<double> inputs, targets;
    ReadBlockValues(block.text, nInputs, inputs, targets);
    return py::make_tuple(Copy(inputs.data(), {static_cast<py::ssize_t>(inputs.size())}),
                          Copy(targets.data(), {static_cast<py::ssize_t>(targets.size())}));
}

}  // namespace

py::dict NetworkDict(const engine::CNetwork& net) {
    const auto u = static_cast<py::ssize_t>(net.nUnits), n = static_cast<py::ssize_t>(net.nInputs);
    py::dict d;
    d["input_weights"] = Copy(net.pInputWeights, {u, n});
    d["output_weights"] = Copy(net.pOutputWeights, {u + 1});
    d["widths"] = Copy(net.pWidths, {u});
    d["centers"] = Copy(net.pCenters, {u, n});
    return d;
}

CPythonPatterns::CPythonPatterns(const py::object& source, CFitThread& thread)
    : m_source(source), m_thread(thread) {
    m_patterns = m_source.attr("n_patterns").cast<engine::UINT>();
    m_inputs = m_source.attr("n_inputs").cast<engine::UINT>();
}

void CPythonPatterns::OnCaller(const std::function<void()>& call) {
    if (!m_thread.CallOnCaller(call)) throw engine::CCancelled();
}

double CPythonPatterns::SumDerivatives(const engine::CNetwork& net, bool improved, engine::UINT nParams,
                                       double* hessian, double* gradient, double*, const engine::CCancelToken&) {
    double sse = 0.0;
    OnCaller([&] {
        const py::tuple sums = m_source.attr("sum_derivatives")(NetworkDict(net), improved, nParams, hessian != nullptr);
        const Array g = sums[1].cast<Array>();
        if (g.size() != nParams) throw py::value_error("the cluster's gradient has another length than the network's");
        std::copy_n(g.data(), nParams, gradient);
        if (hessian) std::copy_n(sums[2].cast<Array>().data(), size_t(nParams) * nParams, hessian);
        sse = sums[0].cast<double>();
    });
    return sse;
}

double CPythonPatterns::SumSquaredErrors(const engine::CNetwork& net, bool keep, const engine::CCancelToken&) {
    double sse = 0.0;
    OnCaller([&] { sse = m_source.attr("squared_errors")(NetworkDict(net), keep).cast<double>(); });
    return sse;
}

void CPythonPatterns::ClearOutputs() {
    OnCaller([&] { m_source.attr("clear_outputs")(); });
}

engine::UINT CPythonPatterns::WorstPattern() {
    engine::UINT worst = 0;
    OnCaller([&] { worst = m_source.attr("worst_pattern")().cast<engine::UINT>(); });
    return worst;
}

void CPythonPatterns::PatternInputs(const engine::UINT* indices, engine::UINT count, double* rows) {
    OnCaller([&] {
        py::array_t<engine::UINT> wanted(static_cast<py::ssize_t>(count));
        std::copy_n(indices, count, wanted.mutable_data());
        const Array got = m_source.attr("pattern_inputs")(wanted).cast<Array>();
        std::copy_n(got.data(), size_t(count) * m_inputs, rows);
    });
}

void CPythonPatterns::InputRange(double* lo, double* hi) {
    OnCaller([&] {
        const py::tuple range = m_source.attr("input_range")();
        std::copy_n(range[0].cast<Array>().data(), m_inputs, lo);
        std::copy_n(range[1].cast<Array>().data(), m_inputs, hi);
    });
}

// ValueError with the window's message when a data set of these counts is refused (the rules after its
// reading), else nothing.
void CheckDataSetCounts(std::size_t patterns, std::size_t nInputs, std::size_t values) {
    const DataSetStatus status = CountsStatus(patterns, nInputs, values);
    if (status != DataSetStatus::Ok) throw py::value_error(DataSetMessage(status));
}

void BindClusterKernels(py::module_& m) {
    m.attr("CHUNK_PATTERNS") = engine::kernels::kChunkPatterns;
    m.def("partition_sums", &PartitionSums, py::arg("network"), py::arg("X"), py::arg("y"), py::arg("improved"),
          py::arg("n_params"), py::arg("hessian"));
    m.def("partition_outputs", &PartitionOutputs, py::arg("network"), py::arg("X"), py::arg("y"));
    m.def("add_by_tree", &AddByTree, py::arg("sums"));
    m.def("measure_block", &MeasureBlockOf, py::arg("data"));
    m.def("read_block", &ReadBlock, py::arg("data"), py::arg("n_inputs"));
    m.def("check_data_set_counts", &CheckDataSetCounts, py::arg("patterns"), py::arg("n_inputs"), py::arg("values"));
    m.attr("CANNOT_OPEN_FILE") = DataSetMessage(DataSetStatus::CannotOpen);
}

}  // namespace vantrel_python
