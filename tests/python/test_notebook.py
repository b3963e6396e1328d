"""The notebook of the quakes example."""

from __future__ import annotations

import os
import pathlib
from typing import Any

import nbclient
import nbformat

from conftest import TOP

NOTEBOOK = TOP / "examples" / "quakes" / "quakes.ipynb"


def kinds_and_texts(cell: Any) -> list[tuple[str, set[str], str]]:
    return [
        (output.output_type, set(output.get("data", {})), output.get("data", output).get("text/plain", output.get("text")))
        for output in cell.get("outputs", [])
    ]


def test_the_notebook_has_the_outputs_of_its_cells(tmp_path: pathlib.Path) -> None:
    for folder in ("quakes", "earth"):
        (tmp_path / folder).symlink_to(TOP / "examples" / folder)
    os.environ["PYDEVD_DISABLE_FILE_VALIDATION"] = "1"
    committed = nbformat.read(NOTEBOOK, as_version=4)
    executed = nbformat.read(NOTEBOOK, as_version=4)
    for cell in executed.cells:
        if cell.cell_type == "code":
            cell.outputs = []
    folder = {"metadata": {"path": str(tmp_path / "quakes")}}
    nbclient.NotebookClient(executed, timeout=300, resources=folder).execute()
    outputs = [kinds_and_texts(cell) for cell in executed.cells]
    assert outputs == [kinds_and_texts(cell) for cell in committed.cells]
    pictures = [kinds for cell in outputs for _, kinds, _ in cell if "image/png" in kinds]
    assert len(pictures) == 3
