"""The examples give the results of tarn, bit for bit."""

from __future__ import annotations

import csv
import functools
import os
import pathlib
import subprocess
from collections.abc import Callable
from typing import Any

import numpy as np
import pytest

import fathom as fa
from conftest import TOP

NETWORKS = ["quakes/quakes.toml", "rain/rain.toml", "rain/quakes-over-rain.toml"]


@pytest.fixture(scope="module")
def tarn_results(tmp_path_factory: pytest.TempPathFactory) -> Callable[[str], pathlib.Path]:
    """Returns the folder with what tarn writes for an example: table.csv and picture.png. It runs
    each example once."""

    @functools.cache
    def run(name: str) -> pathlib.Path:
        folder = tmp_path_factory.mktemp("results")
        arguments = [f"--table={folder / 'table.csv'}", f"--set=picture.file={folder / 'picture.png'}"]
        command = [os.environ["TARN_PROGRAM"], "run", TOP / "examples" / name, *arguments]
        subprocess.run(command, check=True, capture_output=True)
        return folder

    return run


def as_number(text: str) -> Any:
    try:
        return float(text)
    except ValueError:
        return text


@pytest.mark.parametrize("name", NETWORKS)
def test_the_table_of_an_example_equals_that_of_tarn(
    name: str, tarn_results: Callable[[str], pathlib.Path]
) -> None:
    with open(tarn_results(name) / "table.csv", encoding="utf-8", newline="") as lines:
        rows = list(csv.reader(lines))
    table = fa.load(TOP / "examples" / name).table()
    assert rows[0] == list(table)
    for index, column in enumerate(table.values()):
        expected = [as_number(row[index]) for row in rows[1:]]
        found = [value if isinstance(value, (str, float, np.floating, np.integer)) else str(value) for value in column]
        assert found == expected
        if column.dtype == np.float64:
            assert column.tobytes() == np.array(expected).tobytes()


@pytest.mark.parametrize("name", ["quakes/quakes.toml", "rain/rain.toml"])
def test_the_picture_of_an_example_equals_that_of_tarn(
    name: str, tarn_results: Callable[[str], pathlib.Path], tmp_path: pathlib.Path
) -> None:
    net = fa.load(TOP / "examples" / name)
    for _ in net.run():
        pass
    image = net["picture"].image
    assert image.data == (tarn_results(name) / "picture.png").read_bytes()
    assert image._repr_png_() == image.data and image.data.startswith(b"\x89PNG")
    image.save(tmp_path / "copy.png")
    assert (tmp_path / "copy.png").read_bytes() == image.data
    assert net["picture"].file == "" and 'file = "/' not in net.to_toml()


def test_an_object_that_draws_nothing_has_no_picture() -> None:
    net = fa.load(TOP / "examples" / NETWORKS[0])
    with pytest.raises(TypeError, match="writes no pictures"):
        net["clock"].image
    net["picture"].width = 1.5
    with pytest.raises(fa.ObjectError, match='the input "width" is 1.5'):
        net["picture"].image


def test_a_picture_that_waits_for_a_failed_object_names_that_object() -> None:
    net = fa.load(TOP / "examples" / NETWORKS[0])
    net["coast"].file = "nowhere.json"
    with pytest.raises(fa.ObjectError, match="coast: .*nowhere.json: file not found"):
        net["picture"].image
