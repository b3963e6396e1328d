"""Introspection: registered types, completion and help."""

from __future__ import annotations

import json
import os
import pydoc
import subprocess
from typing import Any, cast

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


def test_object_types_have_the_descriptions_of_tarn() -> None:
    types = fa.objects()
    for each in from_tarn("objects")["objectTypes"]:
        described = cast(dict[str, Any], each)
        type = types[described["name"]]
        texts = described["description"]
        assert (type.description, type.category) == (texts["sentence"], texts["category"] or "")
        assert (type.details, type.page) == (texts["details"] or "", texts["page"] or "")
        assert list(type.keywords) == texts["keywords"]
        for slot in described["inputs"]:
            assert type.inputs[slot["name"]].description == (slot["description"] or {}).get("sentence", "")
            assert list(type.inputs[slot["name"]].choices) == slot["choices"]


def test_slots_have_units_and_limits() -> None:
    latitudes = fa.objects("rain")["GridMeans"].inputs["latitudes"]
    net = fa.Network()
    net.load_library("rain")
    means = net.add("GridMeans", "means")
    for described in (latitudes, means.inputs["latitudes"]):
        assert described.unit == "\u00b0" and described.limits == (-90, 90)
        assert described.description == "The latitudes of the area, both ends inclusive."
    assert means.outputs["mean"].limits is None
    text = pydoc.plain(pydoc.render_doc(means))
    assert f"latitudes: range, from -90 to 90 \u00b0. {latitudes.description}" in text


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
