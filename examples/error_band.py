"""A 1-D fit with its error bands and its training and held-out curves, from Python, into a PNG.

A noisy sinc of 150 patterns, fitted by the Second Order Gradient Method with early stopping (a tenth of the
patterns held out). Left: the fit, the 95% band of the fitted function (y +- 1.96 std) and the wider band of
new observations (adding the residual variance), over the patterns and the true function. Right: the
training and held-out errors per iteration, and the iteration whose network was kept. Needs the package
built (see the README):

    PYTHONPATH=build/python /usr/bin/python3 examples/error_band.py [OUTPUT.png]
"""
import sys

import matplotlib

matplotlib.use("Agg")  # a file, not a window: runs without a display
import matplotlib.pyplot as plt  # noqa: E402
import numpy as np  # noqa: E402

import vantrel  # noqa: E402

NOISE = 0.1


def main(output="error_band.png"):
    rng = np.random.default_rng(4)
    X = rng.uniform(-8, 8, (150, 1))
    y = np.sinc(X[:, 0] / np.pi) + rng.normal(0, NOISE, X.shape[0])
    est = vantrel.RBFRegressor(units=8, iterations=300, desired_error=0, widths=(0.5, 4.0), centers="patterns",
                               output_weights=(-0.1, 0.1), nonfinite="fail_try", early_stopping=True,
                               n_iter_no_change=20, random_state=2).fit(X, y)

    grid = np.linspace(-8, 8, 400)[:, None]
    fitted, std = est.predict(grid, return_std=True)
    new_std = np.sqrt(std**2 + est.residual_variance_)

    fig, (fit_ax, curve_ax) = plt.subplots(1, 2, figsize=(12, 4.5))
    x = grid[:, 0]
    fit_ax.fill_between(x, fitted - 1.96 * new_std, fitted + 1.96 * new_std, color="#d8e4f0",
                        label="95% band of new observations")
    fit_ax.fill_between(x, fitted - 1.96 * std, fitted + 1.96 * std, color="#8fb3d9", label="95% band of the fit")
    fit_ax.plot(x, np.sinc(x / np.pi), "k--", linewidth=1, label="true function")
    fit_ax.plot(x, fitted, color="#1f4e8c", label=f"fit ({est.widths_.size} units)")
    fit_ax.plot(X[:, 0], y, ".", color="#555555", markersize=4, label="patterns")
    # Beyond the last patterns the bands widen fast: the scale is the patterns'.
    fit_ax.set(xlabel="x", ylabel="y", ylim=(-1.2, 1.8), title=f"noisy sinc (noise {NOISE}): fit and error bands")
    fit_ax.legend(fontsize="small", loc="upper right")

    iterations = np.arange(len(est.errors_))
    best = int(np.argmin(est.validation_errors_))
    curve_ax.plot(iterations, est.errors_, label="training patterns")
    curve_ax.plot(iterations, est.validation_errors_, label="held-out patterns")
    curve_ax.axvline(best, color="grey", linestyle=":", label=f"network kept (iteration {best})")
    curve_ax.set(yscale="log", xlabel="iteration", ylabel="average sum square error",
                 title="early stopping on the held-out error")
    curve_ax.legend(fontsize="small")
    fig.tight_layout()
    fig.savefig(output, dpi=100)
    print(output)


if __name__ == "__main__":
    main(*sys.argv[1:])
