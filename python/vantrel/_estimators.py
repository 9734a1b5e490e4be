"""RBFRegressor and RBFClassifier: the engine's five algorithms behind scikit-learn's estimator interface."""
import functools
import numbers
import os
from numbers import Integral, Real

import numpy as np
from sklearn.base import BaseEstimator, ClassifierMixin, RegressorMixin
from sklearn.model_selection import train_test_split
from sklearn.utils import check_random_state
from sklearn.utils._param_validation import Interval, StrOptions
from sklearn.utils.multiclass import check_classification_targets
from sklearn.utils.validation import check_is_fitted

from vantrel import _dask, _engine
from vantrel._progress import Progress
from vantrel._uncertainty import output_std
from vantrel.exceptions import NonFiniteError, SingularMatrixError

# The algorithms by name, valued by their place in the window's algorithm list.
ALGORITHMS = {
    "second_order": 0,
    "improved_second_order": 1,
    "error_correction": 2,
    "first_order": 3,
    "improved_first_order": 4,
}
_IMPROVED = ("improved_second_order", "improved_first_order")
_FIRST_ORDER = ("first_order", "improved_first_order")
_CENTERS = {"input_range": 0, "patterns": 1, "patterns_unique": 2}
_NETWORK = ("input_weights", "output_weights", "widths", "centers")
_COUNT_MAX = 2**32 - 1  # counts are unsigned 32-bit in the engine
_COUNT = Interval(Integral, 0, _COUNT_MAX, closed="both")
_FINITE = Interval(Real, None, None, closed="neither")  # the window refuses "nan" and "inf" in every number field
_DEFAULTS = _engine.DEFAULTS  # the window's
_SCALING = ("The inputs or targets may hold large values: scale them (e.g. with sklearn.preprocessing."
            "StandardScaler)")


def _group(name, value, positive=False):
    """The draw of one group: a fixed value, or a (low, high) pair drawn in [low, high)."""
    if isinstance(value, numbers.Real):
        low = high = fixed = float(value)
        mode = 1
    else:
        pair = np.asarray(value, dtype=np.float64)
        if pair.shape != (2,) or not np.all(np.isfinite(pair)):
            raise ValueError(f"{name} must be a finite number or a (low, high) pair of finite numbers, "
                             f"not {value!r}")
        (low, high), fixed, mode = pair, 1.0, 0
        if low > high:
            raise ValueError(f"{name}: the lower bound {low} is above the upper bound {high}")
    if positive and min(low, fixed) <= 0:
        raise ValueError(f"{name} must be larger than zero")
    return _engine.GroupDraw(mode, low, high, fixed)


def _seed(random_state):
    """The engine's seed: an int as given, else a number drawn from the random state."""
    if isinstance(random_state, numbers.Integral):
        return int(random_state) & 0xFFFFFFFF
    return int(check_random_state(random_state).randint(np.iinfo(np.int32).max))


def _restored_on_failure(method):
    """A fit or extension that raises leaves the estimator exactly as it was before."""
    @functools.wraps(method)
    def guarded(self, *args, **kwargs):
        state = dict(self.__dict__)
        try:
            return method(self, *args, **kwargs)
        except BaseException:
            self.__dict__.clear()
            self.__dict__.update(state)
            raise
    return guarded


class _RBFNetwork(BaseEstimator):
    """What both estimators share: the parameters, the runs and the fitted network."""

    _parameter_constraints = {
        "algorithm": [StrOptions(set(ALGORITHMS))],
        "units": [_COUNT],
        "iterations": [_COUNT, None],
        "desired_error": [_FINITE],
        "trials": [Interval(Integral, 1, _COUNT_MAX, closed="both")],
        "max_units": [_COUNT],
        "learning_constant": [_FINITE],
        "momentum": [_FINITE],
        "init": [str, os.PathLike],
        "input_weights": [_FINITE, "array-like"],
        "output_weights": [_FINITE, "array-like"],
        "widths": [Interval(Real, 0, None, closed="neither"), "array-like"],
        "centers": [StrOptions(set(_CENTERS))],
        "random_state": ["random_state"],
        "callback": [callable, None],
        "nonfinite": [StrOptions({"raise", "fail_try"})],
        "early_stopping": ["boolean"],
        "validation_fraction": [Interval(Real, 0, 1, closed="neither")],
        "n_iter_no_change": [Interval(Integral, 1, _COUNT_MAX, closed="both")],
        "verbose": ["verbose"],
    }

    def __init__(self, algorithm="second_order", units=5, iterations=None,
                 desired_error=_DEFAULTS["desired_error"], trials=_DEFAULTS["trials"],
                 max_units=_DEFAULTS["max_units"], learning_constant=_DEFAULTS["learning_constant"],
                 momentum=_DEFAULTS["momentum"], init="manual", input_weights=1.0,
                 output_weights=1.0, widths=1.0, centers="patterns_unique", random_state=None,
                 callback=None, nonfinite="raise", early_stopping=False, validation_fraction=0.1,
                 n_iter_no_change=10, verbose=0):
        self.algorithm = algorithm
        self.units = units
        self.iterations = iterations
        self.desired_error = desired_error
        self.trials = trials
        self.max_units = max_units
        self.learning_constant = learning_constant
        self.momentum = momentum
        self.init = init
        self.input_weights = input_weights
        self.output_weights = output_weights
        self.widths = widths
        self.centers = centers
        self.random_state = random_state
        self.callback = callback
        self.nonfinite = nonfinite
        self.early_stopping = early_stopping
        self.validation_fraction = validation_fraction
        self.n_iter_no_change = n_iter_no_change
        self.verbose = verbose

    def _settings(self):
        """The engine's settings from the parameters, which _validate_params has checked."""
        s = _engine.FitSettings()
        s.algorithm = ALGORITHMS[self.algorithm]
        default = self.iterations is None
        s.iterations = _engine.default_iterations(s.algorithm) if default else self.iterations
        s.desired_error = self.desired_error
        s.trials = self.trials
        s.max_units = self.max_units
        s.learning_constant = self.learning_constant
        s.momentum = self.momentum
        s.nonfinite_tries_fail = self.nonfinite == "fail_try"
        s.units = self.units
        s.seed = _seed(self.random_state)
        s.input_weights = _group("input_weights", self.input_weights)
        s.output_weights = _group("output_weights", self.output_weights)
        s.widths = _group("widths", self.widths, positive=True)
        s.center_mode = _CENTERS[self.centers]
        s.n_iter_no_change = self.n_iter_no_change
        return s

    def _start_network(self, n_inputs, n_patterns):
        """The network of a parameter file, or None for a draw at each trial."""
        if isinstance(self.init, str) and self.init == "manual":
            growing = self.algorithm == "error_correction"
            if not growing and self.centers == "patterns_unique" and self.units > n_patterns:
                # As the window's Initialization refuses it: the draw could not find that many distinct rows.
                raise ValueError("Number of RBF units cannot larger than Number of patterns: "
                                 f"units={self.units}, n_samples={n_patterns}")
            return None
        if self.algorithm == "error_correction":
            raise ValueError("error_correction grows its network from no units: init must be 'manual'")
        return _engine.read_parameter_file(os.fspath(self.init), n_inputs)

    def _held_out_split(self, X, targets, stratify):
        """(X, targets, held-out pair or None): with early stopping, validation_fraction of the patterns are
        held out of training, drawn by train_test_split (stratified for a classifier)."""
        if not self.early_stopping:
            return X, targets, None
        if _dask.is_dask(X):
            raise ValueError("early_stopping follows the held-out patterns in this process: it takes numpy "
                             "arrays, not dask arrays")
        X, X_held, targets, held = train_test_split(X, targets, test_size=self.validation_fraction,
                                                    random_state=_seed(self.random_state), stratify=stratify)
        return X, targets, (X_held, held)

    def _fit_targets(self, X, targets, stratify=None):
        self._validate_params()
        settings = self._settings()
        X, targets, held_out = self._held_out_split(X, targets, stratify)
        network = self._start_network(X.shape[1], X.shape[0])
        settings.known_patterns = X.shape[0]
        return self._train(X, targets, network, settings, held_out)

    def _train(self, X, y, network, settings, held_out):
        """One run in the engine; the fitted state is set only once the run has given a usable network."""
        growing = self.algorithm == "error_correction"
        reporting = self.callback is not None or self.verbose
        progress = Progress(self.callback, self.verbose, growing) if reporting else None
        held_X, held_y = held_out if held_out is not None else (None, None)
        train = _dask.train if _dask.is_dask(X) else _engine.train
        result = train(X, y, network, settings, held_X, held_y, progress)
        self._raise_for_failure(result)
        self._raise_for_non_finite(result)
        for name in _NETWORK:
            setattr(self, name + "_", result[name])
        self.errors_ = result["errors"]
        self.trial_errors_ = result["trial_errors"]
        self.n_iter_ = result["n_iter"]
        self.validation_errors_ = result["held_out_errors"] if held_out is not None else None
        self.best_validation_error_ = result["best_held_out_error"] if held_out is not None else None
        trained = self.widths_.size * (2 + X.shape[1] * (2 if self.algorithm in _IMPROVED else 1)) + 1
        degrees = X.shape[0] - trained
        self.residual_variance_ = result["error"] * X.shape[0] / degrees if degrees > 0 else np.nan
        self._X_fit, self._y_fit, self._held_out = X, y, held_out
        self._improved = self.algorithm in _IMPROVED
        return self

    def _raise_for_failure(self, result):
        if result["ending"] == "abandoned":
            raise RuntimeError("The fit was abandoned: the interpreter is exiting.")
        if result["ending"] != "failed":
            return
        if result["failure"] == "memory":
            raise MemoryError(result["message"])
        if result["failure"] == "singular":
            units, iteration = result["widths"].size, result["iteration"]
            where = (f"iteration {iteration} of unit {units}" if self.algorithm == "error_correction" else
                     f"iteration {iteration} with {units} units")
            raise SingularMatrixError(
                f"Singular matrix in LUdcmp: {self.algorithm} met it at {where}, its network having turned "
                f"non-finite. {_SCALING}, or fit with nonfinite='fail_try' so that damped tries that go "
                "non-finite count as failed.", self.algorithm, units, iteration)
        raise RuntimeError(result["message"])

    def _raise_for_non_finite(self, result):
        if np.isfinite(result["error"]) and all(np.all(np.isfinite(result[name])) for name in _NETWORK):
            return
        trial, iteration = result["non_finite"] or (None, None)
        part = "unit" if self.algorithm == "error_correction" else "trial"
        where = f" at iteration {iteration} of {part} {trial}" if trial is not None else ""
        remedy = ("lower learning_constant" if self.algorithm in _FIRST_ORDER else
                  "fit with nonfinite='fail_try' so that damped tries that go non-finite count as failed")
        raise NonFiniteError(f"The network's error turned non-finite{where}, and the fit would predict NaN or "
                             f"infinity. {_SCALING}, or {remedy}.", trial, iteration)

    def _extend_targets(self, X_new, targets_new, extra_units):
        check_is_fitted(self)
        self._validate_params()
        if self.algorithm != "error_correction":
            raise ValueError("extend trains a network of the error_correction algorithm online")
        if self.widths_.size == 0:
            raise ValueError("extend needs a trained network of at least one unit")
        if not isinstance(extra_units, numbers.Integral) or not 0 < extra_units <= _COUNT_MAX:
            raise ValueError(f"extra_units must be a whole number above zero, not {extra_units!r}")
        settings = self._settings()
        settings.online = True
        settings.max_units = int(extra_units)
        settings.known_patterns = self._X_fit.shape[0]
        X, y = self._X_fit, self._y_fit
        if X_new is not None and _dask.is_dask(X, X_new):
            X, y = _dask.stack(X, X_new), _dask.stack(y, targets_new)
        elif X_new is not None:
            X, y = np.vstack([X, X_new]), np.concatenate([y, targets_new])
        network = {name: getattr(self, name + "_") for name in _NETWORK}
        return self._train(X, y, network, settings, self._held_out if self.early_stopping else None)

    def _network(self):
        return {name: getattr(self, name + "_") for name in _NETWORK}

    def _network_output(self, X):
        check_is_fitted(self)
        if _dask.is_dask(X):
            return _dask.network_output(self._network(), _dask.check_patterns(X, n_features=self.n_features_in_))
        X = self._validate_data(X, reset=False, dtype=np.float64)
        return _engine.predict(self._network(), X)

    def _checked(self, X, y, reset=True, **checks):
        """X and y checked as scikit-learn checks them, dask arrays alike (which stay dask arrays)."""
        if not _dask.is_dask(X, y):
            return self._validate_data(X, y, reset=reset, dtype=np.float64, **checks)
        X, y = _dask.check_patterns(X, y, None if reset else self.n_features_in_)
        if reset:
            self.n_features_in_ = X.shape[1]
        return X, y

    def _output_std(self, X):
        if _dask.is_dask(X, self._X_fit):
            raise ValueError("return_std takes the Jacobian of the training patterns in this process: it takes "
                             "numpy arrays, not dask arrays")
        X = self._validate_data(X, reset=False, dtype=np.float64)
        return output_std(self._network(), self._improved, self._X_fit, self._y_fit, X)

    def write_parameter_file(self, path):
        """Write the fitted network as a parameter file that the window's Initialization can load.

        The values are written exactly, so a run from the file repeats this network's numbers.
        """
        check_is_fitted(self)
        values = [getattr(self, name + "_") for name in ("input_weights", "output_weights", "centers", "widths")]
        if not all(np.all(np.isfinite(v)) for v in values):
            raise ValueError("the network holds a value that is not finite and can't be written")
        text = _engine.parameter_text(*values)
        with open(path, "w", encoding="ascii", newline="") as f:
            f.write(text)


class RBFRegressor(RegressorMixin, _RBFNetwork):
    """An RBF network of one output, trained by one of Vantrel's five algorithms.

    Parameters
    ----------
    algorithm : {"second_order", "improved_second_order", "error_correction", "first_order",
        "improved_first_order"}
    units : int, the units of a fixed-size network drawn by ``init="manual"``; with
        ``centers="patterns_unique"`` at most the number of training patterns.
    iterations : int or None, per trial (per unit for error_correction); None: 100000 for the first-order
        algorithms, else 200.
    desired_error : float, a trial (or the growth) ends when the average error falls below it.
    trials : int, at least 1: the fixed-size algorithms train that many trials, each from a new draw.
    max_units : int, the units that error_correction adds.
    learning_constant, momentum : float, of the first-order algorithms.
    init : "manual" or the path of a parameter file (the fixed-size algorithms only).
    input_weights, output_weights, widths : float or (low, high), a fixed value or drawn in [low, high).
    centers : {"input_range", "patterns", "patterns_unique"}
    random_state : int, RandomState or None, seeds the draw of a manual initialization and the held-out split.
    callback : callable(iteration, error) or None, called after every iteration; a false answer (other than
        None) stops the fit at that iteration, keeping the network it has.
    nonfinite : {"raise", "fail_try"}, what a damped try (second-order algorithms and error_correction) whose
        error is not finite means. "raise", the window's rule: the try counts as a success, and a fit whose
        network ends non-finite raises ``vantrel.NonFiniteError`` (``vantrel.SingularMatrixError`` when a
        damped step met the singular matrix of such a network). "fail_try": the try fails and the damping rises,
        and an iteration never ends on a non-finite network, so that the fit goes on.
    early_stopping : bool, hold out ``validation_fraction`` of the patterns and follow their error after each
        iteration (each unit for error_correction); a trial (the growth) ends once it has not reached a new
        low for ``n_iter_no_change`` iterations (units), and the network of its lowest value is kept.
    validation_fraction : float in (0, 1), the share held out.
    n_iter_no_change : int, at least 1.
    verbose : int, 1 prints a line per iteration (error_correction: per unit; 2 also its iterations).

    Attributes
    ----------
    input_weights_ (units, inputs), output_weights_ (units + 1, bias first), widths_ (units,),
    centers_ (units, inputs); errors_: the average sum square error before and after each iteration of the
    last trial (error_correction: of each unit's training, one after another); trial_errors_: the error each
    trial (or unit) ended with; n_iter_: the iterations of the last trial (error_correction: of all units);
    validation_errors_: with early stopping, the held-out error before and after each iteration of the last
    trial (error_correction: after each unit), else None; best_validation_error_: the held-out error of the
    network kept, else None; residual_variance_: s^2, the sum of squared residuals over (training patterns -
    trained parameters), NaN without degrees of freedom.
    """

    @_restored_on_failure
    def fit(self, X, y):
        X, y = self._checked(X, y, y_numeric=True)
        return self._fit_targets(X, y.astype(np.float64))

    @_restored_on_failure
    def extend(self, X_new, y_new, extra_units):
        """Online training: append the new patterns (None: no new patterns) and grow the error_correction
        network by up to ``extra_units`` units, training old and new parameters on all patterns."""
        if X_new is None:
            return self._extend_targets(None, None, extra_units)
        X_new, y_new = self._checked(X_new, y_new, reset=False, y_numeric=True)
        return self._extend_targets(X_new, y_new.astype(np.float64), extra_units)

    def predict(self, X, return_std=False):
        """The network's output for each row of X; with ``return_std``, also its standard error.

        The standard error is the delta method's, sqrt(s^2 g^T (J^T J)^-1 g): g the output's gradient in the
        trained parameters at the row, J the Jacobian of the training patterns' outputs at the fitted network,
        s^2 the sum of squared residuals over (patterns - trained parameters). Where J^T J is singular its
        pseudo-inverse is taken (from the singular values of J above its rounding level). It is the error of
        the fitted function, for a band of the true function (y +- 1.96 std for 95%); for a band of new
        observations use sqrt(std**2 + residual_variance_). With no more training patterns than trained
        parameters it is NaN.

        Returns ``y`` or ``(y, std)``.
        """
        y = self._network_output(X)
        return (y, self._output_std(X)) if return_std else y

    def score(self, X, y, sample_weight=None):
        if _dask.is_dask(X, y) and sample_weight is None:
            return _dask.r2_score(y, self.predict(X))
        return super().score(X, y, sample_weight)


class RBFClassifier(ClassifierMixin, _RBFNetwork):
    """An RBF network for two classes: the class 1 (else the second class) is trained to 1.0, the other to -1.0,
    as the window's data plot colours them. Parameters and attributes are those of ``RBFRegressor``, and
    ``positive_class_`` is the class trained to 1.0; early stopping holds out a stratified share."""

    def _more_tags(self):
        # The network has one output: one class against the other, never more than two.
        return {"binary_only": True}

    def _targets(self, y):
        if _dask.is_dask(y):
            import dask.array as da
            return da.where(y == self.positive_class_, 1.0, -1.0)
        return np.where(y == self.positive_class_, 1.0, -1.0)

    @_restored_on_failure
    def fit(self, X, y):
        X, y = self._checked(X, y)
        if _dask.is_dask(y):
            import dask.array as da
            self.classes_ = np.unique(da.unique(y).compute())
        else:
            check_classification_targets(y)
            self.classes_ = np.unique(y)
        if len(self.classes_) > 2:
            raise ValueError(f"RBFClassifier takes two classes, not {len(self.classes_)}")
        ones = [c for c in self.classes_ if isinstance(c, numbers.Number) and c == 1]
        self.positive_class_ = ones[0] if ones else self.classes_[-1]
        targets = self._targets(y)
        return self._fit_targets(X, targets, stratify=targets if self.early_stopping else None)

    @_restored_on_failure
    def extend(self, X_new, y_new, extra_units):
        """Online training, as ``RBFRegressor.extend``; the new labels must be among ``classes_``."""
        check_is_fitted(self)
        if X_new is None:
            return self._extend_targets(None, None, extra_units)
        X_new, y_new = self._checked(X_new, y_new, reset=False)
        if not np.isin(np.asarray(y_new), self.classes_).all():
            raise ValueError("y_new holds a class that the classifier was not fitted on")
        return self._extend_targets(X_new, self._targets(y_new), extra_units)

    def decision_function(self, X):
        """The network's output: above zero for ``positive_class_``."""
        return self._network_output(X)

    def predict(self, X):
        above = self.decision_function(X) > 0
        positive = int(np.flatnonzero(self.classes_ == self.positive_class_)[0])
        negative = 1 - positive if len(self.classes_) == 2 else positive
        if _dask.is_dask(above):
            return above.map_blocks(lambda a: self.classes_[np.where(a, positive, negative)],
                                    dtype=self.classes_.dtype)
        return self.classes_[np.where(above, positive, negative)]

    def score(self, X, y, sample_weight=None):
        if _dask.is_dask(X, y) and sample_weight is None:
            return _dask.accuracy(y, self.predict(X))
        return super().score(X, y, sample_weight)
