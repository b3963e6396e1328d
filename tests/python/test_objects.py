"""Processing objects written in Python."""

from __future__ import annotations

import gc
import json
import logging
import os
import pathlib
import pydoc
import subprocess
import sys
import threading
import time
from collections.abc import Iterator
from typing import Any

import numpy
import pytest

import fathom as fa
from conftest import TOP


@pytest.fixture(autouse=True)
def unregistered() -> Iterator[None]:
    """Ends the registrations of a test."""
    from fathom import _objects

    former = set(_objects._registered)
    yield
    for key in set(_objects._registered) - former:
        fa.unregister(_objects._registered[key])


def network(*types: str) -> fa.Network:
    net = fa.Network()
    for type in types:
        net.add(type, type.lower())
    return net


def define_halver() -> type[fa.Object]:
    @fa.object(category="Numbers", keywords=["divide"])
    class Halver(fa.Object):
        """Halves
        a number.

        Slowly."""

        whole: fa.Input[float] = fa.input(3, description="The number.", unit="km", limits=(0, 100))
        half: fa.Output[float] = fa.output(description="Its half.", unit="km")

        def update(self, request: fa.Request) -> None:
            self.half = self.whole / 2

    return Halver


def test_an_object_computes_its_outputs() -> None:
    define_halver()
    net = network("Halver")
    assert net["halver"].half == 1.5
    net["halver"].whole = 5
    assert net["halver"].half == 2.5
    assert net["halver"].type == "Halver"


def test_objects_of_both_languages_are_connected(sums: fa.Network) -> None:
    define_halver()
    sums.add("Halver", "halver")
    sums.connect("b.sum", "halver.whole")
    sums.add_column("half", "halver.half")
    assert [step["half"] for step in sums.run()] == [(12 + time / 4) / 2 for time in range(5)]
    assert fa.read(sums.to_toml())["halver"].half == 6


def test_a_class_is_described_like_other_types() -> None:
    define_halver()
    type = fa.objects()["Halver"]
    assert (type.description, type.details, type.category) == ("Halves a number.", "Slowly.", "Numbers")
    assert type.keywords == ("divide",) and type.library == __file__
    assert type.inputs["whole"].limits_text == "from 0 to 100 km" and type.inputs["whole"].initial_text == "3"
    assert type.outputs["half"].unit == "km"
    text = pydoc.plain(pydoc.render_doc(network("Halver")["halver"]))
    assert "whole: number, from 0 to 100 km. The number." in text


def test_limits_are_enforced() -> None:
    define_halver()
    with pytest.raises(ValueError, match="from 0 to 100 km"):
        network("Halver")["halver"].whole = 101


def test_limits_may_exclude_their_ends_and_infinite_numbers() -> None:
    @fa.object
    class Rater(fa.Object):
        rate: fa.Input[float] = fa.input(0.5, above=0, below=1)
        size: fa.Input[float] = fa.input(1, limits=(1, None), finite=True)

    net = network("Rater")
    inputs = fa.objects()["Rater"].inputs
    assert inputs["rate"].limits_text == "above 0 and below 1"
    assert inputs["size"].limits_text == "at least 1 and finite"
    for name, wrong in {"rate": 0, "size": float("inf")}.items():
        with pytest.raises(ValueError, match=inputs[name].limits_text):
            net["rater"][name] = wrong
    net["rater"].rate = 1e-300
    net["rater"].size = 1e300


def test_private_state_is_not_listed() -> None:
    @fa.object
    class Keeper(fa.Object):
        kept: fa.Output[float] = fa.output(visibility="private state")
        count: fa.Output[float]

    assert list(fa.objects()["Keeper"].outputs) == ["count"]


def test_every_part_of_a_description_reaches_the_host(tmp_path: pathlib.Path) -> None:
    (tmp_path / "keeper.py").write_text(
        "import fathom as fa\n"
        "@fa.object\n"
        "class Keeper(fa.Object):\n"
        "    mode: fa.Input[str] = fa.input('all', kind='input file', extensions=['csv'])\n"
        "    most: fa.Input[int] = fa.input(1, unit='m', above=0, below=9, finite=True, soft_limits=(1, 5), step=2,\n"
        "        logarithmic=True, visibility='advanced', only_if=('mode', 'some'), level=3)\n",
        encoding="utf-8",
    )
    done = subprocess.run(
        [os.environ["TARN_PROGRAM"], "describe", "Keeper", "--library=keeper.py", "--json"],
        cwd=tmp_path, capture_output=True, text=True, check=True,
    )
    mode, most = json.loads(done.stdout)["objectTypes"][0]["inputs"]
    assert (mode["description"]["textKind"], mode["description"]["extensions"]) == ("input file", ["csv"])
    assert most["level"] == 3
    assert most["description"] == {
        "sentence": "most",
        "unit": "m",
        "limits": {"from": 0, "to": 9, "excludesFrom": True, "excludesTo": True},
        "softLimits": {"from": 1, "to": 5, "excludesFrom": False, "excludesTo": False},
        "step": 2,
        "isLogarithmic": True,
        "isFinite": True,
        "textKind": "text",
        "extensions": [],
        "visibility": "advanced",
        "condition": {"input": "mode", "values": ["some"]},
    }


def test_contexts_and_sweeps_evaluate_objects_with_their_own_values() -> None:
    define_halver()
    net = network("Halver")
    net.add_column("half", "halver.half")
    table = net.sweep({"halver.whole": [2, 4, 6, 8]}, jobs=4)
    assert list(table["half"]) == [1, 2, 3, 4]


def test_an_exception_is_the_failure_and_its_traceback_a_warning(caplog: pytest.LogCaptureFixture) -> None:
    @fa.object
    class Divider(fa.Object):
        by: fa.Input[float]
        result: fa.Output[float]

        def update(self, request: fa.Request) -> None:
            self.result = 1 / self.by

    net = network("Divider")
    with caplog.at_level(logging.WARNING, "fathom"):
        with pytest.raises(fa.ObjectError, match="ZeroDivisionError: "):
            net["divider"].result
    assert "Traceback (most recent call last):" in caplog.text and "self.result = 1 / self.by" in caplog.text
    net["divider"].by = 4
    assert net["divider"].result == 0.25


@pytest.mark.parametrize("error", [SystemExit(3), KeyboardInterrupt(), GeneratorExit(), fa.Cancelled()])
def test_no_exception_of_an_update_ends_the_process(error: BaseException) -> None:
    @fa.object
    class Raiser(fa.Object):
        result: fa.Output[float]

        def update(self, request: fa.Request) -> None:
            raise error

    with pytest.raises(fa.ObjectError, match=type(error).__name__):
        network("Raiser")["raiser"].result


def test_a_class_may_forget_the_initialization_of_its_base() -> None:
    @fa.object
    class Forgetful(fa.Object):
        result: fa.Output[float]

        def __init__(self) -> None:
            self.number = 7

        def update(self, request: fa.Request) -> None:
            self.result = self.number

    assert network("Forgetful")["forgetful"].result == 7


def test_a_constructor_that_raises_refuses_the_object() -> None:
    @fa.object
    class Broken(fa.Object):
        def __init__(self) -> None:
            raise LookupError("nothing here")

    with pytest.raises(ValueError, match="LookupError: nothing here"):
        network("Broken")
    assert "nothing here" in fa.objects()["Broken"].failure


def test_a_class_without_update_fails() -> None:
    @fa.object
    class Idle(fa.Object):
        result: fa.Output[float]

    with pytest.raises(fa.ObjectError, match="Idle has no method update"):
        network("Idle")["idle"].result


def test_values_of_all_kinds_pass_through(everything: fa.Network) -> None:
    @fa.object
    class Passer(fa.Object):
        text: fa.Input[str] = fa.input("a")
        numbers: fa.Input[numpy.ndarray[Any, Any]]
        range: fa.Input[fa.Range] = fa.input((1, 2))
        same_text: fa.Output[str]
        total: fa.Output[float]
        end: fa.Output[float]
        status: fa.Output[fa.Status]

        def update(self, request: fa.Request) -> None:
            self.same_text = self.text
            self.total = self.numbers.sum()
            self.end = self.range.end
            self.status = f"{len(self.numbers)} numbers"

    net = network("Passer")
    net["passer"].numbers = [1, 2, 3.5]
    assert (net["passer"].total, net["passer"].same_text, net["passer"].end) == (6.5, "a", 2)
    assert str(net["passer"].status) == "3 numbers"
    assert any(status.text == "3 numbers" for status in net.statuses)


def test_a_refused_result_names_the_output() -> None:
    @fa.object
    class Wrong(fa.Object):
        result: fa.Output[float]

        def update(self, request: fa.Request) -> None:
            self.result = [1, 2]

    with pytest.raises(fa.ObjectError, match='output "result": found .*list, expected a value of type number'):
        network("Wrong")["wrong"].result


def test_objects_follow_the_time() -> None:
    @fa.object
    class TimeFollower(fa.Timed):
        now: fa.Output[float]

        def update(self, request: fa.Request) -> None:
            self.now = self.time.time

    net = fa.Network()
    net.add("GlobalTime", "clock", time="0[0,1]@0.5")
    net.add("TimeFollower", "follower")
    net.add_column("now", "follower.now")
    assert list(net.table()["now"]) == [0, 0.5, 1]


def test_actions_reach_objects_and_leave_them() -> None:
    updates = []

    @fa.object
    class Button(fa.Object):
        press: fa.Input[fa.Action]
        pressed: fa.Output[fa.Action]

        def update(self, request: fa.Request) -> None:
            updates.append((self.__class__, request.number))
            if request.number:
                self.pressed = fa.Action(request.number + 1)

    net = network("Button")
    net.add("Button", "second")
    net.connect("button.pressed", "second.press")
    net.evaluate()
    net["button"].emit("press", 3)
    net.evaluate()
    assert [number for _, number in updates] == [0, 0, 3, 4]


def test_inputs_and_outputs_are_used_only_during_updates() -> None:
    kept: list[Any] = []

    @fa.object
    class Keeper(fa.Object):
        number: fa.Input[float]
        result: fa.Output[float]

        def update(self, request: fa.Request) -> None:
            kept.extend([self, request])

            def use() -> None:
                try:
                    self.number
                except RuntimeError as error:
                    kept.append(str(error))

            thread = threading.Thread(target=use)
            thread.start()
            thread.join()

    net = network("Keeper")
    net.evaluate()
    assert "in the thread that calls update" in kept[2]
    for _ in range(2):
        with pytest.raises(RuntimeError, match="only while update runs"):
            kept[0].number
        with pytest.raises(RuntimeError, match="only while update runs"):
            kept[1].progress(1)
        del net
        gc.collect()
        net = fa.Network()


def test_an_update_must_not_use_its_network() -> None:
    nets: list[fa.Network] = []

    @fa.object
    class Recursive(fa.Object):
        result: fa.Output[float]

        def update(self, request: fa.Request) -> None:
            nets[0]["recursive"].result

    nets.append(network("Recursive"))
    with pytest.raises(fa.ObjectError, match="an object must not use it"):
        nets[0]["recursive"].result


def test_cancellation_ends_an_update_that_does_not_ask() -> None:
    started = threading.Event()

    @fa.object
    class Endless(fa.Object):
        result: fa.Output[float]

        def update(self, request: fa.Request) -> None:
            started.set()
            while True:
                pass

    context = network("Endless").context()
    cancel = threading.Thread(target=lambda: (started.wait(), context.cancel()))
    cancel.start()
    with pytest.raises(fa.ObjectError, match="cancelled"):
        context.evaluate()
    cancel.join()


def test_updates_run_in_several_threads() -> None:
    define_halver()
    net = network("Halver")
    failures: list[BaseException] = []

    def work(number: int) -> None:
        try:
            with net.context({"halver.whole": number}) as case:
                for _ in range(20):
                    case["halver"].whole = number
                    assert case["halver"].half == number / 2
        except BaseException as error:
            failures.append(error)

    threads = [threading.Thread(target=work, args=(number,)) for number in range(8)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert not failures


def test_only_changed_inputs_are_reported() -> None:
    changes = []

    @fa.object
    class Watcher(fa.Object):
        a: fa.Input[float]
        b: fa.Input[float]

        def update(self, request: fa.Request) -> None:
            changes.append((request.has_changed("a"), request.has_changed("b")))

    net = network("Watcher")
    net.evaluate()
    net["watcher"].b = 5
    net.evaluate()
    assert changes == [(True, True), (False, True)]


def test_a_class_that_is_defined_again_replaces_the_former() -> None:
    define_halver()
    net = network("Halver")

    @fa.object(name="Halver")
    class Other(fa.Object):
        half: fa.Output[float]

        def update(self, request: fa.Request) -> None:
            self.half = 99

    assert net["halver"].half == 1.5
    assert network("Halver")["halver"].half == 99


def test_an_unregistered_class_stays_with_its_objects() -> None:
    cls = define_halver()
    net = network("Halver")
    fa.unregister(cls)
    assert "Halver" not in fa.objects()
    del cls
    gc.collect()
    assert net["halver"].half == 1.5


def test_a_value_that_an_object_keeps_outlives_its_network() -> None:
    kept = []

    @fa.object
    class Keeper(fa.Object):
        catalog: fa.Input["Catalogue"]  # type: ignore[name-defined]  # noqa: F821
        deepest: fa.Output[float]

        def update(self, request: fa.Request) -> None:
            kept.append(self.catalog)
            self.deepest = numpy.nanmax(self.catalog.depths)

    net = fa.load(TOP / "examples" / "quakes" / "quakes.toml")
    net.add("Keeper", "keeper")
    net.connect("reader.catalog", "keeper.catalog")
    deepest = net["keeper"].deepest
    del net
    gc.collect()
    fa.Network()
    assert kept[0].count == 1707 and numpy.nanmax(kept[0].depths) == deepest
    assert len(str(kept[0]).splitlines()) == 1707


def test_objects_offer_charts_and_follow_the_selected_one() -> None:
    @fa.object
    class Mapper(fa.Object):
        charts: fa.Output[fa.Charts]

        def update(self, request: fa.Request) -> None:
            self.charts = fa.Charts(["flat", "round"])

    @fa.object
    class Follower(fa.Object):
        chart: fa.Input[fa.Chart]
        name: fa.Output[str]

        def update(self, request: fa.Request) -> None:
            self.name = self.chart.name

    net = network("Mapper", "Follower")
    net.select_chart("round")
    net.add_column("chart", "follower.name")
    assert net.table()["chart"].tolist() == ["round"]
    assert net.charts == ["flat", "round"]
    with net.context() as case:
        case.select_chart("flat")
        assert case.table()["chart"].tolist() == ["flat"]
    del net
    gc.collect()


def test_instances_are_released_with_their_network() -> None:
    alive = []

    @fa.object
    class Counted(fa.Object):
        def __init__(self) -> None:
            alive.append(1)

        def __del__(self) -> None:
            alive.pop()

    net = network("Counted")
    assert alive
    del net
    gc.collect()
    fa.Network()
    assert not alive


@pytest.mark.parametrize(
    "body, message",
    [
        ("x: fa.Input[dict]", "is not a type of values"),
        ("x: fa.Input[float] = fa.output()", "describe different slots"),
        ("x = fa.input()", "expected an annotation"),
        ("x: fa.Input[float] = fa.input(limits=(2, 1))", "ascending order"),
        ("x: fa.Input[str] = fa.input(kind='fil')", "expected one of: text, input file"),
        ("x: fa.Input[str] = fa.input(visibility='secret')", "expected one of: ordinary, advanced"),
        ("x: fa.Input[float] = fa.input(limits=5)", "found 5 for limits, expected two numbers"),
        ("x: fa.Input[float] = fa.input(finite='yes')", "found 'yes' for finite, expected a bool"),
        ("x: fa.Input[float] = fa.input(only_if=('mode', 3))", "expected the name of an input and its texts"),
        ("x: fa.Input[float] = fa.input(above=2, below=1)", "ascending order"),
        ("x: fa.Input[float] = fa.input(above=float('nan'))", "ascending order"),
    ],
)
def test_a_wrong_declaration_is_refused(body: str, message: str) -> None:
    with pytest.raises((TypeError, ValueError), match=message):
        exec(f"import fathom as fa\n@fa.object\nclass Wrong(fa.Object):\n    {body}\n", {"__name__": "wrong"})


def test_an_unknown_type_of_values_refuses_the_object() -> None:
    @fa.object
    class Reader(fa.Object):
        catalog: fa.Input["Nowhere"]  # type: ignore[name-defined]  # noqa: F821

    with pytest.raises(ValueError, match='input "catalog": no loaded library has a value type "Nowhere"'):
        network("Reader")


def test_the_interpreter_ends_while_updates_run(tmp_path: pathlib.Path) -> None:
    script = tmp_path / "script.py"
    script.write_text(
        "import fathom as fa, threading, time\n"
        "started = threading.Event()\n"
        "@fa.object\n"
        "class Endless(fa.Object):\n"
        "    result: fa.Output[float]\n"
        "    def update(self, request):\n"
        "        started.set()\n"
        "        while True: pass\n"
        "net = fa.Network()\n"
        "net.add('Endless', 'a')\n"
        "threading.Thread(target=net.evaluate, daemon=True).start()\n"
        "started.wait()\n",
        encoding="utf-8",
    )
    begin = time.monotonic()
    done = subprocess.run([sys.executable, str(script)], capture_output=True, text=True)
    assert (done.returncode, done.stderr) == (0, "")
    assert time.monotonic() - begin < 30
