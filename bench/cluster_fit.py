"""A fit on a local cluster against the same fit in one process, and the client's memory while it trains from a
file larger than it holds.

    PYTHONPATH=build/python /usr/bin/python3 bench/cluster_fit.py iteration [--patterns 1000000]
    PYTHONPATH=build/python /usr/bin/python3 bench/cluster_fit.py prepare DIR [--patterns 10000000]
    PYTHONPATH=build/python /usr/bin/time -v /usr/bin/python3 bench/cluster_fit.py memory DIR
    PYTHONPATH=build/python /usr/bin/python3 bench/cluster_fit.py model [--patterns 1000000]

iteration: the Second Order Gradient Method on 2-input patterns, 100 units (401 parameters), from one drawn
network: a numpy fit on both cores of this machine, then the same fit on dask arrays over a LocalCluster of two
single-threaded worker processes on 127.0.0.1. Prints the median seconds per iteration of each (from the
callback's times, the first iteration left out) and their ratio, and checks that both fits end in the same bits.

prepare: writes DIR/patterns.txt, generated, of --patterns rows.
memory: reads DIR/patterns.txt with read_patterns in blocks and grows a network of 3 units by the Error
Correction Algorithm, 2 iterations each, on the cluster; prints this process's own peak resident memory (the
workers are processes of their own, whose memory /usr/bin/time -v counts in its maximum).

model: the terms of a model of a cluster iteration, measured here: the seconds of one chunk's sums on one core,
the bytes of a partition's partial sums, and the latency of a pass of empty tasks; then the model's time per
iteration on W workers, t(W) = passes x (latency + W x bytes / bandwidth) + chunks x chunk seconds / W, with
its projection for 10^8 patterns on 16 workers.
"""
import argparse
import pathlib
import resource
import statistics
import sys
import time

import vantrel  # first: it sets how the BLAS threads wait before numpy loads the BLAS
import numpy as np

UNITS, INPUTS = 100, 2
PARAMS = 1 + UNITS * (INPUTS + 2)
FITTED = ("input_weights_", "output_weights_", "widths_", "centers_", "errors_")


def patterns(count, seed=0):
    rng = np.random.default_rng(seed)
    X = rng.uniform(-1, 1, size=(count, INPUTS))
    return X, np.sin(3 * X[:, 0]) * X[:, 1]


def timed_fit(X, y, iterations):
    """The fit and its seconds per iteration: the median of the gaps between the callback's calls."""
    stamps = []
    model = vantrel.RBFRegressor(units=UNITS, iterations=iterations, random_state=1, desired_error=0,
                                 callback=lambda iteration, error: stamps.append(time.perf_counter()))
    model.fit(X, y)
    return model, statistics.median(np.diff(stamps))


def local_cluster(workers):
    import distributed
    cluster = distributed.LocalCluster(n_workers=workers, threads_per_worker=1, processes=True, host="127.0.0.1",
                                       dashboard_address=None, silence_logs=40)
    return cluster, distributed.Client(cluster)


def iteration(count, iterations):
    import dask.array as da
    X, y = patterns(count)
    local, local_seconds = timed_fit(X, y, iterations)
    cluster, client = local_cluster(2)
    try:
        Xd = da.from_array(X, chunks=(1 << 17, INPUTS))
        yd = da.from_array(y, chunks=1 << 17)
        remote, remote_seconds = timed_fit(Xd, yd, iterations)
    finally:
        client.close()
        cluster.close()
    same = all(np.array_equal(getattr(local, n), getattr(remote, n)) for n in FITTED)
    print(f"patterns {count}, parameters {PARAMS}, {iterations} iterations")
    print(f"numpy fit, both cores:        {local_seconds:.3f} s per iteration")
    print(f"dask fit, 2 workers x 1 core: {remote_seconds:.3f} s per iteration")
    print(f"ratio dask / numpy:           {remote_seconds / local_seconds:.3f}")
    print(f"same bits:                    {same}")


def prepare(folder, count):
    folder.mkdir(parents=True, exist_ok=True)
    with open(folder / "patterns.txt", "wb") as f:
        for start in range(0, count, 100000):
            X, y = patterns(min(100000, count - start), seed=start)
            np.savetxt(f, np.column_stack([X, y]), fmt="%.9f", newline="\r\n")


def memory(folder):
    path = folder / "patterns.txt"
    cluster, client = local_cluster(2)
    try:
        start = time.perf_counter()
        X, y = vantrel.read_patterns(path, blocksize="32MiB")
        model = vantrel.RBFRegressor(algorithm="error_correction", max_units=3, iterations=2).fit(X, y)
        seconds = time.perf_counter() - start
    finally:
        client.close()
        cluster.close()
    peak = resource.getrusage(resource.RUSAGE_SELF).ru_maxrss / 1024
    print(f"file {path} ({path.stat().st_size / 1e6:.0f} MB, {X.shape[0]} patterns): read and grown to 3 units in "
          f"{seconds:.1f} s, error {model.errors_[-1]:.6f}")
    print(f"peak resident memory of this process: {peak:.0f} MB")


def chunk_seconds(network, X, y, work):
    """Seconds of one chunk's sums on one core: one chunk a call, so that it runs on one thread."""
    chunk = vantrel._engine.CHUNK_PATTERNS
    laps = []
    for k in range(32):
        rows = slice(k * chunk, (k + 1) * chunk)
        start = time.perf_counter()
        work(network, X[rows], y[rows])
        laps.append(time.perf_counter() - start)
    return statistics.median(laps)


def model(count):
    from vantrel import _engine
    X, y = patterns(count)
    fitted = vantrel.RBFRegressor(units=UNITS, iterations=0, random_state=1).fit(X[:4096], y[:4096])
    network = {n: getattr(fitted, n + "_") for n in ("input_weights", "output_weights", "widths", "centers")}
    derivatives = chunk_seconds(network, X, y, lambda *a: _engine.partition_sums(*a, False, PARAMS, True))
    errors = chunk_seconds(network, X, y, _engine.partition_outputs)
    partial_bytes = 8 * (PARAMS * PARAMS + PARAMS + 1)
    cluster, client = local_cluster(2)
    try:
        client.submit(len, [0]).result()
        laps = []
        for _ in range(20):
            start = time.perf_counter()
            client.gather([client.submit(len, [k], pure=False) for k in range(4)])
            laps.append(time.perf_counter() - start)
        latency = statistics.median(laps)
    finally:
        client.close()
        cluster.close()
    bandwidth = 1e9 / 8  # bytes per second to the client: a gigabit network
    tries = 2  # the damping rule's usual count of tries per iteration
    print(f"one chunk ({_engine.CHUNK_PATTERNS} patterns, {PARAMS} parameters) on one core: derivatives "
          f"{derivatives * 1e3:.2f} ms, error {errors * 1e3:.3f} ms")
    print(f"bytes of a partition's partial sums: {partial_bytes}")
    print(f"latency of a pass of tasks on 127.0.0.1: {latency * 1e3:.1f} ms")
    print("model: t(W) = (1 + tries) x latency + W x bytes / bandwidth + chunks / W x (derivatives + tries x error)")
    for P, W in ((count, 2), (10 ** 8, 16)):
        chunks = P / _engine.CHUNK_PATTERNS
        t = (1 + tries) * latency + W * partial_bytes / bandwidth + chunks / W * (derivatives + tries * errors)
        print(f"  {P:.0e} patterns on {W} workers: {t:.2f} s per iteration")


def main():
    parser = argparse.ArgumentParser(description=__doc__.split("\n\n")[0])
    parser.add_argument("what", choices=["iteration", "prepare", "memory", "model"])
    parser.add_argument("folder", nargs="?", default="/tmp/vantrel-cluster-bench")
    parser.add_argument("--patterns", type=int)
    parser.add_argument("--iterations", type=int, default=5)
    args = parser.parse_args()
    if args.what == "iteration":
        iteration(args.patterns or 10 ** 6, args.iterations)
    elif args.what == "prepare":
        prepare(pathlib.Path(args.folder), args.patterns or 10 ** 7)
    elif args.what == "memory":
        memory(pathlib.Path(args.folder))
    else:
        model(args.patterns or 10 ** 6)


if __name__ == "__main__":
    sys.exit(main())
