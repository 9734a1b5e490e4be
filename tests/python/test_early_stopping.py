"""Early stopping on held-out patterns, the callback that stops a fit, and the progress lines of verbose."""
import numpy as np
import pytest

import vantrel


def _noisy_sinc(patterns=120, seed=0):
    rng = np.random.default_rng(seed)
    X = rng.uniform(-6, 6, (patterns, 1))
    return X, np.sinc(X[:, 0] / np.pi) + rng.normal(0, 0.1, patterns)


# Many narrow units on few noisy patterns: the held-out error falls, then rises as the network fits the noise
# (and the steps overshoot: their tries fail rather than end the trial at a NaN).
OVERFITTING = dict(units=20, iterations=200, desired_error=0, widths=(0.05, 0.3), output_weights=(-0.1, 0.1),
                   centers="patterns", nonfinite="fail_try", early_stopping=True, random_state=3)


def test_early_stopping_ends_where_the_held_out_curve_says_and_keeps_that_network():
    X, y = _noisy_sinc()
    est = vantrel.RBFRegressor(n_iter_no_change=5, **OVERFITTING).fit(X, y)
    curve = est.validation_errors_
    best = int(np.argmin(curve))
    assert len(curve) == len(est.errors_) == est.n_iter_ + 1
    assert 0 < best < 200 - 5, "the set should overfit within the iterations"
    assert est.n_iter_ == best + 5, "the trial ends after 5 iterations without a new low"
    assert est.best_validation_error_ == curve[best]
    # The same run taken to that iteration, never ending early, gives the network kept.
    there = vantrel.RBFRegressor(**dict(OVERFITTING, iterations=best, n_iter_no_change=10**6)).fit(X, y)
    for name in ("output_weights_", "widths_", "centers_"):
        np.testing.assert_array_equal(getattr(est, name), getattr(there, name), err_msg=name)
    assert there.validation_errors_[-1] == est.best_validation_error_


def test_early_stopping_of_a_growth_keeps_the_best_number_of_units():
    X, y = _noisy_sinc(patterns=80, seed=1)
    est = vantrel.RBFRegressor(algorithm="error_correction", max_units=30, iterations=20, desired_error=0,
                               early_stopping=True, n_iter_no_change=3, random_state=0).fit(X, y)
    curve = est.validation_errors_
    assert len(curve) == len(est.trial_errors_), "one held-out error per unit"
    best = int(np.argmin(curve))
    assert len(curve) == min(best + 1 + 3, 30), "the growth stops 3 units after the lowest held-out error"
    assert est.widths_.size == best + 1 and est.best_validation_error_ == curve[best]


def test_a_callback_that_answers_false_stops_at_that_iteration_and_keeps_the_network():
    X, y = _noisy_sinc()
    settings = dict(units=6, desired_error=0, random_state=0)
    heard = []

    def stop_at_4(iteration, error):
        heard.append(iteration)
        return iteration < 4

    stopped = vantrel.RBFRegressor(callback=stop_at_4, **settings).fit(X, y)
    assert heard == [1, 2, 3, 4] and stopped.n_iter_ == 4 and len(stopped.errors_) == 5
    four = vantrel.RBFRegressor(iterations=4, **settings).fit(X, y)
    np.testing.assert_array_equal(stopped.errors_, four.errors_)
    np.testing.assert_array_equal(stopped.centers_, four.centers_)
    calls = []
    grown = vantrel.RBFRegressor(algorithm="error_correction", max_units=5, iterations=10,
                                 callback=lambda i, e: calls.append(i) or len(calls) < 15).fit(X, y)
    assert calls == list(range(1, 11)) + list(range(1, 6))
    assert grown.widths_.size == 2, "a stop in the second unit's fifth iteration keeps that unit"
    assert len(grown.errors_) == 11 + 6 and grown.n_iter_ == 15


@pytest.mark.parametrize("algorithm, lines", [
    ("second_order", ["Iteration 1, error = ", "Iteration 2, error = "]),
    ("error_correction", ["Units 1, error = ", "Units 2, error = "]),
])
def test_verbose_prints_a_line_per_iteration_or_unit(capsys, algorithm, lines):
    X, y = _noisy_sinc()
    vantrel.RBFRegressor(algorithm=algorithm, units=3, max_units=2, iterations=2, desired_error=0,
                         early_stopping=True, verbose=1, random_state=0).fit(X, y)
    printed = capsys.readouterr().out.splitlines()
    assert [line[:len(start)] for line, start in zip(printed, lines)] == lines and len(printed) == len(lines)
    assert all(", validation error = " in line for line in printed)
