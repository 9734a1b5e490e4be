"""RBFRegressor and RBFClassifier: the engine's five algorithms behind scikit-learn's estimator interface."""
import numbers
import os

import numpy as np
from sklearn.base import BaseEstimator, ClassifierMixin, RegressorMixin
from sklearn.utils import check_random_state
from sklearn.utils.multiclass import check_classification_targets
from sklearn.utils.validation import check_is_fitted

from vantrel import _dask, _engine

# The algorithms by name, valued by their place in the window's algorithm list.
ALGORITHMS = {
    "second_order": 0,
    "improved_second_order": 1,
    "error_correction": 2,
    "first_order": 3,
    "improved_first_order": 4,
}
_CENTERS = {"input_range": 0, "patterns": 1, "patterns_unique": 2}
_DEFAULTS = _engine.DEFAULTS  # the window's
_NETWORK = ("input_weights", "output_weights", "widths", "centers")


def _group(name, value, positive=False):
    """The draw of one group: a fixed value, or a (low, high) pair drawn in [low, high)."""
    if isinstance(value, numbers.Real):
        low = high = fixed = float(value)
        mode = 1
    else:
        low, high = (float(v) for v in value)
        fixed, mode = 1.0, 0
        if low > high:
            raise ValueError(f"{name}: the lower bound {low} is above the upper bound {high}")
    if positive and min(low, fixed) <= 0:
        raise ValueError(f"{name} must be larger than zero")
    return [mode, low, high, fixed]


def _seed(random_state):
    """The engine's seed: an int as given, else a number drawn from the random state."""
    if isinstance(random_state, numbers.Integral):
        return int(random_state) & 0xFFFFFFFF
    return int(check_random_state(random_state).randint(np.iinfo(np.int32).max))


class _RBFNetwork(BaseEstimator):
    """What both estimators share: the parameters, the runs and the fitted network."""

    def __init__(self, algorithm="second_order", units=5, iterations=None,
                 desired_error=_DEFAULTS["desired_error"], trials=_DEFAULTS["trials"],
                 max_units=_DEFAULTS["max_units"], learning_constant=_DEFAULTS["learning_constant"],
                 momentum=_DEFAULTS["momentum"], init="manual", input_weights=1.0,
                 output_weights=1.0, widths=1.0, centers="patterns_unique", random_state=None,
                 callback=None):
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

    def _options(self):
        if self.algorithm not in ALGORITHMS:
            raise ValueError(f"algorithm must be one of {sorted(ALGORITHMS)}, not {self.algorithm!r}")
        if self.centers not in _CENTERS:
            raise ValueError(f"centers must be one of {sorted(_CENTERS)}, not {self.centers!r}")
        iterations = self.iterations
        if iterations is None:
            iterations = _engine.default_iterations(ALGORITHMS[self.algorithm])
        for name, value in (("units", self.units), ("iterations", iterations), ("trials", self.trials),
                            ("max_units", self.max_units)):
            if not isinstance(value, numbers.Integral) or not 0 <= value < 2**32:
                raise ValueError(f"{name} must be a whole number from 0, not {value!r}")
        return {
            "algorithm": ALGORITHMS[self.algorithm], "iterations": int(iterations),
            "desired_error": float(self.desired_error), "trials": int(self.trials),
            "max_units": int(self.max_units), "learning_constant": float(self.learning_constant),
            "momentum": float(self.momentum), "units": int(self.units), "online": False,
            "center_mode": _CENTERS[self.centers], "seed": _seed(self.random_state),
            "groups": [_group("input_weights", self.input_weights), _group("output_weights", self.output_weights),
                       _group("widths", self.widths, positive=True)],
        }

    def _start_network(self, n_inputs):
        """The network of a parameter file, or None for a draw at each trial."""
        if isinstance(self.init, str) and self.init == "manual":
            return None
        if self.algorithm == "error_correction":
            raise ValueError("error_correction grows its network from no units: init must be 'manual'")
        return _engine.read_parameter_file(os.fspath(self.init), n_inputs)

    def _train(self, X, y, network, options):
        train = _dask.train if _dask.is_dask(X) else _engine.train
        result = train(X, y, network, options, self.callback)
        for name in _NETWORK:
            setattr(self, name + "_", result[name])
        self.errors_ = result["errors"]
        self.trial_errors_ = result["trial_errors"]
        self.n_iter_ = result["n_iter"]
        self._X_fit, self._y_fit = X, y
        return self

    def _fit_targets(self, X, targets):
        options = self._options()
        options["known_patterns"] = X.shape[0]
        return self._train(X, targets, self._start_network(X.shape[1]), options)

    def _extend_targets(self, X_new, targets_new, extra_units):
        check_is_fitted(self)
        if self.algorithm != "error_correction":
            raise ValueError("extend trains a network of the error_correction algorithm online")
        if self.widths_.size == 0:
            raise ValueError("extend needs a trained network of at least one unit")
        if not isinstance(extra_units, numbers.Integral) or not 0 < extra_units < 2**32:
            raise ValueError(f"extra_units must be a whole number above zero, not {extra_units!r}")
        options = self._options()
        options.update(online=True, max_units=int(extra_units), known_patterns=self._X_fit.shape[0])
        X, y = self._X_fit, self._y_fit
        if X_new is not None and _dask.is_dask(X, X_new):
            X, y = _dask.stack(X, X_new), _dask.stack(y, targets_new)
        elif X_new is not None:
            X, y = np.vstack([X, X_new]), np.concatenate([y, targets_new])
        network = {name: getattr(self, name + "_") for name in _NETWORK}
        return self._train(X, y, network, options)

    def _network_output(self, X):
        check_is_fitted(self)
        network = {name: getattr(self, name + "_") for name in _NETWORK}
        if _dask.is_dask(X):
            return _dask.network_output(network, _dask.check_patterns(X, n_features=self.n_features_in_))
        X = self._validate_data(X, reset=False)
        return _engine.predict(network, X)

    def _checked(self, X, y, reset=True, **checks):
        """X and y checked as scikit-learn checks them, dask arrays alike (which stay dask arrays)."""
        if not _dask.is_dask(X, y):
            return self._validate_data(X, y, reset=reset, dtype=np.float64, **checks)
        X, y = _dask.check_patterns(X, y, None if reset else self.n_features_in_)
        if reset:
            self.n_features_in_ = X.shape[1]
        return X, y

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
    units : int, the units of a fixed-size network drawn by ``init="manual"``.
    iterations : int or None, per trial (per unit for error_correction); None: 100000 for the first-order
        algorithms, else 200.
    desired_error : float, a trial (or the growth) ends when the average error falls below it.
    trials : int, the fixed-size algorithms train that many trials, each from a new draw.
    max_units : int, the units that error_correction adds.
    learning_constant, momentum : float, of the first-order algorithms.
    init : "manual" or the path of a parameter file (the fixed-size algorithms only).
    input_weights, output_weights, widths : float or (low, high), a fixed value or drawn in [low, high).
    centers : {"input_range", "patterns", "patterns_unique"}
    random_state : int, RandomState or None, seeds the draw of a manual initialization.
    callback : callable(iteration, error) or None, called after every iteration.

    Attributes
    ----------
    input_weights_ (units, inputs), output_weights_ (units + 1, bias first), widths_ (units,),
    centers_ (units, inputs); errors_: the average sum square error before and after each iteration of the
    last trial (error_correction: of each unit's training, one after another); trial_errors_: the error each
    trial (or unit) ended with; n_iter_: the iterations of the last trial (error_correction: of all units).
    """

    def fit(self, X, y):
        X, y = self._checked(X, y, y_numeric=True)
        return self._fit_targets(X, y.astype(np.float64))

    def extend(self, X_new, y_new, extra_units):
        """Online training: append the new patterns (None: no new patterns) and grow the error_correction
        network by up to ``extra_units`` units, training old and new parameters on all patterns."""
        if X_new is None:
            return self._extend_targets(None, None, extra_units)
        X_new, y_new = self._checked(X_new, y_new, reset=False, y_numeric=True)
        return self._extend_targets(X_new, y_new.astype(np.float64), extra_units)

    def predict(self, X):
        return self._network_output(X)

    def score(self, X, y, sample_weight=None):
        if _dask.is_dask(X, y) and sample_weight is None:
            return _dask.r2_score(y, self.predict(X))
        return super().score(X, y, sample_weight)


class RBFClassifier(ClassifierMixin, _RBFNetwork):
    """An RBF network for two classes: the class 1 (else the second class) is trained to 1.0, the other to -1.0,
    as the window's data plot colours them. Parameters and attributes are those of ``RBFRegressor``."""

    def _more_tags(self):
        # The network has one output: one class against the other, never more than two.
        return {"binary_only": True}

    def _targets(self, y):
        if _dask.is_dask(y):
            import dask.array as da
            return da.where(y == self.classes_[self._positive], 1.0, -1.0)
        return np.where(y == self.classes_[self._positive], 1.0, -1.0)

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
        ones = [k for k, c in enumerate(self.classes_) if isinstance(c, numbers.Number) and c == 1]
        self._positive = ones[0] if ones else len(self.classes_) - 1
        return self._fit_targets(X, self._targets(y))

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
        """The network's output: above zero for the class trained to 1.0."""
        return self._network_output(X)

    def predict(self, X):
        positive = self.decision_function(X) > 0
        negative = 1 - self._positive if len(self.classes_) == 2 else self._positive
        if _dask.is_dask(positive):
            return positive.map_blocks(lambda p: self.classes_[np.where(p, self._positive, negative)],
                                       dtype=self.classes_.dtype)
        return self.classes_[np.where(positive, self._positive, negative)]

    def score(self, X, y, sample_weight=None):
        if _dask.is_dask(X, y) and sample_weight is None:
            return _dask.accuracy(y, self.predict(X))
        return super().score(X, y, sample_weight)
