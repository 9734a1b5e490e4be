"""Compare the five training algorithms on the one-input sample set, from Python: their error curves in a PNG.

The four algorithms of a fixed size all start from the 3-unit network of data/sin1d_3units.ini, as the
session script compare_algorithms.session does in the window; the Error Correction Algorithm grows its own
network to 5 units. Needs the package built (see the README):

    PYTHONPATH=build/python /usr/bin/python3 examples/compare_algorithms.py [OUTPUT.png]
"""
import pathlib
import sys

import matplotlib

matplotlib.use("Agg")  # a file, not a window: runs without a display
import matplotlib.pyplot as plt  # noqa: E402

import vantrel  # noqa: E402

DATA = pathlib.Path(__file__).resolve().parent.parent / "data"


def main(output="compare_algorithms.png"):
    X, y = vantrel.load_data(DATA / "sin1d.txt")
    fig, ax = plt.subplots(figsize=(8, 5))
    for algorithm in vantrel.ALGORITHMS:
        growing = algorithm == "error_correction"
        init = "manual" if growing else str(DATA / "sin1d_3units.ini")
        est = vantrel.RBFRegressor(algorithm=algorithm, init=init, iterations=2000, max_units=5).fit(X, y)
        label = f"{algorithm} ({est.n_iter_} iterations, error {est.errors_[-1]:.2e})"
        # As on the window's iteration plot, x = 1 is the error before the first iteration.
        ax.plot(range(1, len(est.errors_) + 1), est.errors_, label=label)
    ax.set(xscale="log", yscale="log", xlabel="iterations + 1 (Error Correction: of all units in turn)",
           ylabel="average sum square error", title="sin1d.txt: five algorithms")
    ax.legend(fontsize="small")
    fig.savefig(output, dpi=100)
    print(output)


if __name__ == "__main__":
    main(*sys.argv[1:])
