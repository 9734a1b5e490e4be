"""The estimators on dask arrays: the same fit, extend, predict and score, with the patterns left where they
lie. The run stays in this process; vantrel._cluster takes each of its sums to the workers of the default
distributed client."""
import numpy as np

from vantrel import _cluster, _engine


def is_dask(*arrays):
    """Whether any of the arrays is a dask collection (without importing dask for numpy callers)."""
    return any(type(a).__module__.split(".")[0] == "dask" for a in arrays if a is not None)


def check_patterns(X, y=None, n_features=None):
    """X as a float64 dask array of rows by inputs, y one value per row, as scikit-learn's checks say it."""
    import dask.array as da
    X = da.asarray(X)
    if X.ndim != 2:
        raise ValueError(f"Expected 2D array, got {X.ndim}D array instead")
    if any(np.isnan(extent) for extent in X.shape):
        raise ValueError("the dask array's number of rows is unknown: call compute_chunk_sizes() on it first")
    if n_features is not None and X.shape[1] != n_features:
        raise ValueError(f"X has {X.shape[1]} features, but the estimator is expecting {n_features} features "
                         "as input")
    if y is None:
        return X.astype(np.float64)
    y = da.asarray(y)
    if y.ndim != 1 or y.shape[0] != X.shape[0]:
        raise ValueError(f"y must hold one value per row of X: X has {X.shape[0]} rows, y the shape {y.shape}")
    return X.astype(np.float64), y


def stack(old, new):
    """The old patterns with the new behind them."""
    import dask.array as da
    return da.concatenate([da.asarray(old), da.asarray(new)])


def train(X, y, network, settings, held_X, held_y, progress):
    """One run of the engine on dask patterns: each sum a pass of tasks on the default client's workers. The
    estimators hold no patterns out of a dask fit (held_X, held_y are None)."""
    from vantrel import __version__
    client = _cluster.default_client()
    _cluster.check_workers(client, __version__)
    patterns = _cluster.DaskPatterns(X, y, client)
    try:
        return _engine.train_on_source(patterns, network, settings, progress)
    finally:
        patterns.release()


def _block_output(block, network):
    return _engine.predict(network, block)


def network_output(network, X):
    """The network's output for every row, as a dask array of the rows' chunks."""
    X = X.rechunk({1: -1})
    return X.map_blocks(_block_output, network, drop_axis=1, dtype=np.float64)


def r2_score(y, predicted):
    """scikit-learn's coefficient of determination, by reductions over the chunks."""
    import dask.array as da
    y = da.asarray(y, dtype=np.float64)
    residual, total = da.compute(((y - predicted) ** 2).sum(), ((y - y.mean()) ** 2).sum())
    if total == 0:
        return 1.0 if residual == 0 else 0.0
    return float(1 - residual / total)


def accuracy(y, predicted):
    import dask.array as da
    return float(da.asarray(predicted == da.asarray(y)).mean().compute())
