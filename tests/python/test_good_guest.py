"""The engine as a guest in the interpreter: fits on several threads at once give the serial bits, and leave
numpy's BLAS with the threads it had."""
from concurrent.futures import ThreadPoolExecutor

import numpy as np
from threadpoolctl import threadpool_info, threadpool_limits

import vantrel


def _fit(seed, algorithm):
    # Random draws of every group, on enough patterns that the accumulation runs on its own threads too.
    rng = np.random.default_rng(5)
    X = rng.uniform(-1, 1, (3000, 2))
    y = np.sin(3 * X[:, 0]) * np.cos(2 * X[:, 1])
    est = vantrel.RBFRegressor(algorithm=algorithm, units=12, iterations=8, desired_error=0, trials=2,
                               input_weights=(0.5, 1.5), output_weights=(-1, 1), widths=(0.2, 2),
                               centers="patterns", learning_constant=1e-4, random_state=seed).fit(X, y)
    return np.concatenate([est.errors_, est.input_weights_.ravel(), est.output_weights_, est.widths_,
                           est.centers_.ravel()])


def test_fits_at_once_on_several_threads_give_the_bits_of_serial_fits():
    jobs = [(seed, algorithm) for seed in (11, 11, 12) for algorithm in ("improved_second_order", "first_order")]
    serial = [_fit(*job) for job in jobs]
    with ThreadPoolExecutor(len(jobs)) as pool:
        concurrent = list(pool.map(lambda job: _fit(*job), jobs))
    for job, alone, together in zip(jobs, serial, concurrent):
        np.testing.assert_array_equal(together, alone, err_msg=f"seed, algorithm {job}")
    np.testing.assert_array_equal(serial[0], serial[2], err_msg="the same seed must draw the same network")


def _blas_threads():
    return [pool["num_threads"] for pool in threadpool_info() if pool["internal_api"] == "openblas"]


def test_numpy_blas_keeps_its_thread_count_after_fits_at_once():
    np.dot(np.ones((200, 200)), np.ones((200, 200)))  # numpy's BLAS loaded
    # A count of the host's own, whatever an earlier fit of this process may have left.
    with threadpool_limits(limits=3, user_api="blas"):
        assert _blas_threads() == [3], "numpy's OpenBLAS is not loaded, or takes no count"
        for _ in range(3):
            with ThreadPoolExecutor(4) as pool:
                list(pool.map(lambda seed: _fit(seed, "second_order"), range(4)))
            assert _blas_threads() == [3]
