"""Vantrel's training of RBF networks from Python: scikit-learn estimators on the window's own engine.

``load_data`` reads a file of patterns with the window's number-row scanner; ``RBFRegressor`` and
``RBFClassifier`` train a network of one output by one of the five algorithms and give the same numbers as
the window for the same start.
"""
import os

# Idle BLAS threads sleep at once instead of spinning against the engine's own threads, as in the window. The
# BLAS reads this when it is loaded: it holds when vantrel is imported before numpy.
os.environ.setdefault("OPENBLAS_THREAD_TIMEOUT", "4")

from vantrel import _engine  # noqa: E402
from vantrel._estimators import ALGORITHMS, RBFClassifier, RBFRegressor  # noqa: E402

__all__ = ["ALGORITHMS", "RBFClassifier", "RBFRegressor", "load_data"]


def load_data(path):
    """Read a data set file: one pattern a row, the inputs and then the desired output.

    Returns ``(X, y)``, float64 arrays of shape ``(patterns, inputs)`` and ``(patterns,)``. A file that the
    window would refuse raises ``ValueError`` with the window's message.
    """
    return _engine.load_data(os.fspath(path))
