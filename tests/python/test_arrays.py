"""Number arrays, which are numpy arrays on the memory of chunks."""

from __future__ import annotations

import gc
import pickle

import numpy as np
import pytest

import fathom as fa
from fathom import _fathom

TYPES = {"double[]": "float64", "float[]": "float32", "int16[]": "int16", "int32[]": "int32", "int64[]": "int64"}


def address(array: np.ndarray) -> int:  # type: ignore[type-arg]
    return int(array.__array_interface__["data"][0])


@pytest.mark.parametrize("name, dtype", TYPES.items())
def test_an_array_passes_to_an_input_and_back_without_a_copy(everything: fa.Network, name: str, dtype: str) -> None:
    array = fa.array([1, 2, 3], dtype)
    everything["all"][name] = array
    found = everything["all"][name]
    assert found.dtype == dtype
    assert found.tolist() == [1, 2, 3]
    assert address(found) == address(array)
    assert address(everything["all"][name]) == address(found)


def test_a_shared_array_is_read_only(everything: fa.Network) -> None:
    array = fa.zeros(3)
    array[1] = 5
    everything["all"]["double[]"] = array
    for each in (array, everything["all"]["double[]"]):
        with pytest.raises(ValueError, match="read-only"):
            each[0] = 1
    assert everything["all"]["double[]"].tolist() == [0, 5, 0]


def test_an_array_keeps_its_memory_whatever_is_destroyed_first(everything: fa.Network) -> None:
    gc.collect()
    before = _fathom._chunk_bytes()
    net = fa.Network()
    net.load_library("testobjects")
    net.add("Everything", "other")
    net["other"]["double[]"] = fa.array(np.arange(1000.0))
    view = net["other"]["double[]"][10:20]
    del net
    gc.collect()
    assert view.tolist() == list(range(10, 20))
    assert _fathom._chunk_bytes() == before + 8000
    del view
    gc.collect()
    assert _fathom._chunk_bytes() == before


def test_other_arrays_and_lists_are_copied(everything: fa.Network) -> None:
    source = np.arange(6.0)
    everything["all"]["double[]"] = source
    source[0] = 7
    assert everything["all"]["double[]"].tolist() == [0, 1, 2, 3, 4, 5]
    everything["all"]["double[]"] = [1, 2.5]
    assert everything["all"]["double[]"].tolist() == [1, 2.5]
    everything["all"]["int16[]"] = ()
    assert everything["all"]["int16[]"].tolist() == []


def test_a_non_contiguous_array_is_read_in_its_own_order(everything: fa.Network) -> None:
    numbers = fa.array(np.arange(10.0))
    everything["all"]["double[]"] = numbers[::-2]
    assert everything["all"]["double[]"].tolist() == [9, 7, 5, 3, 1]
    everything["all"]["double[]"] = numbers[2:4]
    assert everything["all"]["double[]"].tolist() == [2, 3]
    everything["all"]["int64[]"] = np.arange(6, dtype=">i4").reshape(2, 3)[:, 1]
    assert everything["all"]["int64[]"].tolist() == [1, 4]


def test_numbers_that_do_not_fit_are_refused(everything: fa.Network) -> None:
    with pytest.raises(ValueError, match="expected -32768 to 32767"):
        everything["all"]["int16[]"] = [1, 40000]
    with pytest.raises(ValueError, match="expected -9223372036854775808"):
        everything["all"]["int64[]"] = np.array([2**63], dtype=np.uint64)
    with pytest.raises(TypeError, match="found an array of float64, expected one of int32"):
        everything["all"]["int32[]"] = [1.5]
    with pytest.raises(TypeError, match="found an array of bool"):
        everything["all"]["double[]"] = [True]
    with pytest.raises(ValueError, match="2 dimensions, expected one of 1"):
        everything["all"]["double[]"] = np.zeros((2, 2))
    with pytest.raises(ValueError, match="too large for single precision"):
        everything["all"]["float[]"] = [1e300]
    with pytest.raises(TypeError, match="expected float64, float32, int64, int32 or int16"):
        fa.zeros(3, "complex128")


def test_nan_and_infinity_pass_through_arrays(everything: fa.Network) -> None:
    everything["all"]["float[]"] = [np.nan, np.inf, -0.0]
    found = everything["all"]["float[]"]
    assert np.isnan(found[0]) and np.isinf(found[1]) and np.signbit(found[2])


def test_pixels_of_image_tiles_are_arrays() -> None:
    pixels = fa.array([1, 2, 3, 4], "int16")
    tile = fa.ImageTile((2, 2), pixels)
    assert address(tile.primary) == address(pixels)
    assert tile.secondary is None
    assert pickle.loads(pickle.dumps(tile)).primary.tolist() == [1, 2, 3, 4]


def test_a_text_is_not_an_array(everything: fa.Network) -> None:
    everything["all"]["double[]"] = "1,2,3"
    assert everything["all"]["double[]"].tolist() == [1, 2, 3]
    with pytest.raises(TypeError):
        everything["all"]["double[]"] = 5.0
