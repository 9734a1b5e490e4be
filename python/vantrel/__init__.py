"""Vantrel's training of RBF networks from Python: scikit-learn estimators on the window's own engine.

``load_data`` reads a file of patterns with the window's number-row scanner; ``RBFRegressor`` and
``RBFClassifier`` train a network of one output by one of the five algorithms and give the same numbers as
the window for the same start.
"""
import os

from vantrel import _kernel_family

# The BLAS reads these when it is loaded: they hold when vantrel is imported before numpy, and a value the
# user has set stays. Idle BLAS threads sleep at once instead of spinning against the engine's own threads.
# The kernel family is the best that the processor's features allow, by the window's own rule: the window
# asks the loaded BLAS what it chose and replaces only an older family, but here the BLAS is not loaded yet,
# and loading it to ask would fix its choice, so the features alone decide. The same family as the window's
# keeps the numbers the same to the last digit.
os.environ.setdefault("OPENBLAS_THREAD_TIMEOUT", "4")
if "OPENBLAS_CORETYPE" not in os.environ:
    _family = _kernel_family.best()
    if _family:
        os.environ["OPENBLAS_CORETYPE"] = _family

from vantrel import _engine  # noqa: E402
from vantrel._estimators import ALGORITHMS, RBFClassifier, RBFRegressor  # noqa: E402
from vantrel._reading import read_patterns  # noqa: E402
from vantrel.exceptions import NonFiniteError, SingularMatrixError  # noqa: E402

__all__ = ["ALGORITHMS", "NonFiniteError", "RBFClassifier", "RBFRegressor", "SingularMatrixError", "load_data",
           "read_patterns"]
__version__ = _engine.__version__


def load_data(path):
    """Read a data set file: one pattern a row, the inputs and then the desired output.

    Returns ``(X, y)``, float64 arrays of shape ``(patterns, inputs)`` and ``(patterns,)``. A file that the
    window would refuse raises ``ValueError`` with the window's message.
    """
    return _engine.load_data(os.fspath(path))
