"""read_patterns against load_data: the same values, counts and refusals wherever the blocks cut the rows."""
import dask
import numpy as np
import pytest

import vantrel

# Rows of two inputs and a desired output in every shape the window's scanner meets.
FILES = {
    "cr_lf": b"0.1 0.2 1\r\n0.3 0.4 -1\r\n0.5 0.6 1\r\n",
    "bare_lf": b"0.1 0.2 10\n0.3 0.4 -10\n0.5 0.6 15\n",  # each line's last character is lost
    "no_last_line_end": b"0.1 0.2 1\r\n0.3 0.4 -1\r\n0.5 0.6 1",
    "title_line": b"Data: two moons\r\n\r\n0.1;0.2,1\r\n x 0.3 0.4 -1 \r\n0.5 0.6 1\r\n",
    "nul_ends_the_text": b"0.1 0.2 1\r\n0.3 0.4 -1\r\n\x000.5 0.6 1\r\n9 9 9\r\n",
    "nul_in_a_row": b"0.1 0.2 1\r\n0.3 0.4 -1\r\n0.5 0.6 1\x00 7\r\n",
    "ragged_but_whole": b"0.1 0.2 1\r\n0.3 0.4\r\n-1 0.5 0.6 1\r\n",
}
REFUSED = {
    "incomplete": (b"1 2 3\r\n4 5\r\n", "Data file is incompleted!"),
    "no_patterns": (b"Inputs and Outputs\r\n", "Data file holds no patterns!"),
    "no_inputs": (b"1\r\n2\r\n", "Number of Inputs Should Be Larger Than Zero"),
}


@pytest.fixture(autouse=True)
def local_scheduler():
    with dask.config.set(scheduler="synchronous"):
        yield


@pytest.mark.parametrize("name", sorted(FILES))
def test_blocks_cut_anywhere_give_the_values_of_one_reading(tmp_path, name):
    path = tmp_path / "set.txt"
    path.write_bytes(FILES[name])
    X, y = vantrel.load_data(path)
    for blocksize in range(1, len(FILES[name]) + 2):
        Xd, yd = vantrel.read_patterns(path, blocksize=blocksize)
        assert Xd.shape == X.shape and yd.shape == y.shape, f"blocks of {blocksize} bytes"
        np.testing.assert_array_equal(Xd.compute(), X, err_msg=f"inputs, blocks of {blocksize} bytes")
        np.testing.assert_array_equal(yd.compute(), y, err_msg=f"outputs, blocks of {blocksize} bytes")


@pytest.mark.parametrize("name", sorted(REFUSED))
def test_refusals_are_the_windows(tmp_path, name):
    text, message = REFUSED[name]
    path = tmp_path / "set.txt"
    path.write_bytes(text)
    with pytest.raises(ValueError, match=message):
        vantrel.load_data(path)
    for blocksize in (1, 5, 1000):
        with pytest.raises(ValueError, match=message):
            vantrel.read_patterns(path, blocksize=blocksize)


def test_a_missing_file_is_refused_as_the_window_refuses_it(tmp_path):
    with pytest.raises(ValueError, match="Sorry, Cannot Open File!"):
        vantrel.read_patterns(tmp_path / "none.txt")


def test_a_generated_set_is_read_in_many_blocks(tmp_path):
    rng = np.random.default_rng(3)
    values = rng.normal(size=(3000, 4))
    path = tmp_path / "set.txt"
    path.write_bytes(b"".join(b" ".join(b"%.17g" % v for v in row) + b"\r\n" for row in values))
    Xd, yd = vantrel.read_patterns(path, blocksize=4096)
    assert Xd.numblocks[0] > 10
    X, y = vantrel.load_data(path)
    np.testing.assert_array_equal(Xd.compute(), X)
    np.testing.assert_array_equal(yd.compute(), y)
