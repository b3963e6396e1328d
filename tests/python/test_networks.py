"""Loading, changing and saving networks, and reading their objects."""

from __future__ import annotations

import logging
import os
import pathlib
import subprocess

import pytest

import fathom as fa

BROKEN = 'format = 1\nlibraries = 3\n[[object]]\nname = "ä"\ntype = "Unknown"\n'


def tarn(*arguments: str) -> subprocess.CompletedProcess[str]:
    return subprocess.run([os.environ["TARN_PROGRAM"], *arguments], capture_output=True, text=True, encoding="utf-8")


def test_loading_raises_one_exception_with_all_faults_as_tarn_prints_them(tmp_path: pathlib.Path) -> None:
    path = tmp_path / "nét.toml"
    path.write_text(BROKEN, encoding="utf-8")
    with pytest.raises(fa.NetworkError) as caught:
        fa.load(path)
    faults = caught.value.faults
    assert [(fault.line, fault.column) for fault in faults] == sorted((each.line, each.column) for each in faults)
    assert {fault.kind for fault in faults} == {fa.FaultKind.CONTENT, fa.FaultKind.TYPE}
    assert all(fault.file == str(path) for fault in faults)
    assert str(faults[0]).startswith(f"{path}:2:")
    printed = tarn("check", str(path)).stderr
    for line in str(caught.value).splitlines():
        assert line in printed


def test_loading_a_missing_file_raises_an_os_error_that_names_it() -> None:
    with pytest.raises(OSError, match="none.toml"):
        fa.load("none.toml")


def test_loading_replaces_texts_chart_and_number_of_steps(tmp_path: pathlib.Path) -> None:
    text = 'format = 1\n[[object]]\nname = "clock"\ntype = "GlobalTime"\nset = { time = "0[0,1]@0.25" }\n'
    net = fa.read(text, set={"clock.time": "0[0,1]@0.5"}, steps=2)
    assert [step.time for step in net.run()] == [0, 0.5]
    with pytest.raises(fa.NetworkError, match="no object depends on a chart"):
        fa.read(text, chart="north")


def test_reading_an_output_evaluates_what_assignments_reach(sums: fa.Network) -> None:
    assert sums["b"].sum == 12
    sums["a"].b = 5
    assert sums["b"].sum == 15
    assert sums["b"].a == 5


def test_inputs_accept_texts_and_typed_values(sums: fa.Network) -> None:
    sums["a"].b = "1e3"
    assert sums["a"].b == 1000
    sums["a"]["b"] = 4
    assert sums["a"].inputs["b"].value == 4
    sums["a"].inputs["b"].value = 6
    assert sums["b"].sum == 16
    with pytest.raises(ValueError, match='Adder "a", input "b": the text "ten" is refused'):
        sums["a"].b = "ten"
    assert sums["a"].b == 6


def test_a_connected_input_cannot_be_assigned(sums: fa.Network) -> None:
    with pytest.raises(ValueError, match='Adder "b", input "a": the input reads "a.sum"'):
        sums["b"].a = 5


def test_unknown_names_are_errors_that_list_the_known_ones(sums: fa.Network) -> None:
    with pytest.raises(KeyError, match="c"):
        sums["c"]
    with pytest.raises(AttributeError, match='no input or output "smu"; inputs: a, b; outputs: sum'):
        sums["a"].smu
    with pytest.raises(AttributeError, match='no input "sum"; that is an output'):
        sums["a"].sum = 3
    with pytest.raises(KeyError, match="smu"):
        sums["a"]["smu"]
    with pytest.raises(AttributeError, match="cannot be assigned"):
        sums["a"].outputs["sum"].value = 3
    with pytest.raises(AttributeError, match="attribute of every object"):
        sums["a"].name = "c"


def test_slots_have_types_sources_and_components(sums: fa.Network) -> None:
    source = sums["a"].inputs["a"]
    assert (source.type, source.source, source.is_output) == ("number", "clock.GlobalTime.time", False)
    assert "range.begin" not in sums["clock"].outputs
    assert "time" in sums["clock"].outputs["GlobalTime"].components
    assert sums["clock"]["GlobalTime.time"] == 0
    assert sums["a"].type == "Adder"


def test_a_slot_may_have_any_name_and_be_hidden_by_another() -> None:
    net = fa.Network()
    net.load_library("testobjects")
    teller = net.add("FailingTeller", "teller", status="from the input")
    assert teller.status == "from the input"
    assert teller.inputs["status"].value == "from the input"
    assert isinstance(teller.outputs["status"].value, fa.Status)
    net.add("Everything", "all")
    net["all"]["unsigned int"] = 3
    assert net["all"]["unsigned int"] == 3


def test_an_output_of_a_failed_or_waiting_object_raises_its_message() -> None:
    net = fa.read(
        'format = 1\nlibraries = ["testobjects"]\n'
        '[[object]]\nname = "clock"\ntype = "GlobalTime"\nset = { time = "0[0,1]@1" }\n'
        '[[object]]\nname = "fails"\ntype = "Failing"\n'
        '[[object]]\nname = "waits"\ntype = "Adder"\nconnect = { a = "fails.out" }\n'
    )
    assert net["waits"].sum == 42
    net.set_step(1)
    with pytest.raises(fa.ObjectError, match='Failing "fails" failed: out of paint'):
        net["fails"].out
    for slot in ("sum", "a"):
        with pytest.raises(fa.ObjectError, match="fails"):
            net["waits"][slot]
    (status,) = net.statuses
    assert status == fa.ObjectStatus("fails", fa.Severity.ERROR, "out of paint", 1)
    net.set_step(0)
    assert net["waits"].sum == 42


def test_networks_are_built_and_saved_with_the_bytes_of_tarn_convert(tmp_path: pathlib.Path) -> None:
    net = fa.Network(tmp_path)
    net.load_library("testobjects")
    clock = net.add("GlobalTime", "Uhr ü", time=(0, 0, 1, 0.1))
    net.add("Adder", "first", b=0.1)
    net.connect(clock.outputs["GlobalTime"].name and "Uhr ü.GlobalTime.time", "first.a")
    second = net.add("Adder", "second")
    net.connect(net["first"].outputs["sum"], second.inputs["b"])
    net.add("Adder", "other")
    net.connect("first.sum", "other.a")
    net.disconnect("other.a")
    net.rename(second, "total")
    net.remove("other")
    net.add_column("sum", "total.sum")
    assert second.name == "total"
    assert list(net) == ["Uhr ü", "first", "total"] and "first" in net and len(net) == 3

    path = tmp_path / "büilt.toml"
    net.save(path)
    assert path.read_text(encoding="utf-8") == net.to_toml()
    converted = tmp_path / "converted.toml"
    assert tarn("convert", str(path), str(converted)).returncode == 0
    assert converted.read_bytes() == path.read_bytes()
    again = fa.load(path)
    assert again.table()["sum"].tolist() == net.table()["sum"].tolist()


def test_a_refused_change_changes_nothing(sums: fa.Network) -> None:
    before = sums.to_toml()
    for change in (
        lambda: sums.connect("clock.GlobalTime", "b.b"),
        lambda: sums.connect("none.sum", "b.b"),
        lambda: sums.add("Unknown", "c"),
        lambda: sums.add("Adder", "a"),
        lambda: sums.remove("none"),
        lambda: sums.rename("a", "b"),
        lambda: sums.disconnect("b.b"),
        lambda: sums.load_library("unknown"),
    ):
        with pytest.raises(ValueError):
            change()
    assert sums.to_toml() == before


def test_a_removed_object_raises_reference_errors(sums: fa.Network) -> None:
    removed = sums["a"]
    slot = removed.inputs["b"]
    del sums["a"]
    for use in (
        lambda: removed.sum,
        lambda: removed["b"],
        lambda: setattr(removed, "b", 3),
        lambda: removed.inputs,
        lambda: removed.type,
        lambda: slot.value,
    ):
        with pytest.raises(ReferenceError, match='object "a" was removed'):
            use()
    assert not removed.exists
    assert repr(removed) == "<fathom.NetworkObject 'a' (removed)>"
    assert "sum" not in dir(removed)
    sums.add("Adder", "a")
    assert sums["a"].sum == 0
    with pytest.raises(ReferenceError):
        removed.sum
    assert sums["b"].sum == 10


def test_an_object_that_is_added_is_evaluated(sums: fa.Network) -> None:
    assert sums["b"].sum == 12
    sums.add("Adder", "c", b=100)
    sums.connect("b.sum", "c.a")
    assert sums["c"].sum == 112


def test_an_object_without_connections_is_evaluated_after_it_was_added(sums: fa.Network) -> None:
    sums.evaluate()
    sums.add("RunCounter", "runs")
    assert list(sums["runs"].outputs) == ["runs"] and sums["runs"].runs == 1


def test_objects_of_one_name_are_equal(sums: fa.Network) -> None:
    assert sums["a"] == sums["a"] and hash(sums["a"]) == hash(sums["a"])
    assert sums["a"] != sums["b"]


def test_warnings_and_errors_are_logged(sums: fa.Network, caplog: pytest.LogCaptureFixture) -> None:
    sums.add("Failing", "fails")
    sums.set_step(2)
    with caplog.at_level(logging.WARNING, "fathom"):
        sums.evaluate()
    (record,) = [each for each in caplog.records if each.name == "fathom"]
    assert record.levelno == logging.ERROR
    assert "out of paint" in record.getMessage()


def test_an_action_triggers_an_object() -> None:
    net = fa.Network()
    net.load_library("testobjects")
    counter = net.add("ActionCounter", "counter")
    (action,) = [slot.name for slot in counter.inputs.values() if slot.type == "action"]
    (output,) = [slot.name for slot in counter.outputs.values() if slot.type == "number"]
    before = counter[output]
    counter.emit(action, 2)
    assert counter[output] == before + 2, "it adds the numbers"
    with pytest.raises(AttributeError):
        counter.emit("unknown")
