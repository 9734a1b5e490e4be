#!/usr/bin/python3
"""Vantrel against a vectorised numpy trainer with the same rules, measured from outside.

Writes a data set of two inputs and a starting network (a parameter file), trains it for the same number of
iterations with `vantrel-session` (the window, hidden, as a user runs it; the trial's time read-out) and with
the numpy trainer below, alternately, and prints the times per iteration and their ratio. Both run on the same
BLAS kernel family (OPENBLAS_CORETYPE: what the processor allows at best, unless set) and the same threads.

    /usr/bin/python3 bench/numpy_lm.py build/vantrel-session [--repeat 3] [--one-core]

Needs Debian's python3-numpy (tools/install-deps.sh); use /usr/bin/python3, whose numpy that is.
"""
import argparse
import os
import re
import subprocess
import sys
import tempfile
import time


def best_kernel_family():
    flags = set()
    with open("/proc/cpuinfo") as info:
        for line in info:
            if line.startswith("flags"):
                flags = set(line.split(":", 1)[1].split())
                break
    if {"avx512f", "avx512dq", "avx512bw", "avx512vl"} <= flags:
        return "SkylakeX"
    if {"avx2", "fma"} <= flags:
        return "Haswell"
    return None


# The BLAS reads these when numpy loads it: the same kernels and idle-thread spin as the program's.
if "OPENBLAS_CORETYPE" not in os.environ and best_kernel_family():
    os.environ["OPENBLAS_CORETYPE"] = best_kernel_family()
os.environ.setdefault("OPENBLAS_THREAD_TIMEOUT", "4")
import numpy as np  # noqa: E402

# (name, algorithm, units, patterns, iterations, learning constant): 2 inputs, so 4 * units + 1 parameters.
SHAPES = [
    ("second order 1201/1000", 0, 300, 1000, 20, 0.001),
    ("second order 401/10000", 0, 100, 10000, 20, 0.001),
    ("first order 201/10000", 3, 50, 10000, 200, 1e-5),
]


def write_problem(folder, units, patterns, seed):
    rng = np.random.default_rng(seed)
    x = rng.uniform(-1.0, 1.0, size=(patterns, 2))
    t = np.sin(3.0 * x[:, 0]) * np.cos(2.0 * x[:, 1]) + 0.05 * rng.standard_normal(patterns)
    with open(os.path.join(folder, "data.txt"), "w", newline="\r\n") as f:
        for row, target in zip(x, t):
            f.write("%.6f %.6f %.6f\n" % (row[0], row[1], target))
    centers = x[rng.choice(patterns, size=units, replace=False)]
    rows = [
        np.ones(units * 2),
        np.concatenate(([0.0], rng.uniform(-0.1, 0.1, units))),
        centers.ravel(),
        np.full(units, 0.5),
    ]
    with open(os.path.join(folder, "start.ini"), "w", newline="\r\n") as f:
        for row in rows:
            f.write(" ".join("%.9f" % v for v in row) + "\n")


def read_problem(folder):
    data = np.loadtxt(os.path.join(folder, "data.txt"))
    with open(os.path.join(folder, "start.ini")) as f:
        rows = [np.array([float(v) for v in line.split()]) for line in f if line.strip()]
    return data[:, :2].copy(), data[:, 2].copy(), rows


class Network:
    """Bias and output weights, widths, centers packed as the program packs them (input weights fixed)."""

    def __init__(self, rows):
        self.v = rows[0].reshape(-1, 2)
        self.units = self.v.shape[0]
        self.params = np.concatenate((rows[1], rows[3], rows[2]))

    def split(self, p):
        u = self.units
        return p[0], p[1:u + 1], p[u + 1:2 * u + 1], p[2 * u + 1:].reshape(u, 2)

    def forward(self, p, x):
        b, w, s, c = self.split(p)
        a = self.v[None, :, :] * x[:, None, :] - c[None, :, :]
        d = np.einsum("pui,pui->pu", a, a)
        phi = np.exp(-d / s)
        return b + phi @ w, a, d, phi

    def error(self, p, x, t):
        y = self.forward(p, x)[0]
        return np.mean((y - t) ** 2)

    def jacobian(self, p, x, t):
        """J of e = t - y, one row per pattern, and e."""
        b, w, s, c = self.split(p)
        y, a, d, phi = self.forward(p, x)
        wps = w * phi / s
        j = np.empty((x.shape[0], p.size))
        j[:, 0] = -1.0
        j[:, 1:self.units + 1] = -phi
        j[:, self.units + 1:2 * self.units + 1] = -wps * d / s
        j[:, 2 * self.units + 1:] = (-2.0 * a * wps[:, :, None]).reshape(x.shape[0], -1)
        return j, t - y


def train_second_order(net, x, t, iterations):
    p = net.params.copy()
    previous = net.error(p, x, t)
    damping = 0.01
    eye = np.eye(p.size)
    for _ in range(iterations):
        j, e = net.jacobian(p, x, t)
        h = j.T @ j
        g = j.T @ e
        start = p
        for _ in range(6):
            p = start - np.linalg.solve(h + damping * eye, g)
            error = net.error(p, x, t)
            if not error >= previous:
                if damping > 1e-20:
                    damping *= 0.1
                break
            if damping < 1e20:
                damping *= 10.0
        previous = error
    return previous


def train_first_order(net, x, t, iterations, learning, momentum=0.5):
    p = net.params.copy()
    delta = np.zeros_like(p)
    error = net.error(p, x, t)
    for _ in range(iterations):
        j, e = net.jacobian(p, x, t)
        g = j.T @ e
        old = p
        p = old - (1 - momentum) * g * learning + momentum * delta
        delta = p - old
        error = net.error(p, x, t)
    return error


SESSION = """file {folder}/data.txt
dialog 129 click 1044 ok
click 1009
select 1014 {algorithm}
file {folder}/start.ini
dialog 130 click 1070 set 1103 {learning} ok
click 1064
set 1019 {iterations}
set 1020 0
click 1010
wait 3000
text 1024
text 1026
text 1027
"""


def run_session(exe, folder, algorithm, iterations, learning, prefix):
    script = os.path.join(folder, "run.session")
    with open(script, "w") as f:
        f.write(SESSION.format(folder=folder, algorithm=algorithm, iterations=iterations, learning=learning))
    out = subprocess.run(prefix + [exe, "--dir", folder, script], capture_output=True, text=True, check=True).stdout
    done = int(re.search(r"text 1024: (\d+)", out).group(1))
    seconds = float(re.search(r"text 1027: ([\d.]+)", out).group(1))
    error = float(re.search(r"text 1026: ([\d.eE+-]+|nan)", out).group(1))
    return seconds / done, error, done


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("session_exe")
    parser.add_argument("--repeat", type=int, default=3)
    parser.add_argument("--one-core", action="store_true", help="both sides on core 0 alone")
    args = parser.parse_args()
    prefix = ["taskset", "-c", "0"] if args.one_core else []
    if args.one_core:
        os.sched_setaffinity(0, {0})
    print("OPENBLAS_CORETYPE=%s, numpy %s, load %s" % (os.environ.get("OPENBLAS_CORETYPE"), np.__version__,
                                                       open("/proc/loadavg").read().split()[:3]))
    print("%-24s %12s %12s %8s %14s %14s" % ("shape", "numpy ms/it", "vantrel ms/it", "ratio", "numpy error",
                                            "vantrel error"))
    for name, algorithm, units, patterns, iterations, learning in SHAPES:
        with tempfile.TemporaryDirectory() as folder:
            write_problem(folder, units, patterns, seed=units + patterns)
            x, t, rows = read_problem(folder)
            ours, theirs = [], []
            for _ in range(args.repeat):
                net = Network(rows)
                start = time.perf_counter()
                if algorithm == 0:
                    numpy_error = train_second_order(net, x, t, iterations)
                else:
                    numpy_error = train_first_order(net, x, t, iterations, learning)
                theirs.append((time.perf_counter() - start) / iterations)
                per, vantrel_error, done = run_session(args.session_exe, folder, algorithm, iterations, learning,
                                                       prefix)
                ours.append(per)
            ours.sort()
            theirs.sort()
            median_ours, median_theirs = ours[len(ours) // 2], theirs[len(theirs) // 2]
            print("%-24s %12.2f %12.2f %8.2f %14.9f %14.9f" % (name, 1e3 * median_theirs, 1e3 * median_ours,
                                                              median_theirs / median_ours, numpy_error,
                                                              vantrel_error))
            sys.stdout.flush()


if __name__ == "__main__":
    main()
