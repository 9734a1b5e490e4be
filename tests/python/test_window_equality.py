"""The package against the window: the same start gives the same error read-out to its last printed digit."""
import os
import pathlib
import subprocess

import pytest

import vantrel

DATA = pathlib.Path(os.environ["VANTREL_SOURCE_DIR"]) / "data"
FIXED_SIZE = ["second_order", "improved_second_order", "first_order", "improved_first_order"]

# Loads sin1d and trains each fixed-size algorithm 20 iterations from the 3-unit file; then grows twomoons to 4
# units and extends it online by 2 with the new points. Every run ends in its error read-out (edit 1025).
FIXED_RUN = """select 1014 {index}
file {data}/sin1d_3units.ini
dialog 130 click 1070 ok
click 1064
set 1019 20
click 1010
wait 60
text 1025
"""
SESSION_HEAD = """file {data}/sin1d.txt
dialog 129 click 1044 ok
click 1009
"""
GROWTH = """file {data}/twomoons.txt
dialog 129 click 1043 ok
click 1009
select 1014 2
dialog 1038 set 1097 4 ok
click 1064
set 1019 20
click 1010
wait 60
text 1025
dialog 140 set 1117 2 click 1114 ok
file {data}/twomoons_new.txt
click 1048
click 1010
wait 60
text 1025
"""


@pytest.fixture(scope="module")
def window_readouts(tmp_path_factory):
    folder = tmp_path_factory.mktemp("session")
    runs = "".join(FIXED_RUN.format(index=vantrel.ALGORITHMS[a], data=DATA) for a in FIXED_SIZE)
    script = folder / "equality.session"
    script.write_text(SESSION_HEAD.format(data=DATA) + runs + GROWTH.format(data=DATA))
    out = subprocess.run([os.environ["VANTREL_SESSION"], "--dir", str(folder), str(script)], check=True,
                         capture_output=True, text=True, timeout=300).stdout
    return [line.split(": ", 1)[1] for line in out.splitlines() if line.startswith("text 1025: ")]


def test_fixed_size_algorithms_equal_the_window(window_readouts):
    X, y = vantrel.load_data(DATA / "sin1d.txt")
    for algorithm, readout in zip(FIXED_SIZE, window_readouts):
        est = vantrel.RBFRegressor(algorithm=algorithm, init=DATA / "sin1d_3units.ini", iterations=20).fit(X, y)
        assert "%.12f" % est.errors_[-1] == readout, algorithm


def test_growth_and_online_extension_equal_the_window(window_readouts):
    X, y = vantrel.load_data(DATA / "twomoons.txt")
    est = vantrel.RBFClassifier(algorithm="error_correction", max_units=4, iterations=20).fit(X, y)
    assert (est.widths_.size, "%.12f" % est.errors_[-1]) == (4, window_readouts[4])
    est.extend(*vantrel.load_data(DATA / "twomoons_new.txt"), extra_units=2)
    assert (est.widths_.size, "%.12f" % est.errors_[-1]) == (6, window_readouts[5])
