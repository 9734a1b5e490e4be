// The Python module's native part: the training engine and the file formats of the window, called on numpy
// arrays. The estimators of the package (vantrel/_estimators.py) are its only callers.
//
// A run goes on a thread of its own with the GIL released. The calling thread waits for it and looks for
// Ctrl-C at short intervals: a signal abandons the run through its cancel token, and the caller gets the
// KeyboardInterrupt once the run has unwound. The callback is called on the run's thread, holding the GIL.
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <chrono>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "engine/buffers.h"
#include "engine/runs.h"
#include "files/datafile.h"
#include "files/paramfile.h"
#include "files/scanner.h"

namespace py = pybind11;
using Array = py::array_t<double, py::array::c_style | py::array::forcecast>;

namespace {

py::array_t<double> ToArray(const std::vector<double>& values, std::vector<py::ssize_t> shape) {
    py::array_t<double> out(shape);
    std::copy(values.begin(), values.end(), out.mutable_data());
    return out;
}

std::vector<double> ToVector(const Array& a) { return std::vector<double>(a.data(), a.data() + a.size()); }

// (X, y) of a file of patterns, or ValueError with the message the window shows for it.
py::tuple LoadData(const std::string& path) {
    std::string text;
    const ReadTextResult read = ReadScanText(path.c_str(), text);
    if (read != ReadTextResult::Ok)
        throw py::value_error(read == ReadTextResult::CannotOpen ? kCannotOpenFile : kDataSetTooLarge);
    CPatternRows rows;
    if (!ReadPatterns(text, rows)) throw py::value_error(kDataSetTooLarge);
    if (rows.values != rows.inputs.size() + rows.targets.size()) throw py::value_error(kDataFileIncomplete);
    if (rows.shape.patterns == 0) throw py::value_error(kNoPatterns);
    if (rows.nInputs == 0) throw py::value_error(kNoInputs);
    const auto patterns = static_cast<py::ssize_t>(rows.shape.patterns);
    return py::make_tuple(ToArray(rows.inputs, {patterns, static_cast<py::ssize_t>(rows.nInputs)}),
                          ToArray(rows.targets, {patterns}));
}

py::dict NetworkDict(UINT units, std::vector<double> iw, std::vector<double> ow, std::vector<double> widths,
                     std::vector<double> centers, UINT inputs) {
    const auto u = static_cast<py::ssize_t>(units), n = static_cast<py::ssize_t>(inputs);
    py::dict d;
    d["input_weights"] = ToArray(iw, {u, n});
    d["output_weights"] = ToArray(ow, {u + 1});
    d["widths"] = ToArray(widths, {u});
    d["centers"] = ToArray(centers, {u, n});
    return d;
}

// The network of a parameter file for a data set of n_inputs inputs, or ValueError with the window's message.
py::dict ReadParameterFile(const std::string& path, UINT nInputs) {
    std::string text;
    const ReadTextResult read = ReadScanText(path.c_str(), text);
    if (read != ReadTextResult::Ok)
        throw py::value_error(read == ReadTextResult::CannotOpen ? kCannotOpenFile : kParamFileTooLarge);
    CNetworkParameters p;
    if (ParseParameterText(text, nInputs, p) != ParamFileStatus::Ok) throw py::value_error(kUnitsMismatch);
    return NetworkDict(p.units, p.inputWeights, p.outputWeights, p.widths, p.centers, nInputs);
}

std::string ParameterText(const Array& iw, const Array& ow, const Array& centers, const Array& widths) {
    CNetworkParameters p;
    p.units = static_cast<UINT>(widths.size());
    p.inputWeights = ToVector(iw);
    p.outputWeights = ToVector(ow);
    p.centers = ToVector(centers);
    p.widths = ToVector(widths);
    return ParameterFileText(p);
}

// What a run reports: the series of the last trial (of every unit, one after another, for Error Correction),
// the final errors, and each iteration to the caller's callback.
class CCollectingSink : public engine::CProgressSink {
public:
    CCollectingSink(py::object callback, bool growing, engine::CCancelToken& cancel)
        : m_callback(std::move(callback)), m_growing(growing), m_cancel(cancel) {}

    void IterationDone(UINT iteration, double error) override {
        if (m_callback.is_none() || m_failure) return;
        py::gil_scoped_acquire gil;
        try {
            m_callback(iteration, error);
        } catch (...) {
            m_failure = std::current_exception();
            m_cancel.Abandon();
        }
    }
    // Whole curves: the run's fixed settings ask for every error (CFixedSettings::wholeCurves).
    void IterationCurve(const engine::CErrorCurve& curve) override {
        if (!m_growing) m_errors.clear();
        const std::vector<double> errors = curve.Errors();
        m_errors.insert(m_errors.end(), errors.begin(), errors.end());
        m_iterations = (m_growing ? m_iterations : 0) + static_cast<UINT>(curve.Count() - 1);
    }
    void SummaryCurve(const engine::CErrorCurve& finalErrors, UINT) override { m_finalErrors = finalErrors.Errors(); }

    std::vector<double> m_errors, m_finalErrors;
    UINT m_iterations = 0;
    std::exception_ptr m_failure;  // what the callback raised

private:
    py::object m_callback;
    bool m_growing;
    engine::CCancelToken& m_cancel;
};

struct CRunRequest {
    engine::CFixedSettings settings;
    engine::CInitSettings init;
    unsigned seed = 0;
    UINT units = 0;
    bool online = false;
};

// Waits without the GIL until done, taking it at short intervals to look for Ctrl-C (any signal whose Python
// handler raises), which abandons the run. True when that happened: the exception is then set.
bool WaitWatchingSignals(std::mutex& mutex, std::condition_variable& finished, const bool& done,
                         engine::CCancelToken& cancel) {
    bool interrupted = false;
    std::unique_lock<std::mutex> lock(mutex);
    while (!finished.wait_for(lock, std::chrono::milliseconds(50), [&] { return done; })) {
        lock.unlock();
        {
            py::gil_scoped_acquire gil;
            if (!interrupted && PyErr_CheckSignals() != 0) {
                interrupted = true;
                cancel.Abandon();
            }
        }
        lock.lock();
    }
    return interrupted;
}

// Runs on a thread of its own while the calling thread, without the GIL, waits and watches for Ctrl-C.
engine::CRunOutcome RunReleased(engine::CNetworkBuffers& buffers, const CRunRequest& request,
                                CCollectingSink& sink, engine::CCancelToken& cancel) {
    engine::CRunOutcome outcome;
    std::exception_ptr crash;
    bool done = false, interrupted = false;
    std::mutex mutex;
    std::condition_variable finished;
    {
        py::gil_scoped_release release;
        std::thread worker([&] {
            try {
                const bool growing = request.settings.algorithm == engine::kErrorCorrection;
                outcome = growing ? engine::RunErrorCorrection(buffers, request.settings, sink, cancel, request.online)
                                  : engine::RunFixedSize(buffers, request.settings, sink, cancel);
            } catch (...) {
                crash = std::current_exception();
            }
            std::lock_guard<std::mutex> lock(mutex);
            done = true;
            finished.notify_one();
        });
        interrupted = WaitWatchingSignals(mutex, finished, done, cancel);
        worker.join();
    }
    if (interrupted) throw py::error_already_set();
    if (sink.m_failure) std::rethrow_exception(sink.m_failure);
    if (crash) std::rethrow_exception(crash);
    return outcome;
}

// The settings of a run from the options that the estimators pass.
CRunRequest RequestOf(const py::dict& options) {
    CRunRequest request;
    engine::CFixedSettings& s = request.settings;
    s.algorithm = static_cast<engine::Algorithm>(options["algorithm"].cast<int>());
    s.iterations = options["iterations"].cast<UINT>();
    s.desiredError = options["desired_error"].cast<double>();
    s.trials = options["trials"].cast<UINT>();
    s.maxUnits = options["max_units"].cast<UINT>();
    s.learningConstant = options["learning_constant"].cast<double>();
    s.momentum = options["momentum"].cast<double>();
    request.online = options["online"].cast<bool>();
    request.seed = options["seed"].cast<unsigned>();
    request.units = options["units"].cast<UINT>();
    const auto groups = options["groups"].cast<std::vector<std::vector<double>>>();  // mode, min, max, fixed
    engine::CGroupDraw* draws[] = {&request.init.inputWeights, &request.init.outputWeights, &request.init.widths};
    for (int g = 0; g < 3; ++g)
        *draws[g] = {static_cast<int>(groups[g][0]), groups[g][1], groups[g][2], groups[g][3]};
    request.init.centerMode = options["center_mode"].cast<int>();
    return request;
}

// The patterns (the first `known` of them the old ones of an online run) and the network to start from: the
// given one, or with none a network of request.units that each trial draws anew.
void LoadTrainee(engine::CNetworkBuffers& buffers, const Array& X, const Array& y, UINT known,
                 const py::object& network, UINT units) {
    const auto patterns = static_cast<UINT>(X.shape(0)), inputs = static_cast<UINT>(X.shape(1));
    buffers.SetPatterns(X.data(), y.data(), known, inputs);
    if (known < patterns)
        buffers.AppendPatterns(X.data() + std::size_t(known) * inputs, y.data() + known, patterns - known);
    if (network.is_none()) {
        buffers.SetUnits(units);
        return;
    }
    const py::dict net = network.cast<py::dict>();
    const Array widths = net["widths"].cast<Array>();
    buffers.SetNetwork(static_cast<UINT>(widths.size()), net["input_weights"].cast<Array>().data(),
                       net["output_weights"].cast<Array>().data(), widths.data(), net["centers"].cast<Array>().data());
}

py::dict ResultOf(engine::CNetworkBuffers& buffers, const CCollectingSink& sink) {
    const engine::CNetwork net = buffers.Network();
    const std::size_t u = net.nUnits, n = net.nInputs;
    py::dict result = NetworkDict(net.nUnits, std::vector<double>(net.pInputWeights, net.pInputWeights + u * n),
                                  std::vector<double>(net.pOutputWeights, net.pOutputWeights + u + 1),
                                  std::vector<double>(net.pWidths, net.pWidths + u),
                                  std::vector<double>(net.pCenters, net.pCenters + u * n), net.nInputs);
    result["errors"] = ToArray(sink.m_errors, {static_cast<py::ssize_t>(sink.m_errors.size())});
    result["trial_errors"] = ToArray(sink.m_finalErrors, {static_cast<py::ssize_t>(sink.m_finalErrors.size())});
    result["n_iter"] = sink.m_iterations;
    return result;
}

// One run of an algorithm from the given network (or, with none, from a draw per trial) on X and y, of which
// the patterns from options["known_patterns"] on are the new data of an online run.
py::dict Train(const Array& X, const Array& y, const py::object& network, const py::dict& options,
               const py::object& callback) {
    CRunRequest request = RequestOf(options);
    request.settings.loadFromFile = !network.is_none();
    engine::CCancelToken cancel;
    engine::CNetworkBuffers buffers(cancel);
    engine::CSeededRand random(request.seed);
    buffers.SetAlgorithm(request.settings.algorithm);
    buffers.SetInitialization(request.init, &random);
    LoadTrainee(buffers, X, y, options["known_patterns"].cast<UINT>(), network, request.units);

    CCollectingSink sink(callback, request.settings.algorithm == engine::kErrorCorrection, cancel);
    const engine::CRunOutcome outcome = RunReleased(buffers, request, sink, cancel);
    if (outcome.ending == engine::RunEnding::Failed) throw std::runtime_error(outcome.message);
    return ResultOf(buffers, sink);
}

// The network's output for every row of X, by the engine's own formula.
py::array_t<double> Predict(const py::dict& network, const Array& X) {
    const Array iw = network["input_weights"].cast<Array>(), ow = network["output_weights"].cast<Array>();
    const Array widths = network["widths"].cast<Array>(), centers = network["centers"].cast<Array>();
    engine::CNetwork net;
    net.pInputWeights = const_cast<double*>(iw.data());
    net.pOutputWeights = const_cast<double*>(ow.data());
    net.pWidths = const_cast<double*>(widths.data());
    net.pCenters = const_cast<double*>(centers.data());
    net.nUnits = static_cast<UINT>(widths.size());
    net.nInputs = static_cast<UINT>(X.shape(1));
    net.nOutputs = 1;
    const py::ssize_t rows = X.shape(0);
    py::array_t<double> out(rows);
    double* y = out.mutable_data();
    const double* x = X.data();
    py::gil_scoped_release release;
    for (py::ssize_t p = 0; p < rows; ++p)
        y[p] = engine::NetworkOutput(net, x + p * net.nInputs, net.nInputs, engine::CCancelToken::Never());
    return out;
}

}  // namespace

PYBIND11_MODULE(_engine, m) {
    m.doc() = "The training engine and file formats of Vantrel.";
    m.def("load_data", &LoadData, py::arg("path"));
    m.def("read_parameter_file", &ReadParameterFile, py::arg("path"), py::arg("n_inputs"));
    m.def("parameter_text", &ParameterText, py::arg("input_weights"), py::arg("output_weights"),
          py::arg("centers"), py::arg("widths"));
    m.def("train", &Train, py::arg("X"), py::arg("y"), py::arg("network"), py::arg("options"),
          py::arg("callback"));
    m.def("predict", &Predict, py::arg("network"), py::arg("X"));
}
