// The Python module's native part: the training engine and the file formats of the window, called on numpy
// arrays. The estimators of the package (vantrel/_estimators.py) are its only callers.
//
// A fit runs on a thread of its own with the GIL released (fit_thread.h); what it keeps of the run is its
// sink's (fit_sink.h). Arrays handed in are checked against each other before any is read.
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "engine/buffers.h"
#include "engine/defaults.h"
#include "engine/kernels.h"
#include "engine/memory.h"
#include "engine/runs.h"
#include "files/datafile.h"
#include "files/paramfile.h"
#include "files/scanner.h"
#include "cluster.h"
#include "fit_sink.h"
#include "fit_thread.h"
#include "network_arrays.h"

namespace py = pybind11;
using Array = py::array_t<double, py::array::c_style | py::array::forcecast>;
using engine::UINT;

namespace {

py::array_t<double> ToArray(const std::vector<double>& values, std::vector<py::ssize_t> shape) {
    py::array_t<double> out(shape);
    std::copy(values.begin(), values.end(), out.mutable_data());
    return out;
}

std::vector<double> ToVector(const Array& a) { return std::vector<double>(a.data(), a.data() + a.size()); }

[[noreturn]] void RaiseMemoryError(const char* message) {
    PyErr_SetString(PyExc_MemoryError, message);
    throw py::error_already_set();
}

// (X, y) of a file of patterns, or ValueError with the message the window shows for it.
py::tuple LoadData(const std::string& path) {
    CPatternRows rows;
    const DataSetStatus status = ReadDataSet(path.c_str(), rows);
    if (status != DataSetStatus::Ok) throw py::value_error(DataSetMessage(status));
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

// X (patterns, inputs) with y (patterns,), or ValueError.
void CheckPatterns(const Array& X, const Array& y, const char* name) {
    if (X.ndim() != 2 || y.ndim() != 1 || X.shape(0) != y.shape(0))
        throw py::value_error(std::string(name) + ": X must be (patterns, inputs) and y (patterns,).");
}

// A fit's settings, as the estimators set them.
struct CFitOptions {
    int algorithm = engine::kSecondOrder;
    UINT iterations = 200;
    double desiredError = 0.0001;
    UINT trials = 1;
    UINT maxUnits = 5;
    double learningConstant = 0.001;
    double momentum = 0.5;
    bool nonFiniteTriesFail = false;
    UINT units = 0;  // of a network drawn at each trial
    unsigned seed = 0;
    engine::CGroupDraw inputWeights, outputWeights, widths;
    int centerMode = engine::kCentersFromPatternsUnique;
    bool online = false;
    UINT knownPatterns = 0;  // online: the patterns before these are the old ones
    UINT patience = 10;      // with held-out patterns: iterations (units) without a new low before the end

    bool Growing() const { return algorithm == engine::kErrorCorrection; }
    CFitSettings RunSettings(bool fromNetwork) const {
        CFitSettings s;
        s.algorithm = static_cast<engine::Algorithm>(algorithm);
        s.iterations = iterations;
        s.desiredError = desiredError;
        s.trials = trials;
        s.maxUnits = maxUnits;
        s.learningConstant = learningConstant;
        s.momentum = momentum;
        s.nonFiniteTriesFail = nonFiniteTriesFail;
        s.loadFromFile = fromNetwork;
        return s;
    }
};

// Refuses, before any block is taken, a fit whose blocks that follow the user's counts do not fit in memory,
// with the window's message: the system grants far more than it has, and the interpreter would be killed
// while the blocks are filled. Counted: the network's arrays and their initial copies, the parameter vector
// with its step arrays, the arrays handed back and the best network kept, and the patterns' copies. The
// quasi-Hessian of the damped methods is refused by the run itself, with a message of its own.
void RefuseBeyondMemory(const CFitOptions& o, double patterns, double inputs, UINT startUnits) {
    const double u = o.Growing() ? double(startUnits) + o.maxUnits : double(startUnits);
    const double network = 2 * u * inputs + 2 * u + 1;
    const double params = 2 * u + 1 + u * inputs * (engine::IsImprovedAlgorithm(o.algorithm) ? 2 : 1);
    const double doubles = 2 * network + 3 * params + 2 * network + patterns * (inputs + 2);
    if (u > 4294967295.0 || !engine::DoublesFit(doubles)) RaiseMemoryError("Number of RBF units is too large!");
}

// The patterns (the first `known` the old ones of an online run) and the network to start from: the given
// one, or with none a network of `units` that each trial draws anew.
void LoadTrainee(engine::CNetworkBuffers& buffers, const Array& X, const Array& y, UINT known,
                 const CNetworkArrays* network, UINT units) {
    const auto patterns = static_cast<UINT>(X.shape(0)), inputs = static_cast<UINT>(X.shape(1));
    known = std::min(known, patterns);
    buffers.SetPatterns(X.data(), y.data(), known, inputs);
    if (known < patterns)
        buffers.AppendPatterns(X.data() + std::size_t(known) * inputs, y.data() + known, patterns - known);
    if (!network) {
        buffers.SetUnits(units);
        return;
    }
    const engine::CNetwork net = network->View();
    buffers.SetNetwork(net.nUnits, net.pInputWeights, net.pOutputWeights, net.pWidths, net.pCenters);
}

CHeldOut HeldOutOf(const py::object& X, const py::object& y, py::ssize_t inputs) {
    CHeldOut heldOut;
    if (X.is_none()) return heldOut;
    const Array hx = X.cast<Array>(), hy = y.cast<Array>();
    CheckPatterns(hx, hy, "held-out patterns");
    if (hx.shape(1) != inputs) throw py::value_error("held-out patterns: another number of inputs than X's.");
    heldOut.inputs = ToVector(hx);
    heldOut.targets = ToVector(hy);
    heldOut.patterns = static_cast<UINT>(hx.shape(0));
    heldOut.nInputs = static_cast<UINT>(inputs);
    return heldOut;
}

const char* FailureName(engine::RunFailure failure) {
    switch (failure) {
        case engine::RunFailure::Memory: return "memory";
        case engine::RunFailure::SingularMatrix: return "singular";
        default: return "other";
    }
}

const char* EndingName(engine::RunEnding ending) {
    switch (ending) {
        case engine::RunEnding::Normal: return "normal";
        case engine::RunEnding::Stopped: return "stopped";
        case engine::RunEnding::Failed: return "failed";
        default: return "abandoned";
    }
}

py::dict ResultOf(const engine::CNetwork& net, const CFitSink& sink, const engine::CRunOutcome& outcome,
                  double error) {
    const std::size_t u = net.nUnits, n = net.nInputs;
    py::dict result = NetworkDict(net.nUnits, std::vector<double>(net.pInputWeights, net.pInputWeights + u * n),
                                  std::vector<double>(net.pOutputWeights, net.pOutputWeights + u + 1),
                                  std::vector<double>(net.pWidths, net.pWidths + u),
                                  std::vector<double>(net.pCenters, net.pCenters + u * n), net.nInputs);
    auto series = [](const std::vector<double>& v) { return ToArray(v, {static_cast<py::ssize_t>(v.size())}); };
    result["errors"] = series(sink.errors);
    result["trial_errors"] = series(sink.finalErrors);
    result["held_out_errors"] = series(sink.heldOutErrors);
    result["best_held_out_error"] = sink.bestHeldOutError;
    result["n_iter"] = sink.iterations;
    result["error"] = error;
    result["non_finite"] = py::none();
    if (sink.turnedNonFinite) result["non_finite"] = py::make_tuple(sink.nonFiniteTrial, sink.nonFiniteIteration);
    result["ending"] = EndingName(outcome.ending);
    result["failure"] = FailureName(outcome.failure);
    result["message"] = outcome.message;
    result["iteration"] = outcome.iteration;
    return result;
}

// Answers a report with the progress object's method for it; false (or any false value but None) stops.
bool AnswerOf(const py::object& progress, const CProgressReport& r) {
    const py::object answer = progress.attr(r.unit ? "unit" : "iteration")(r.number, r.error, r.heldOutError);
    return answer.is_none() || answer.cast<bool>();
}

// The run of a fit on its thread, on a trainee whose arrays a store holds; what it keeps and hands back.
py::dict RunFit(engine::CTrainee& trainee, engine::CBufferStore& store, const CFitOptions& options, bool fromNetwork,
                const CHeldOut& heldOut, CFitThread& thread, const py::object& progress) {
    CFitSettings settings = options.RunSettings(fromNetwork);
    CFitSink sink(store, settings, heldOut.patterns ? &heldOut : nullptr, options.patience, thread,
                  !progress.is_none());
    double error = 0.0;
    const engine::CRunOutcome outcome = thread.Run(
        [&] {
            const engine::CRunOutcome ran =
                options.Growing() ? engine::RunErrorCorrection(trainee, settings, sink, thread.Cancel(), options.online)
                                  : engine::RunFixedSize(trainee, settings, sink, thread.Cancel());
            // An abandoned run may also have ended as stopped: the token's abandon includes a stop.
            if (thread.Cancel().Abandoned()) return engine::CRunOutcome{engine::RunEnding::Abandoned, ""};
            sink.KeepBest();
            error = trainee.ComputeError();  // the training error of the network handed back
            return ran;
        },
        [&](const CProgressReport& report) { return AnswerOf(progress, report); });
    return ResultOf(store.Network(), sink, outcome, error);
}

// One run of an algorithm on X and y from the given network (or, with none, from a draw per trial), following
// the held-out patterns when given, with progress (when not None) hearing each iteration and unit.
py::dict Train(const Array& X, const Array& y, const py::object& network, const CFitOptions& options,
               const py::object& heldOutX, const py::object& heldOutY, const py::object& progress) {
    CheckPatterns(X, y, "patterns");
    if (options.algorithm < 0 || options.algorithm >= engine::kAlgorithmCount)
        throw py::value_error("algorithm must be 0 to 4.");
    const py::ssize_t inputs = X.shape(1);
    std::unique_ptr<CNetworkArrays> start;
    if (!network.is_none()) start = std::make_unique<CNetworkArrays>(network.cast<py::dict>(), inputs);
    const CHeldOut heldOut = HeldOutOf(heldOutX, heldOutY, inputs);
    RefuseBeyondMemory(options, double(X.shape(0)) + heldOut.patterns, double(inputs),
                       start ? static_cast<UINT>(start->widths.size()) : options.units);

    CFitThread thread;
    engine::CNetworkBuffers buffers(thread.Cancel());
    engine::CSeededRand random(options.seed);
    buffers.SetAlgorithm(static_cast<engine::Algorithm>(options.algorithm));
    buffers.SetInitialization(engine::CInitSettings{options.inputWeights, options.outputWeights, options.widths,
                                                    options.centerMode},
                              &random);
    LoadTrainee(buffers, X, y, options.knownPatterns, start.get(), options.units);
    return RunFit(buffers, buffers.Store(), options, start != nullptr, heldOut, thread, progress);
}

// The same run on patterns that a Python object holds where they lie (vantrel._cluster.DaskPatterns): every
// sum over them is asked of it, on the calling thread, and the network stays here.
py::dict TrainOnSource(const py::object& source, const py::object& network, const CFitOptions& options,
                       const py::object& progress) {
    if (options.algorithm < 0 || options.algorithm >= engine::kAlgorithmCount)
        throw py::value_error("algorithm must be 0 to 4.");
    const py::ssize_t inputs = source.attr("n_inputs").cast<py::ssize_t>();
    std::unique_ptr<CNetworkArrays> start;
    if (!network.is_none()) start = std::make_unique<CNetworkArrays>(network.cast<py::dict>(), inputs);
    RefuseBeyondMemory(options, 0.0, double(inputs), start ? static_cast<UINT>(start->widths.size()) : options.units);

    CFitThread thread;
    engine::CBufferStore store;
    engine::CSeededRand random(options.seed);
    store.SetAlgorithm(static_cast<engine::Algorithm>(options.algorithm));
    store.SetInitialization(engine::CInitSettings{options.inputWeights, options.outputWeights, options.widths,
                                                  options.centerMode},
                            &random);
    if (start) {
        const engine::CNetwork net = start->View();
        store.SetNetwork(net.nUnits, net.nInputs, net.pInputWeights, net.pOutputWeights, net.pWidths, net.pCenters);
    } else {
        store.SetUnits(options.units, static_cast<UINT>(inputs));
    }
    vantrel_python::CPythonPatterns patterns(source, thread);
    engine::CNetworkPolicy policy(store, patterns, thread.Cancel());
    return RunFit(policy, store, options, start != nullptr, CHeldOut(), thread, progress);
}

// The network's output for every row of X, by the engine's own formula.
py::array_t<double> Predict(const py::dict& network, const Array& X) {
    if (X.ndim() != 2) throw py::value_error("X must be (rows, inputs).");
    const CNetworkArrays arrays(network, X.shape(1));
    const engine::CNetwork net = arrays.View();
    const py::ssize_t rows = X.shape(0);
    py::array_t<double> out(rows);
    double* y = out.mutable_data();
    const double* x = X.data();
    WithoutGil([&] {
        for (py::ssize_t p = 0; p < rows; ++p)
            y[p] = engine::NetworkOutput(net, x + p * net.nInputs, net.nInputs, engine::CCancelToken::Never());
    });
    return out;
}

// (outputs, J) for the rows of X: J[r, k] the derivative of row r's output in parameter k of the packed vector
// of the plain layout, or with improved of the layout that carries the input weights; by the accumulators'
// own kernel, which builds the derivatives of target - output.
py::tuple OutputJacobian(const py::dict& network, const Array& X, bool improved) {
    if (X.ndim() != 2) throw py::value_error("X must be (rows, inputs).");
    const CNetworkArrays arrays(network, X.shape(1));
    const auto rows = static_cast<UINT>(X.shape(0));
    const std::vector<double> zeros(rows, 0.0);
    const engine::CPatterns patterns{X.data(), zeros.data(), rows, static_cast<UINT>(X.shape(1)), 1};
    const engine::CNetworkView view = engine::ViewOf(arrays.View(), patterns, improved);
    const std::size_t params = view.layout.Count();
    if (!engine::DoublesFit(2.0 * params * rows + rows)) RaiseMemoryError("Not enough memory for the Jacobian.");
    std::vector<double> transposed(params * rows), errors(rows);
    py::array_t<double> outputs(static_cast<py::ssize_t>(rows));
    py::array_t<double> jacobian({static_cast<py::ssize_t>(rows), static_cast<py::ssize_t>(params)});
    double* y = outputs.mutable_data();
    double* J = jacobian.mutable_data();
    WithoutGil([&] {
        engine::kernels::FillJacobianTransposed(view, 0, rows, transposed.data(), rows, errors.data());
        for (std::size_t r = 0; r < rows; ++r) {
            y[r] = -errors[r];
            for (std::size_t k = 0; k < params; ++k) J[r * params + k] = -transposed[k * rows + r];
        }
    });
    return py::make_tuple(outputs, jacobian);
}

void BindSettings(py::module_& m) {
    py::class_<engine::CGroupDraw>(m, "GroupDraw", "How one group of a new network is drawn.")
        .def(py::init([](int mode, double low, double high, double fixed) {
                 return engine::CGroupDraw{mode, low, high, fixed};
             }),
             py::arg("mode"), py::arg("low"), py::arg("high"), py::arg("fixed"))
        .def_readwrite("mode", &engine::CGroupDraw::mode)
        .def_readwrite("low", &engine::CGroupDraw::min)
        .def_readwrite("high", &engine::CGroupDraw::max)
        .def_readwrite("fixed", &engine::CGroupDraw::fixed);
    py::class_<CFitOptions>(m, "FitSettings", "The settings of one fit, as the engine takes them.")
        .def(py::init<>())
        .def_readwrite("algorithm", &CFitOptions::algorithm)
        .def_readwrite("iterations", &CFitOptions::iterations)
        .def_readwrite("desired_error", &CFitOptions::desiredError)
        .def_readwrite("trials", &CFitOptions::trials)
        .def_readwrite("max_units", &CFitOptions::maxUnits)
        .def_readwrite("learning_constant", &CFitOptions::learningConstant)
        .def_readwrite("momentum", &CFitOptions::momentum)
        .def_readwrite("nonfinite_tries_fail", &CFitOptions::nonFiniteTriesFail)
        .def_readwrite("units", &CFitOptions::units)
        .def_readwrite("seed", &CFitOptions::seed)
        .def_readwrite("input_weights", &CFitOptions::inputWeights)
        .def_readwrite("output_weights", &CFitOptions::outputWeights)
        .def_readwrite("widths", &CFitOptions::widths)
        .def_readwrite("center_mode", &CFitOptions::centerMode)
        .def_readwrite("online", &CFitOptions::online)
        .def_readwrite("known_patterns", &CFitOptions::knownPatterns)
        .def_readwrite("n_iter_no_change", &CFitOptions::patience);
}

}  // namespace

PYBIND11_MODULE(_engine, m) {
    m.doc() = "The training engine and file formats of Vantrel.";
    m.attr("__version__") = VANTREL_VERSION;
    BindSettings(m);
    m.def("load_data", &LoadData, py::arg("path"));
    m.def("read_parameter_file", &ReadParameterFile, py::arg("path"), py::arg("n_inputs"));
    m.def("parameter_text", &ParameterText, py::arg("input_weights"), py::arg("output_weights"),
          py::arg("centers"), py::arg("widths"));
    m.def("train", &Train, py::arg("X"), py::arg("y"), py::arg("network"), py::arg("settings"),
          py::arg("held_out_X") = py::none(), py::arg("held_out_y") = py::none(), py::arg("progress") = py::none());
    m.def("train_on_source", &TrainOnSource, py::arg("source"), py::arg("network"), py::arg("settings"),
          py::arg("progress") = py::none());
    m.def("predict", &Predict, py::arg("network"), py::arg("X"));
    m.def("output_jacobian", &OutputJacobian, py::arg("network"), py::arg("X"), py::arg("improved"));
    // The window's defaults, so that the estimators start where the window does.
    m.def("default_iterations", &engine::DefaultIterations, py::arg("algorithm"));
    m.attr("DEFAULTS") =
        py::dict(py::arg("desired_error") = engine::kDefaultDesiredError, py::arg("trials") = engine::kDefaultTrials,
                 py::arg("max_units") = engine::kDefaultMaxUnits,
                 py::arg("learning_constant") = engine::kDefaultLearningConstant,
                 py::arg("momentum") = engine::kDefaultMomentum);
    vantrel_python::BindClusterKernels(m);
    // Fits on threads that outlive the interpreter's main thread are abandoned and waited for at its exit.
    py::module_::import("atexit").attr("register")(py::cpp_function(&CFitThread::AbandonAll));
}
