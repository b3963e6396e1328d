"""Introspection: registered types, completion and help."""

from __future__ import annotations

import json
import os
import pydoc
import subprocess

import pytest

import fathom as fa


def from_tarn(command: str) -> dict[str, list[dict[str, object]]]:
    done = subprocess.run([os.environ["TARN_PROGRAM"], command, "--json"], capture_output=True, check=True)
    made: dict[str, list[dict[str, object]]] = json.loads(done.stdout)
    return made


def test_value_types_are_those_of_tarn() -> None:
    expected = {each["name"]: each["defaultText"] for each in from_tarn("types")["valueTypes"]}
    types = fa.types()
    for name, text in expected.items():
        assert types[str(name)].default_text == text
    assert types["Range"].label == "range" and types["Range"].components == ("begin", "end")


def test_object_types_have_inputs_and_outputs() -> None:
    types = fa.objects("testobjects")
    adder = types["Adder"]
    assert list(adder.inputs) == ["a", "b"] and list(adder.outputs) == ["sum"]
    assert adder.inputs["a"].type == "number" and adder.library.endswith("testobjects.so")
    assert types["Unmakable"].failure != ""
    with pytest.raises(ValueError, match='"unknown" was not found'):
        fa.objects("unknown")


def test_shells_complete_objects_inputs_and_outputs(sums: fa.Network) -> None:
    assert {"a", "b", "sum", "inputs", "name"} <= set(dir(sums["a"]))
    assert sums["a"]._ipython_key_completions_() == ["a", "b", "sum"]
    assert sums._ipython_key_completions_() == ["clock", "a", "b"]
    sums.add("Everything", "all")
    assert "unsigned int" not in dir(sums["all"])
    assert "unsigned int" in sums["all"]._ipython_key_completions_()


def test_help_shows_the_inputs_and_outputs_of_an_object(sums: fa.Network) -> None:
    text = pydoc.plain(pydoc.render_doc(sums["a"]))
    assert "Adder 'a'" in text
    assert "a: number, reads clock.GlobalTime.time" in text
    assert "sum: number" in text
    assert "Its inputs and outputs are attributes" in pydoc.plain(pydoc.render_doc(fa.NetworkObject))
