"""Files of patterns larger than memory, read in blocks of whole lines into dask arrays."""
import os

import numpy as np

from vantrel import _engine


def read_patterns(path, blocksize="64MiB"):
    """Read a data set file in blocks of about ``blocksize`` bytes of whole lines, into dask arrays.

    Returns ``(X, y)`` as ``load_data`` does, with the same values, counts and refusals (``ValueError`` with
    the window's message), wherever the blocks are cut; but no process holds the whole set. The file must be
    readable where the blocks are read: on every worker of a cluster, at the same path. One pass over the file
    (block by block, in parallel) finds its shape when this is called; the values are read when the arrays
    are computed.
    """
    import dask
    from dask.bytes import read_bytes
    path = os.fspath(path)
    try:
        with open(path, "rb"):
            pass
    except OSError as exc:
        raise ValueError(_engine.CANNOT_OPEN_FILE) from exc
    _, [blocks] = read_bytes(path, delimiter=b"\n", blocksize=blocksize, sample=False)
    measures = dask.compute(*[dask.delayed(_measure_block)(block) for block in blocks])
    blocks, measures = _blocks_of_the_text(blocks, measures)
    # rows[t] of a block: its rows of t tokens.
    rows = [np.asarray(m[2], dtype=np.int64) for m in measures]
    tokens = [np.arange(r.size) for r in rows]
    patterns = sum(int(r.sum()) for r in rows)
    first = next((m[1] for m in measures if m[1] >= 0), 0)
    n_inputs = max(int(first) - 1, 0)
    _engine.check_data_set_counts(patterns, n_inputs, sum(int((r * t).sum()) for r, t in zip(rows, tokens)))
    inputs = [int((r * np.minimum(t, n_inputs)).sum()) for r, t in zip(rows, tokens)]
    targets = [int((r * np.maximum(t - n_inputs, 0)).sum()) for r, t in zip(rows, tokens)]
    return _arrays(blocks, inputs, targets, patterns, n_inputs)


# Tasks call these, by name: the native functions themselves can't travel to a worker.
def _measure_block(block):
    return _engine.measure_block(block)


def _read_block(block, n_inputs):
    return _engine.read_block(block, n_inputs)


def _blocks_of_the_text(blocks, measures):
    """The blocks up to the one whose NUL ends the file's text; that one is read as the text's last."""
    for k, (ends_text, _, _) in enumerate(measures):
        if ends_text:
            return blocks[:k + 1], measures[:k + 1]
    return blocks, measures


def _arrays(blocks, inputs, targets, patterns, n_inputs):
    """X and y from the blocks' values: inputs and targets run on from row to row, as in one reading, and
    what the rows don't reach stays 0.0 while what lies beyond the room is left out."""
    import dask
    import dask.array as da
    read = [dask.delayed(_read_block, nout=2)(block, n_inputs) for block in blocks]
    flat_x = _fitted(da.concatenate([da.from_delayed(r[0], (count,), np.float64)
                                     for r, count in zip(read, inputs)]), patterns * n_inputs)
    flat_y = _fitted(da.concatenate([da.from_delayed(r[1], (count,), np.float64)
                                     for r, count in zip(read, targets)]), patterns)
    return flat_x.reshape(patterns, n_inputs), flat_y


def _fitted(flat, length):
    """flat cut or padded with 0.0 to length."""
    import dask.array as da
    if flat.shape[0] >= length:
        return flat[:length]
    return da.concatenate([flat, da.zeros(length - flat.shape[0], dtype=np.float64)])
