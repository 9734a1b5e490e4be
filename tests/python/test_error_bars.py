"""predict(X, return_std=True): the delta method on the engine's own Jacobian, held against a Jacobian of finite
differences and against the true function of synthetic sets with known noise; the example that plots it."""
import os
import pathlib
import subprocess
import sys

import numpy as np
import pytest

import vantrel
from vantrel import _engine

SOURCE = pathlib.Path(os.environ["VANTREL_SOURCE_DIR"])
DATA = SOURCE / "data"


def _blocks(improved):
    # The packed vector's order: output weights (bias first), widths, the input weights where trained, centers.
    return ("output_weights", "widths") + (("input_weights",) if improved else ()) + ("centers",)


def _finite_difference_jacobian(network, X, improved, step=1e-6):
    """d output / d parameter at each row of X, by central differences on the packed parameters."""
    columns = []
    for name in _blocks(improved):
        values = network[name]
        for k in range(values.size):
            shifted = []
            for sign in (1, -1):
                moved = {key: value.copy() for key, value in network.items()}
                h = step * max(1.0, abs(values.flat[k]))
                moved[name].flat[k] += sign * h
                shifted.append(_engine.predict(moved, X))
            columns.append((shifted[0] - shifted[1]) / (2 * h))
    return np.column_stack(columns)


def _noisy_bumps():
    """Two bumps over two inputs with noise: networks of a few units fit it with a well-conditioned Jacobian."""
    rng = np.random.default_rng(0)
    X = rng.uniform(-2, 2, (200, 2))
    y = np.exp(-((X - 0.5) ** 2).sum(1)) - np.exp(-((X + 0.7) ** 2).sum(1) / 0.5) + rng.normal(0, 0.05, 200)
    return X, y


@pytest.mark.parametrize("algorithm, settings", [
    ("second_order", dict(units=3, iterations=30)),
    ("improved_second_order", dict(units=2, iterations=30)),
    ("error_correction", dict(max_units=3, iterations=30)),
    ("first_order", dict(units=2, iterations=1000, learning_constant=0.002)),
])
def test_return_std_is_the_delta_method_of_a_finite_difference_jacobian(algorithm, settings):
    X, y = _noisy_bumps()
    est = vantrel.RBFRegressor(algorithm=algorithm, random_state=0, desired_error=0, widths=(0.3, 1.5),
                               centers="patterns", **settings).fit(X, y)
    network = {name: getattr(est, name + "_") for name in ("input_weights", "output_weights", "widths", "centers")}
    improved = algorithm.startswith("improved")
    J = _finite_difference_jacobian(network, X, improved)
    residual_variance = np.sum((y - est.predict(X)) ** 2) / (X.shape[0] - J.shape[1])
    X_new = np.random.default_rng(1).uniform(-2, 2, (25, 2))
    G = _finite_difference_jacobian(network, X_new, improved)
    # (J^T J)^+ through the singular values of J. Scaling a unit's input weights and center by k and its width
    # by k^2 leaves its output alone, so the layout with input weights has one exact null direction per unit;
    # in the differences it stands at their rounding level, far below the cut.
    _, singular, vt = np.linalg.svd(J, full_matrices=False)
    kept = singular > 1e-7 * singular[0]
    assert kept.sum() == J.shape[1] - (est.widths_.size if improved else 0)
    expected = np.sqrt(residual_variance * np.sum((G @ (vt[kept] / singular[kept, None]).T) ** 2, axis=1))
    predicted, std = est.predict(X_new, return_std=True)
    np.testing.assert_array_equal(predicted, est.predict(X_new))
    np.testing.assert_allclose(std, expected, rtol=1e-4)


# A network of three units on one input, the truth of the synthetic sets below.
TRUE = dict(input_weights=np.ones((3, 1)), output_weights=np.array([0.2, 1.0, -0.8, 0.6]),
            widths=np.array([0.5, 0.8, 0.4]), centers=np.array([[-1.5], [0.0], [1.2]]))


def test_95_percent_bands_cover_the_true_function_at_fresh_inputs(tmp_path):
    # Well specified: a network of the truth's shape, trained from the truth on 150 noisy patterns.
    start = tmp_path / "true.ini"
    start.write_text(_engine.parameter_text(TRUE["input_weights"], TRUE["output_weights"], TRUE["centers"],
                                            TRUE["widths"]), newline="")
    coverage = []
    for seed in range(20):
        rng = np.random.default_rng(seed)
        X = rng.uniform(-3, 3, (150, 1))
        y = _engine.predict(TRUE, X) + rng.normal(0, 0.1, 150)
        est = vantrel.RBFRegressor(init=start, iterations=100, desired_error=0).fit(X, y)
        X_new = rng.uniform(-3, 3, (200, 1))
        predicted, std = est.predict(X_new, return_std=True)
        coverage.append(np.mean(np.abs(predicted - _engine.predict(TRUE, X_new)) <= 1.96 * std))
    assert 0.90 <= np.mean(coverage) <= 0.99, f"the 95% bands covered {np.mean(coverage):.3f} on average"


def test_no_degrees_of_freedom_give_nan_with_a_warning():
    X, y = vantrel.load_data(DATA / "sin1d.txt")
    est = vantrel.RBFRegressor(units=3, iterations=5, random_state=0).fit(X[:8], y[:8])  # 10 parameters
    with pytest.warns(RuntimeWarning, match="no degrees of freedom"):
        assert np.isnan(est.predict(X, return_std=True)[1]).all()


def test_error_band_example_writes_its_picture(tmp_path):
    picture = tmp_path / "band.png"
    subprocess.run([sys.executable, str(SOURCE / "examples" / "error_band.py"), str(picture)], check=True,
                   capture_output=True, timeout=120)
    assert picture.read_bytes()[:8] == b"\x89PNG\r\n\x1a\n"
