"""Training on a Dask cluster: the patterns stay on the workers, the run stays here.

The engine's run drives the fit in this process, as for numpy arrays. Each sum over the patterns that it asks
for (gradient and quasi-Hessian, squared error, the worst pattern) becomes one task per partition on the
workers, which call the engine's own kernel on the partition where it lies: the network goes out once per pass
and only sums come back. The partitions are aligned runs of the engine's chunks of patterns, and their sums
are added by the engine's own tree, so a fit on a cluster gives the bits of a fit in one process.
"""
import math
from concurrent.futures import CancelledError

import numpy as np

from vantrel import _engine

# Rows of a partition at most: a partition's inputs and its Jacobian rows stay small on a worker, and a pass
# has a few tasks per worker thread to balance.
_MOST_PARTITION_ROWS = 1 << 20

# Asked on each worker: the vantrel it would import (False where it finds none).
_VERSION_PROBE = ("__import__('importlib.util').util.find_spec('vantrel') is not None "
                  "and __import__('vantrel').__version__")


def default_client():
    """The user's distributed client, or a message that says how to get one."""
    try:
        import distributed
        return distributed.get_client()
    except (ImportError, ValueError) as exc:
        raise ValueError("fitting on dask arrays needs a distributed Client: start one first, e.g. "
                         "distributed.Client(LocalCluster()) or distributed.Client('tcp://scheduler:8786')"
                         ) from exc


def check_workers(client, version):
    """Refuse a cluster whose workers can't import this very vantrel: their sums would not be ours."""
    import builtins
    seen = client.run(builtins.eval, _VERSION_PROBE, on_error="return")
    for worker, found in sorted(seen.items()):
        if isinstance(found, BaseException):
            raise RuntimeError(f"the worker {worker} can't import vantrel ({found!r}): install vantrel "
                               f"{version} where every worker runs")
        if found is False:
            raise RuntimeError(f"the worker {worker} has no vantrel to import: install vantrel {version} "
                               "where every worker runs")
        if found != version:
            raise RuntimeError(f"the worker {worker} has vantrel {found}, this process {version}: the same "
                               "version must run everywhere, or the sums would differ")


def partition_rows(patterns, threads):
    """Rows of the canonical partitions: a power of two of the engine's chunks, about two per worker thread."""
    chunk = _engine.CHUNK_PATTERNS
    span = 1
    while (math.ceil(patterns / (chunk * span)) > 2 * max(threads, 1)
           and chunk * span * 2 <= _MOST_PARTITION_ROWS):
        span *= 2
    return chunk * span


# ---- what the tasks run on the workers ---------------------------------------------------------------------

def _partition_sums(network, X, y, improved, n_params, hessian):
    return _engine.partition_sums(network, X, y, improved, n_params, hessian)


def _partition_errors(network, X, y, offset, keep):
    """The partition's sum of squared errors; with keep, the first of its largest |error| as the engine's
    worst-pattern rule takes it: NaN errors never count, but a NaN at the set's first pattern wins."""
    sse, outputs = _engine.partition_outputs(network, X, y)
    if not keep:
        return sse, None
    errors = np.abs(y - outputs)
    first_is_nan = bool(errors.size) and bool(np.isnan(errors[0]))
    valid = ~np.isnan(errors)
    if not valid.any():
        return sse, (first_is_nan, None, None)
    largest = errors[valid].max()
    return sse, (first_is_nan, float(largest), offset + int(np.flatnonzero(errors == largest)[0]))


def _worst_of(summaries):
    """The set's worst pattern from its partitions' summaries, in partition order."""
    if summaries and summaries[0][0]:
        return 0
    worst, largest = 0, None
    for _, value, index in summaries:
        if value is not None and (largest is None or value > largest):
            worst, largest = index, value
    return worst


# Times a pass is sent before a cancellation by the cluster ends the fit.
_PASS_ATTEMPTS = 3


class DaskPatterns:
    """Patterns of dask arrays on a cluster, as the engine's network policy asks for them."""

    def __init__(self, X, y, client):
        import distributed
        self._client = client
        self.n_patterns, self.n_inputs = (int(extent) for extent in X.shape)
        rows = partition_rows(self.n_patterns, sum(client.nthreads().values()))
        X = X.astype(np.float64).rechunk({0: rows, 1: -1})
        y = y.astype(np.float64).rechunk({0: rows})
        self._X, self._y = client.persist([X, y])
        distributed.wait([self._X, self._y])
        import dask.array as da
        finite = client.compute([da.isfinite(self._X).all(), da.isfinite(self._y).all()], sync=True)
        if not all(finite):
            raise ValueError("Input contains NaN, infinity or a value too large for dtype('float64').")
        self._x_parts = [distributed.Future(key, client) for key in _keys(self._X)]
        self._y_parts = [distributed.Future(key, client) for key in _keys(self._y)]
        self._offsets = [k * rows for k in range(len(self._x_parts))]
        self._worst = None
        self._range = None

    def _run(self, function, network, arguments):
        """function(*arguments(sent, k)) as a task for each partition k, sent the network on the workers; their
        results in partition order."""
        for attempt in range(_PASS_ATTEMPTS):
            sent = self._network(network)
            try:
                futures = [self._client.submit(function, *arguments(sent, k), pure=False)
                           for k in range(len(self._x_parts))]
                return self._gather(futures)
            except CancelledError:
                # A worker lost while the network was on its way may take the only copy of it along, and data
                # sent by scatter can't be computed again: the scheduler cancels the tasks that needed it. The
                # pass is sent again; its sums are the same whichever workers compute them.
                if attempt + 1 == _PASS_ATTEMPTS:
                    raise

    def _gather(self, futures):
        """The futures' results; whatever ends the wait (Ctrl-C, a task's failure) cancels those still running."""
        try:
            return self._client.gather(futures)
        except BaseException:
            self._client.cancel(futures)
            raise

    def _network(self, network):
        # Scattered once for the pass: each worker fetches it once, as its tasks' dependency, not with every task.
        # Not broadcast: the scheduler's replication races with a worker lost on the way and fails the scatter
        # itself (ValueError "Sample larger than population", dask/distributed#6713), where a lost copy only
        # cancels the pass, which _run sends again.
        # In a list: a dict alone would be scattered value by value, under its own keys.
        [sent] = self._client.scatter([network], hash=False)
        return sent

    def sum_derivatives(self, network, improved, n_params, hessian):
        parts = self._run(_partition_sums, network, lambda sent, k: (
            sent, self._x_parts[k], self._y_parts[k], improved, n_params, hessian))
        sse = _engine.add_by_tree([np.array([s]) for s, _, _ in parts])[0]
        gradient = _engine.add_by_tree([g for _, g, _ in parts])
        square = _engine.add_by_tree([h for _, _, h in parts]) if hessian else None
        return sse, gradient, square

    def squared_errors(self, network, keep):
        parts = self._run(_partition_errors, network, lambda sent, k: (
            sent, self._x_parts[k], self._y_parts[k], self._offsets[k], keep))
        if keep:
            self._worst = _worst_of([summary for _, summary in parts])
        return _engine.add_by_tree([np.array([s]) for s, _ in parts])[0]

    def clear_outputs(self):
        # Outputs of 0.0: the worst pattern is that of the largest |target|, found when it is asked for.
        self._worst = None

    def worst_pattern(self):
        if self._worst is None:
            none = {"input_weights": np.zeros((0, self.n_inputs)), "output_weights": np.zeros(1),
                    "widths": np.zeros(0), "centers": np.zeros((0, self.n_inputs))}
            self.squared_errors(none, True)
        return self._worst

    def pattern_inputs(self, indices):
        rows = self._client.compute(self._X[np.asarray(indices, dtype=np.int64)])
        return np.ascontiguousarray(self._gather([rows])[0], dtype=np.float64)

    def input_range(self):
        if self._range is None:
            import dask.array as da
            low, high = self._client.compute([da.min(self._X, axis=0), da.max(self._X, axis=0)])
            self._range = tuple(self._gather([low, high]))
        return self._range

    def release(self):
        """Let go of the persisted patterns on the workers."""
        self._x_parts = self._y_parts = []
        self._X = self._y = None


def _keys(array):
    """The keys of a dask array's blocks in row order (of a 2-D array, one block spans the columns)."""
    keys = array.__dask_keys__()
    return [row[0] for row in keys] if array.ndim == 2 else list(keys)
