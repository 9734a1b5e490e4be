"""Fits that cannot give a usable network: refused settings, non-finite and singular ends, memory that is not
there, a refit that fails, arrays that do not fit, and a fit that outlives the interpreter's main thread."""
import os
import pathlib
import subprocess
import sys

import numpy as np
import pytest
from sklearn.datasets import make_moons

import vantrel
from vantrel import _engine

DATA = pathlib.Path(os.environ["VANTREL_SOURCE_DIR"]) / "data"


@pytest.mark.parametrize("kwargs, parameter", [
    (dict(trials=0), "trials"),
    (dict(learning_constant=float("nan")), "learning_constant"),
    (dict(momentum=float("inf")), "momentum"),
    (dict(desired_error=float("nan")), "desired_error"),
    (dict(widths=0.0), "widths"),
    (dict(output_weights=float("-inf")), "output_weights"),
    (dict(input_weights=(float("nan"), 1.0)), "input_weights"),
    (dict(widths=(0.5, float("inf"))), "widths"),
    (dict(units=-1), "units"),
    (dict(algorithm="third_order"), "algorithm"),
    (dict(nonfinite="ignore"), "nonfinite"),
    (dict(early_stopping=True, validation_fraction=1.0), "validation_fraction"),
    (dict(early_stopping=True, n_iter_no_change=0), "n_iter_no_change"),
    (dict(input_weights=(2, 1)), "input_weights"),
    (dict(algorithm="error_correction", init=DATA / "sin1d_3units.ini"), "init"),
])
def test_refused_settings_name_their_parameter(kwargs, parameter):
    X, y = vantrel.load_data(DATA / "sin1d.txt")
    with pytest.raises(ValueError, match=parameter):
        vantrel.RBFRegressor(**kwargs).fit(X, y)


def test_more_units_than_patterns_with_unique_centers_is_refused_as_the_window_does():
    X, y = vantrel.load_data(DATA / "sin1d.txt")[0][:5], np.arange(5.0)
    with pytest.raises(ValueError, match="Number of RBF units cannot larger than Number of patterns"):
        vantrel.RBFRegressor(units=6).fit(X, y)
    assert vantrel.RBFRegressor(units=5, iterations=1).fit(X, y).widths_.size == 5
    assert vantrel.RBFRegressor(units=6, centers="patterns", iterations=1).fit(X, y).widths_.size == 6


def _overshooting_set():
    """A second-order fit whose steps overshoot: narrow units far from a large target, NaN at iteration 2."""
    rng = np.random.default_rng(0)
    X = rng.uniform(-1, 1, (40, 2))
    return X, 10 * np.sin(3 * X[:, 0]) * np.cos(2 * X[:, 1])


OVERSHOOTING = dict(units=10, iterations=50, widths=(0.05, 0.2), centers="patterns", random_state=0)


def test_a_fit_driven_to_nan_raises_and_fails_its_tries_when_asked():
    X, y = _overshooting_set()
    est = vantrel.RBFRegressor(**OVERSHOOTING)
    with pytest.raises(vantrel.NonFiniteError, match="at iteration 2 of trial 1.*scale them") as raised:
        est.fit(X, y)
    assert (raised.value.trial, raised.value.iteration) == (1, 2)
    assert not hasattr(est, "widths_"), "a fit that raised must leave no fitted network"
    est.set_params(nonfinite="fail_try").fit(X, y)
    assert np.isfinite(est.errors_).all() and est.errors_[-1] <= est.errors_[0]
    assert np.isfinite(est.predict(X)).all()


def test_a_singular_matrix_names_the_algorithm_and_unit():
    X, y = make_moons(n_samples=60, noise=0.3, random_state=4)
    settings = dict(algorithm="error_correction", max_units=25, iterations=50, desired_error=0)
    # Where the network turns non-finite follows the last bits of the damped solve: the message names it.
    with pytest.raises(vantrel.SingularMatrixError, match=r"error_correction met it at iteration \d+ of unit 20") as e:
        vantrel.RBFClassifier(**settings).fit(X, y)
    assert (e.value.algorithm, e.value.units) == ("error_correction", 20)
    assert isinstance(e.value, (vantrel.NonFiniteError, np.linalg.LinAlgError))
    grown = vantrel.RBFClassifier(nonfinite="fail_try", **settings).fit(X, y)
    assert grown.widths_.size == 25 and np.isfinite(grown.decision_function(X)).all()


def _run(program, **limits):
    """Runs a Python program in a fresh interpreter (under an address-space limit when given)."""
    import resource

    def limit():
        if "address_space" in limits:
            resource.setrlimit(resource.RLIMIT_AS, (limits["address_space"],) * 2)
    return subprocess.run([sys.executable, "-c", program], capture_output=True, text=True, timeout=120,
                          preexec_fn=limit)


def test_more_units_than_memory_are_refused_before_any_block_is_taken():
    # 40 million units of one input need some 8 GB of blocks: under a 3 GB limit, refused with the window's
    # message, while the process has grown by almost nothing.
    program = """
import resource, numpy as np, vantrel
X = np.linspace(-1, 1, 20)[:, None]
before = resource.getrusage(resource.RUSAGE_SELF).ru_maxrss
try:
    vantrel.RBFRegressor(algorithm="first_order", units=40_000_000, centers="patterns", iterations=0).fit(X, X[:, 0])
except MemoryError as e:
    print(e)
print((resource.getrusage(resource.RUSAGE_SELF).ru_maxrss - before) // 1024)
"""
    done = _run(program, address_space=3 << 30)
    message, grown_mb = done.stdout.splitlines()
    assert message == "Number of RBF units is too large!", done.stderr
    assert int(grown_mb) < 50, f"the refused fit grew the process by {grown_mb} MB"


@pytest.mark.parametrize("work", [
    "est.fit(X, X[:, 0])",
    "est.set_params(callback=lambda i, e: None).fit(X, X[:, 0])",
    "est.set_params(iterations=2).fit(X[:100], X[:100, 0])\nwhile True: est.predict(np.tile(X, (500, 1)))",
], ids=["fit", "fit with a callback", "predict"])
def test_work_on_a_thread_that_outlives_the_main_thread_ends_cleanly(work):
    program = """
import threading, time, numpy as np, vantrel
X = np.random.default_rng(0).random((2000, 2))
est = vantrel.RBFRegressor(algorithm="first_order", units=50, learning_constant=1e-6, desired_error=0)
def work():
""" + "".join(f"    {line}\n" for line in work.splitlines()) + """
threading.Thread(target=work, daemon=True).start()
time.sleep(0.5)
print("main ends")
"""
    done = _run(program)
    assert (done.returncode, done.stdout, done.stderr) == (0, "main ends\n", "")


def test_a_failed_refit_leaves_the_estimator_as_it_was(tmp_path):
    X, y = vantrel.load_data(DATA / "surface2d.txt")
    est = vantrel.RBFRegressor(units=4, iterations=5, random_state=0).fit(X, y)
    before = {name: (value.copy() if isinstance(value, np.ndarray) else value) for name, value in vars(est).items()}
    predicted = est.predict(X)
    wider = np.column_stack([X, X[:, 0]])
    with pytest.raises(ValueError, match="Sorry, Cannot Open File!"):
        est.set_params(init=tmp_path / "missing.ini").fit(wider, y)
    est.set_params(init="manual")
    after = vars(est)
    assert after.keys() == before.keys()
    for name, value in before.items():
        np.testing.assert_array_equal(after[name], value, err_msg=name)
    np.testing.assert_array_equal(est.predict(X), predicted)
    with pytest.raises(ValueError, match="3 features"):
        est.predict(wider)


def test_predict_checks_the_arrays_against_each_other():
    X = np.zeros((3, 2))
    good = dict(input_weights=np.ones((2, 2)), output_weights=np.ones(3), widths=np.ones(2), centers=np.ones((2, 2)))
    assert _engine.predict(good, X).shape == (3,)
    for name, wrong in [("centers", np.ones((2, 3))), ("output_weights", np.ones(2)), ("widths", np.ones(5)),
                        ("input_weights", np.ones(4))]:
        with pytest.raises(ValueError, match="do not fit"):
            _engine.predict(dict(good, **{name: wrong}), X)
    with pytest.raises(ValueError, match="do not fit"):
        _engine.predict(good, np.zeros((3, 3)))
