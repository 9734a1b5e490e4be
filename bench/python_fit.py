"""The binding's cost: fit on 10000 patterns and 401 parameters against the same run in the session runner.

    PYTHONPATH=build/python /usr/bin/python3 bench/python_fit.py prepare DIR   # data, network, session in DIR
    QT_QPA_PLATFORM=offscreen PYTHONPATH=build/python farm-bench -n 5 --timeout 900 \\
        --vs "build/vantrel-session --dir DIR DIR/fit.session" -- /usr/bin/python3 bench/python_fit.py fit DIR

Both load the 2-input data set of 10000 patterns, start the Second Order Gradient Method from the same
100-unit network (1 + 100 + 100 + 200 = 401 parameters) and run the method's default of 200 iterations. The
ratio is Python / window, whole processes: the interpreter's start (about a second) is in it. Each prints the
read-outs of the run, 1027 being the seconds of the run alone (in Python: of fit); to keep them, write the
commands as sh -c 'exec CMD >>FILE' (see farm-bench --help).
"""
import pathlib
import sys
import time

import vantrel  # first: it sets how the BLAS threads wait before numpy loads the BLAS
import numpy as np

PATTERNS, UNITS, ITERATIONS = 10000, 100, 200
SESSION = """file {dir}/fit.txt
dialog 129 click 1044 ok
click 1009
select 1014 0
file {dir}/fit.ini
dialog 130 click 1070 ok
click 1064
set 1019 {iterations}
set 1020 0
click 1010
wait 600
text 1024
text 1025
text 1027
"""


def prepare(folder):
    folder.mkdir(parents=True, exist_ok=True)
    rng = np.random.default_rng(0)
    X = rng.uniform(-1, 1, (PATTERNS, 2))
    y = np.sin(3 * X[:, 0]) * np.cos(2 * X[:, 1])
    np.savetxt(folder / "fit.txt", np.column_stack([X, y]), fmt="%.6f", newline="\r\n")
    X, y = vantrel.load_data(folder / "fit.txt")
    start = vantrel.RBFRegressor(units=UNITS, iterations=0, centers="patterns", widths=(0.05, 0.5),
                                 output_weights=(-0.5, 0.5), random_state=0).fit(X, y)
    start.write_parameter_file(folder / "fit.ini")
    (folder / "fit.session").write_text(SESSION.format(dir=folder.resolve(), iterations=ITERATIONS))


def fit(folder):
    X, y = vantrel.load_data(folder / "fit.txt")
    est = vantrel.RBFRegressor(init=str(folder / "fit.ini"), iterations=ITERATIONS, desired_error=0)
    start = time.perf_counter()
    est.fit(X, y)
    seconds = time.perf_counter() - start
    print(f"text 1024: {est.n_iter_}\ntext 1025: {est.errors_[-1]:.12f}\ntext 1027: {seconds:.3f}")


if __name__ == "__main__":
    {"prepare": prepare, "fit": fit}[sys.argv[1]](pathlib.Path(sys.argv[2]))
