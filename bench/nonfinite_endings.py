"""How often a fit of the damped algorithms ends finite, by the window's rules and with non-finite tries failing.

On four sets a user of surrogate models meets (make_friedman1, a 2-D peaks surface, a noisy sinc, two moons),
each damped algorithm is fitted over a sweep of unit counts with 3-fold cross-validation, once with
nonfinite="raise" (the window's rules: a fit that ends non-finite raises) and once with nonfinite="fail_try".
Prints, per set and algorithm, the fits that ended finite out of all, and the best cross-validated score (R^2,
or accuracy for two moons) over the unit counts, each fold that raised counting as a failed fold. Takes some
minutes; Error Correction's sweep stops at 50 units (its growth trains every count below as well, 200
iterations each):

    PYTHONPATH=build/python /usr/bin/python3 bench/nonfinite_endings.py [--units 5,10,25,50,75,100]
        [--growth-units 5,10,25,50]
"""
import argparse
import time

import vantrel  # first: it sets how the BLAS threads wait before numpy loads the BLAS
import numpy as np
from sklearn.datasets import make_friedman1, make_moons
from sklearn.model_selection import KFold, StratifiedKFold

ALGORITHMS = ("second_order", "improved_second_order", "error_correction")
SETTINGS = ("raise", "fail_try")


def peaks(patterns=300, seed=0):
    rng = np.random.default_rng(seed)
    X = rng.uniform(-3, 3, (patterns, 2))
    x, y = X[:, 0], X[:, 1]
    z = (3 * (1 - x) ** 2 * np.exp(-x**2 - (y + 1) ** 2) - 10 * (x / 5 - x**3 - y**5) * np.exp(-x**2 - y**2)
         - np.exp(-(x + 1) ** 2 - y**2) / 3)
    return X, z


def noisy_sinc(patterns=300, seed=0):
    rng = np.random.default_rng(seed)
    X = rng.uniform(-8, 8, (patterns, 1))
    return X, np.sinc(X[:, 0] / np.pi) + rng.normal(0, 0.1, patterns)


SETS = {
    "friedman1": (lambda: make_friedman1(n_samples=300, noise=1.0, random_state=0), False),
    "peaks": (peaks, False),
    "noisy sinc": (noisy_sinc, False),
    "two moons": (lambda: make_moons(n_samples=300, noise=0.2, random_state=0), True),
}


def fold_scores(X, y, classify, algorithm, units, setting):
    """The score of each fold, None where the fit raised."""
    folds = (StratifiedKFold if classify else KFold)(3, shuffle=True, random_state=0)
    scores = []
    for train, test in folds.split(X, y):
        estimator = vantrel.RBFClassifier if classify else vantrel.RBFRegressor
        est = estimator(algorithm=algorithm, units=units, max_units=units, centers="patterns", random_state=0,
                        nonfinite=setting)
        try:
            scores.append(est.fit(X[train], y[train]).score(X[test], y[test]))
        except vantrel.NonFiniteError:
            scores.append(None)
    return scores


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--units", default="5,10,25,50,75,100")
    parser.add_argument("--growth-units", default="5,10,25,50")
    args = parser.parse_args()
    counts = {"fixed": [int(u) for u in args.units.split(",")],
              "growth": [int(u) for u in args.growth_units.split(",")]}
    print(f"units {counts['fixed']}, error_correction {counts['growth']}, 3 folds each; "
          f"machine load {open('/proc/loadavg').read().split()[:3]}")
    print(f"{'set':12} {'algorithm':22} " + " ".join(f"{s + ' finite':>16} {s + ' best':>14}" for s in SETTINGS))
    for name, (make, classify) in SETS.items():
        X, y = make()
        for algorithm in ALGORITHMS:
            row, start = [], time.monotonic()
            for setting in SETTINGS:
                finite = total = 0
                best = -np.inf
                for units in counts["growth" if algorithm == "error_correction" else "fixed"]:
                    scores = fold_scores(X, y, classify, algorithm, units, setting)
                    finite += sum(s is not None for s in scores)
                    total += len(scores)
                    if all(s is not None for s in scores):
                        best = max(best, float(np.mean(scores)))
                row.append(f"{finite:>9} of {total:<4} {best:>14.3f}")
            print(f"{name:12} {algorithm:22} " + " ".join(row) + f"   ({time.monotonic() - start:.0f} s)",
                  flush=True)


if __name__ == "__main__":
    main()
