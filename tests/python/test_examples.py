"""The examples give the results of tarn, bit for bit."""

from __future__ import annotations

import csv
import os
import pathlib
import subprocess
from typing import Any

import numpy as np
import pytest

import fathom as fa
from conftest import TOP

NETWORKS = ["quakes/quakes.toml", "rain/rain.toml", "rain/quakes-over-rain.toml"]


def as_number(text: str) -> Any:
    try:
        return float(text)
    except ValueError:
        return text


@pytest.mark.parametrize("name", NETWORKS)
def test_the_table_of_an_example_equals_that_of_tarn(name: str, tmp_path: pathlib.Path) -> None:
    path = TOP / "examples" / name
    file = tmp_path / "table.csv"
    subprocess.run([os.environ["TARN_PROGRAM"], "run", path, f"--table={file}"], check=True, capture_output=True)
    with open(file, encoding="utf-8", newline="") as lines:
        rows = list(csv.reader(lines))
    table = fa.load(path).table()
    assert rows[0] == list(table)
    for index, column in enumerate(table.values()):
        expected = [as_number(row[index]) for row in rows[1:]]
        found = [value if isinstance(value, (str, float, np.floating, np.integer)) else str(value) for value in column]
        assert found == expected
        if column.dtype == np.float64:
            assert column.tobytes() == np.array(expected).tobytes()


@pytest.mark.parametrize("name", ["quakes/quakes.toml", "rain/rain.toml"])
def test_the_picture_of_an_example_equals_that_of_tarn(name: str, tmp_path: pathlib.Path) -> None:
    path = TOP / "examples" / name
    file = tmp_path / "picture.png"
    subprocess.run(
        [os.environ["TARN_PROGRAM"], "run", path, f"--set=picture.file={file}"], check=True, capture_output=True
    )
    net = fa.load(path)
    for _ in net.run():
        pass
    image = net["picture"].image
    assert image.data == file.read_bytes()
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
