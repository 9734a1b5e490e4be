"""The package's own promises: the window's reader and messages, the estimator contract, seeds, files, the
callback and Ctrl-C."""
import os
import pathlib
import subprocess
import sys

import numpy as np
import pytest
from sklearn.utils.estimator_checks import check_estimator

import vantrel

SOURCE = pathlib.Path(os.environ["VANTREL_SOURCE_DIR"])
DATA = SOURCE / "data"


@pytest.mark.parametrize("text, message", [
    (None, "Sorry, Cannot Open File!"),
    ("1 2 3\r\n4 5\r\n", "Data file is incompleted!"),
    ("Inputs and Outputs\r\n", "Data file holds no patterns!"),
    ("1\r\n2\r\n", "Number of Inputs Should Be Larger Than Zero"),
])
def test_load_data_refuses_with_the_windows_message(tmp_path, text, message):
    path = tmp_path / "set.txt"
    if text is not None:
        path.write_bytes(text.encode())
    with pytest.raises(ValueError, match=message):
        vantrel.load_data(path)


def test_load_data_reads_by_the_scanners_rules(tmp_path):
    path = tmp_path / "set.txt"
    path.write_bytes(b"x 0.10;0.25 1\r\n\r\n0.50,-1.5e-2 -1")  # text before a row, separators, no last line end
    X, y = vantrel.load_data(path)
    assert X.dtype == y.dtype == np.float64
    np.testing.assert_array_equal(X, [[0.10, 0.25], [0.50, -0.015]])
    np.testing.assert_array_equal(y, [1, -1])


@pytest.mark.parametrize("estimator", [vantrel.RBFRegressor(), vantrel.RBFClassifier()],
                         ids=["regressor", "classifier"])
def test_check_estimator(estimator):
    check_estimator(estimator)


def test_classifier_trains_class_1_to_1_and_the_other_to_minus_1():
    X, y = vantrel.load_data(DATA / "twomoons.txt")
    labels = np.where(y == 1, "red", "blue")
    by_number = vantrel.RBFClassifier(random_state=3).fit(X, np.where(y == 1, 1, 0))
    by_name = vantrel.RBFClassifier(random_state=3).fit(X, labels)
    np.testing.assert_array_equal(by_number.decision_function(X), by_name.decision_function(X))
    assert by_number.score(X, np.where(y == 1, 1, 0)) > 0.9
    assert set(by_name.predict(X)) == {"red", "blue"}


def test_random_state_repeats_a_random_draw():
    X, y = vantrel.load_data(DATA / "sin1d.txt")
    params = dict(units=4, iterations=3, input_weights=(0.5, 1.5), widths=(0.2, 2), centers="input_range")
    first, again, other = (vantrel.RBFRegressor(random_state=s, **params).fit(X, y) for s in (7, 7, 8))
    np.testing.assert_array_equal(first.errors_, again.errors_)
    assert first.errors_[0] != other.errors_[0]


def test_parameter_file_gives_back_the_same_network(tmp_path):
    X, y = vantrel.load_data(DATA / "surface2d.txt")
    trained = vantrel.RBFRegressor(algorithm="improved_second_order", units=6, iterations=10,
                                   random_state=1).fit(X, y)
    trained.write_parameter_file(tmp_path / "net.ini")
    assert (tmp_path / "net.ini").read_bytes().count(b"\r\n") == 4
    loaded = vantrel.RBFRegressor(init=tmp_path / "net.ini", iterations=0).fit(X, y)
    for name in ("input_weights_", "output_weights_", "widths_", "centers_"):
        np.testing.assert_array_equal(getattr(loaded, name), getattr(trained, name))
    with pytest.raises(ValueError, match="Number of RBF units does not match!"):
        vantrel.RBFRegressor(init=DATA / "twomoons_4units.ini").fit(X[:, :1], y)


def test_callback_hears_every_iteration_and_its_exception_ends_the_fit():
    X, y = vantrel.load_data(DATA / "sin1d.txt")
    heard = []
    est = vantrel.RBFRegressor(iterations=7, desired_error=0, callback=lambda i, e: heard.append((i, e))).fit(X, y)
    assert heard == list(zip(range(1, 8), est.errors_[1:]))

    def fail(iteration, error):
        raise ZeroDivisionError(iteration)
    with pytest.raises(ZeroDivisionError):
        vantrel.RBFRegressor(callback=fail).fit(X, y)


def test_ctrl_c_stops_training_with_keyboard_interrupt():
    # A first-order run of 100000 iterations on 2000 patterns, interrupted after half a second.
    program = """
import os, signal, threading, time, numpy as np, vantrel
X = np.random.default_rng(0).random((2000, 2))
threading.Timer(0.5, os.kill, (os.getpid(), signal.SIGINT)).start()
start = time.monotonic()
try:
    vantrel.RBFRegressor(algorithm="first_order", units=50, learning_constant=1e-6, desired_error=0).fit(X, X[:, 0])
except KeyboardInterrupt:
    print(time.monotonic() - start)
"""
    out = subprocess.run([sys.executable, "-c", program], capture_output=True, text=True, timeout=60).stdout
    assert 0.4 < float(out) < 5


def test_extend_is_for_a_grown_network_only():
    X, y = vantrel.load_data(DATA / "sin1d.txt")
    with pytest.raises(ValueError, match="error_correction"):
        vantrel.RBFRegressor(iterations=1).fit(X, y).extend(X, y, 1)


def test_compare_algorithms_example_writes_its_picture(tmp_path):
    picture = tmp_path / "curves.png"
    subprocess.run([sys.executable, str(SOURCE / "examples" / "compare_algorithms.py"), str(picture)],
                   check=True, capture_output=True, timeout=120)
    assert picture.read_bytes()[:8] == b"\x89PNG\r\n\x1a\n"
