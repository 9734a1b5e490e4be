"""The standard error of a fitted network's output, by the delta method."""
import warnings

import numpy as np

from vantrel import _engine

# Rows of new inputs whose Jacobian is built at once: bounds the memory of a prediction on many rows.
_ROWS_AT_ONCE = 4096


def output_std(network, improved, X_train, y_train, X):
    """sqrt(s^2 g^T (J^T J)^+ g) at each row of X.

    J is the Jacobian of the outputs at the training patterns in the trained parameters (the input weights
    too where ``improved``), g the same row at a new input, s^2 the sum of squared residuals over (patterns -
    trained parameters). The pseudo-inverse is taken through the singular values of J, those below J's
    rounding level left out: where J^T J is singular (parameters that do not change the output, units that
    coincide) the directions it cannot see add nothing. With no more patterns than parameters there is no
    estimate of s^2, and every value is NaN.
    """
    outputs, J = _engine.output_jacobian(network, X_train, improved)
    patterns, params = J.shape
    std = np.full(X.shape[0], np.nan)
    if patterns <= params:
        warnings.warn(f"{patterns} training patterns for {params} trained parameters leave no degrees of freedom "
                      "for the residual variance: the standard errors are NaN", RuntimeWarning)
        return std
    variance = np.sum((y_train - outputs) ** 2) / (patterns - params)
    _, singular, vt = np.linalg.svd(J, full_matrices=False)
    kept = singular > singular.max(initial=0.0) * max(patterns, params) * np.finfo(float).eps
    # (J^T J)^+ = V S^-2 V^T, so g^T (J^T J)^+ g is the squared length of S^-1 V^T g.
    scaled = vt[kept] / singular[kept, None]
    for start in range(0, X.shape[0], _ROWS_AT_ONCE):
        _, gradients = _engine.output_jacobian(network, X[start:start + _ROWS_AT_ONCE], improved)
        std[start:start + _ROWS_AT_ONCE] = np.sqrt(variance * np.sum((gradients @ scaled.T) ** 2, axis=1))
    return std
