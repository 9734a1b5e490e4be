"""What a fit tells while it runs: progress lines (``verbose``) and the user's ``callback``."""


class Progress:
    """Hears every iteration, and every unit of Error Correction, on the thread that called ``fit``.

    ``verbose`` 1 prints a line per iteration (Error Correction: per unit), 2 and more also the iterations of
    each unit. The callback hears every iteration; a false answer other than None stops the fit there.
    """

    def __init__(self, callback, verbose, growing):
        self.callback = callback
        self.verbose = int(verbose)
        self.growing = growing

    def iteration(self, number, error, held_out_error):
        if self.verbose >= (2 if self.growing else 1):
            print(f"Iteration {number}, error = {error:.8f}{_held_out(held_out_error)}", flush=True)
        if self.callback is None:
            return True
        answer = self.callback(number, error)
        return answer is None or bool(answer)

    def unit(self, units, error, held_out_error):
        if self.verbose:
            print(f"Units {units}, error = {error:.8f}{_held_out(held_out_error)}", flush=True)
        return True


def _held_out(error):
    # NaN: the held-out patterns are not followed at this point.
    return "" if error != error else f", validation error = {error:.8f}"
