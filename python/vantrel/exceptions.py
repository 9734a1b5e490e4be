"""The errors of a fit that ends without a usable network.

A network whose training went to infinity or NaN raises ``NonFiniteError``; the singular matrix that such a
network meets in a damped step raises ``SingularMatrixError``, one kind of it. Memory that is not there
raises Python's own ``MemoryError``.
"""
import numpy as np


class NonFiniteError(ArithmeticError, ValueError):
    """The fitted network, or its error, is not finite.

    Attributes
    ----------
    trial : int or None
        The trial (from 1) in which the error first was not finite; for ``error_correction`` the number of
        units then.
    iteration : int or None
        The iteration of that trial (0: before the first).
    """

    def __init__(self, message, trial=None, iteration=None):
        super().__init__(message)
        self.trial = trial
        self.iteration = iteration


class SingularMatrixError(NonFiniteError, np.linalg.LinAlgError):
    """A damped step met a singular matrix: the network had turned non-finite.

    Attributes
    ----------
    algorithm : str
        The algorithm that met it.
    units : int
        The network's number of units at that moment.
    """

    def __init__(self, message, algorithm, units, iteration):
        super().__init__(message, iteration=iteration)
        self.algorithm = algorithm
        self.units = units
