"""Values of the types of the framework."""

from __future__ import annotations

import copy
import datetime
import enum
import gc
import math
import pathlib
import pickle

import numpy as np
import pytest

import fathom
import fathom as fa
from conftest import TOP

SAMPLES = [
    (fa.Range(), "0:1"),
    (fa.Range(4.5, 10), "4.5:10"),
    (fa.Time(5, 0, 10, 1, "ä", "b", "c", True, False), "5[0,10]@1"),
    (fa.Time(3), "3[3,3]@0"),
    (fa.Point(1, 2, 3), "{1,2,3}"),
    (fa.Bivector(0.1, -0.0, 1e300), "<0.1,-0,1e+300>"),
    (fa.Ball((1, 2, 3), 4), "{1,2,3}@4"),
    (fa.Box((1, 2, 3), (4, 5, 6)), "[{1,2,3};{4,5,6}]"),
    (fa.Box(), "[?;?]"),
    (fa.Ranges([0, 1, 2, 3]), "[0.000000;3.000000]"),
    (fa.IntegerTriple(1, 2, 3), "[1,2,3]"),
    (fa.Pair(640, 480), "640x480"),
    (fa.Color(0.5, 0.25, 1), "(0.5,0.25,1,1)"),
    (fa.Camera(), "{0,1,0}{0,0,0}{0,0,1}45"),
    (fa.Camera((1, 2, 3), (0, 0, 0), (0, 0, 1), 30), "{1,2,3}{0,0,0}{0,0,1}30"),
    (fa.Choice("b", ["a", "b", "ä€😀"]), "b@a|b|ä€😀|"),
    (fa.Choice(), "@"),
    (fa.MultipleChoice(["b", "a"], ["a", "b"]), "{b}{a}@{a}{b}"),
    (fa.Enumeration("b", ["a", "b"]), "b{a}{b}"),
    (fa.Enumeration(), ""),
    (fa.Flags({"land": True, "Meer": False}), " -Meer +land"),
    (fa.Chart("φλ"), "φλ"),
    (fa.Charts([fa.Chart("b"), "a"]), "------CHART--------"),
    (fa.Action(2), ""),
    (fa.Event(2, 10, 20, button=1, key_text="ß"), "(10,20)\n"),
    (fa.TouchPoints([(1, 0.5, 0.25)]), ""),
    (fa.Status("<b>ok</b>", (1, 2, 3, 4), (5, 6, 7, 8), 9), "<b>ok</b>"),
    (fa.ImageTile((4, 3), offset=(1, 2), span=(2, 2)), "A Frame buffer."),
    (fa.ScalarFunction(), ""),
]
IDS = [f"{type(value).__name__}-{index}" for index, (value, _) in enumerate(SAMPLES)]


@pytest.mark.parametrize("value, text", SAMPLES, ids=IDS)
def test_the_str_of_a_value_is_its_text(value: object, text: str) -> None:
    assert str(value) == text


@pytest.mark.parametrize("value", [value for value, _ in SAMPLES], ids=IDS)
def test_the_repr_of_a_value_evaluates_to_an_equal_value(value: object) -> None:
    assert eval(repr(value), {"fathom": fathom}) == value


@pytest.mark.parametrize("value", [value for value, _ in SAMPLES], ids=IDS)
def test_a_value_survives_pickling_and_copying(value: object) -> None:
    for protocol in range(pickle.HIGHEST_PROTOCOL + 1):
        restored = pickle.loads(pickle.dumps(value, protocol))
        assert type(restored) is type(value)
        assert restored == value and hash(restored) == hash(value)
    assert copy.deepcopy(value) == value


def test_values_of_different_fields_or_types_differ() -> None:
    for index, (value, _) in enumerate(SAMPLES):
        for other, _ in SAMPLES[index + 1 :]:
            assert value != other, f"{value!r} and {other!r}"
    assert fa.Range(0, 1) != (0, 1)


def test_values_are_immutable() -> None:
    with pytest.raises(AttributeError):
        fa.Range().begin = 3  # type: ignore[misc]


def test_infinite_numbers_and_nan_have_a_repr_that_evaluates() -> None:
    text = repr(fa.Range(-math.inf, math.nan))
    assert text == "fathom.Range(float('-inf'), float('nan'))"
    assert math.isnan(eval(text, {"fathom": fathom}).end)


def test_values_unpack_match_and_become_arrays() -> None:
    begin, end = fa.Range(4.5, 10)
    assert (begin, end) == (4.5, 10)
    match fa.Time(5, 0, 10, 1):
        case fa.Time(time, first, last, step):
            assert (time, first, last, step) == (5, 0, 10, 1)
    assert np.array_equal(np.array(fa.Point(1, 2, 3)), [1, 2, 3])
    assert fa.Point(1, 2, 3)[-1] == 3


def test_times_count_their_steps() -> None:
    time = fa.Time(5, 0, 10, 2.5)
    assert time.last_step == 4
    assert time.step_of(5.1) == 2
    assert time.time_of(3) == 7.5


def test_numbers_are_not_read_from_bools_texts_or_arrays() -> None:
    for wrong in (True, "1", np.True_, np.array([1.0, 2.0]), None, 10**400):
        with pytest.raises(TypeError):
            fa.Range(wrong, 2)  # type: ignore[arg-type]
    assert fa.Range(np.float32(0.5), np.int16(3)) == fa.Range(0.5, 3)


def test_a_datetime_means_seconds_since_1970_in_universal_time() -> None:
    new_year = datetime.datetime(2018, 1, 1, 1, tzinfo=datetime.timezone(datetime.timedelta(hours=1)))
    assert fa.Range(new_year, new_year + datetime.timedelta(days=1)) == fa.Range(1514764800, 1514851200)
    with pytest.raises(ValueError, match="expected one with a time zone"):
        fa.Range(datetime.datetime(2018, 1, 1), 2)


def test_an_enumeration_refuses_a_case_that_it_lacks() -> None:
    with pytest.raises(ValueError, match="found the case 'c'"):
        fa.Enumeration("c", ["a", "b"])


# For each type of inputs: what is assigned, and what is read. A value that equals the default of
# its input would prove nothing.
ASSIGNED = {
    "Bounding Box": (((1, 2, 3), (4, 5, 6)), fa.Box((1, 2, 3), (4, 5, 6))),
    "BoundingBall": (((1, 2, 3), 4), fa.Ball((1, 2, 3), 4)),
    "Enum": (fa.Enumeration("b", ["a", "b"]),) * 2,
    "FixedArray<double,2>": ((640, 480), fa.Pair(640, 480)),
    "FixedArray<int,3>": ([1, 2, 3], fa.IntegerTriple(1, 2, 3)),
    "FlagList": ({"ä": True}, fa.Flags({"ä": True})),
    "ImageTile": (fa.ImageTile((4, 3), offset=(1, 2)),) * 2,
    "MultiRange": ([1, 2], fa.Ranges([1, 2])),
    "Range": ((4.5, 10), fa.Range(4.5, 10)),
    "StrongPtr<MultipleStringSelection>": (fa.MultipleChoice(["a"], ["a", "b"]),) * 2,
    "StrongPtr<StringSelection>": (fa.Choice("a", ["a", "b"]),) * 2,
    "StrongPtr<VAction>": (fa.Action(7),) * 2,
    "VCamera": (fa.Camera((1, 2, 3)),) * 2,
    "VChart": (fa.Chart("geocentric"),) * 2,
    "VInteractionEvent": (fa.Event(2, 3, 4),) * 2,
    "VMultiPointerDevice": ([(1, 2, 3)], fa.TouchPoints([(1, 2, 3)])),
    "VObjectStatus": (fa.Status("good"),) * 2,
    "VScalarFunctor": (fa.ScalarFunction(),) * 2,
    "VTime": ((5, 0, 10, 1), fa.Time(5, 0, 10, 1)),
    "bool": (True, True),
    "char": ("x", "x"),
    "double": (0.1, 0.1),
    "float": (0.5, 0.5),
    "int": (-7, -7),
    "long": (np.int64(2**62), 2**62),
    "long long": (-(2**63), -(2**63)),
    "rgba_float_t": ((0.5, 0.25, 1), fa.Color(0.5, 0.25, 1)),
    "short": (-(2**15), -(2**15)),
    "string": ("Äpfel, 😀\n", "Äpfel, 😀\n"),
    "unsigned int": (2**32 - 1, 2**32 - 1),
    "unsigned long": (2**64 - 1, 2**64 - 1),
    "unsigned long long": (2**64 - 1, 2**64 - 1),
    "unsigned short": (2**16 - 1, 2**16 - 1),
}
# Of the test objects, and of the examples that other tests may have loaded.
CLIENT_TYPES = {"Moment", "Ticket", "TimeStep", "Catalogue", "Grid", "IsolineSet", "Land", "Layer"}
ARRAYS = {"double[]", "float[]", "int16[]", "int32[]", "int64[]"}


def test_every_type_of_input_takes_and_returns_values(everything: fa.Network) -> None:
    tried = set()
    for name, slot in everything["all"].inputs.items():
        if slot.type in ("point", "bivector"):
            made = {"point": fa.Point, "bivector": fa.Bivector}[slot.type](1, 2, 3)
            everything["all"][name] = (1, 2, 3)
            assert everything["all"][name] == made
            continue
        if name in ARRAYS or name in CLIENT_TYPES:
            continue
        assigned, expected = ASSIGNED[name]
        everything["all"][name] = assigned
        found = everything["all"][name]
        assert found == expected and type(found) is type(expected), name
        tried.add(name)
    assert tried == set(ASSIGNED), "the host has the types that are listed here"


@pytest.mark.parametrize("wrong", [object(), 1 + 2j, {"unknown": 1}, ("a", "b", "c", "d", "e"), b"bytes"])
def test_a_wrong_type_for_any_input_is_an_error_that_names_the_input(everything: fa.Network, wrong: object) -> None:
    for name in everything["all"].inputs:
        with pytest.raises((TypeError, ValueError)) as caught:
            everything["all"][name] = wrong
        if not isinstance(wrong, tuple):
            assert f'Everything "all", input "{name}": ' in str(caught.value)


def test_integers_outside_their_limits_are_refused(everything: fa.Network) -> None:
    for name, wrong in {"short": 2**15, "unsigned int": -1, "long long": 2**63, "int": 10**30}.items():
        with pytest.raises(ValueError, match="expected an integer from"):
            everything["all"][name] = wrong
    with pytest.raises(TypeError, match="expected a value of type integer"):
        everything["all"]["int"] = 5.0
    with pytest.raises(ValueError, match="too large"):
        everything["all"]["float"] = 1e300


def test_paths_and_members_of_enumerations_are_texts(everything: fa.Network) -> None:
    everything["all"]["string"] = pathlib.Path("data") / "ä.json"
    assert everything["all"]["string"] == "data/ä.json"

    class Colour(enum.Enum):
        DEPTH = "depth"
        AGE = 2

    everything["all"]["string"] = Colour.DEPTH
    assert everything["all"]["string"] == "depth"
    everything["all"]["string"] = Colour.AGE
    assert everything["all"]["string"] == "AGE"
    everything["all"]["int"] = enum.IntEnum("Number", {"SEVEN": 7})(7)
    assert everything["all"]["int"] == 7


def test_bytes_that_are_not_utf8_pass_through_texts(everything: fa.Network) -> None:
    broken = b"caf\xe9".decode("utf-8", "surrogateescape")
    everything["all"]["string"] = broken
    assert everything["all"]["string"] == broken


def test_a_value_that_was_read_does_not_change_with_its_input(everything: fa.Network) -> None:
    everything["all"]["StrongPtr<StringSelection>"] = fa.Choice("a", ["a", "b"])
    before = everything["all"]["StrongPtr<StringSelection>"]
    everything["all"]["StrongPtr<StringSelection>"] = fa.Choice("b", ["a", "b"])
    assert before.chosen == "a"


def test_a_value_of_a_client_type_has_its_text_and_can_be_passed_on(everything: fa.Network) -> None:
    ticket = everything["all"]["Ticket"]
    assert isinstance(ticket, fa.Value)
    assert ticket.type == "Ticket"
    assert ticket == everything["all"]["Ticket"] and ticket != fa.Range()
    everything["all"]["Ticket"] = ticket
    with pytest.raises(TypeError, match="found a value of type Ticket, expected type range"):
        everything["all"]["Range"] = ticket


def test_the_components_of_a_value_are_attributes() -> None:
    net = fa.load(TOP / "examples" / "quakes" / "quakes.toml")
    events = net["reader"].catalog
    assert events.components == ["count", "times", "longitudes", "latitudes", "depths", "magnitudes"]
    assert set(events.components) < set(dir(events))
    assert events.count == 1707 == len(events.times)
    rows = [line.split(",") for line in str(events).splitlines()]
    for index, column in enumerate([events.times, events.longitudes, events.latitudes, events.depths]):
        assert column.tolist() == [float(row[index]) for row in rows]
        assert not column.flags.writeable
    assert np.array_equal(events["depths"], events.depths)
    assert repr(events).startswith("<fathom.Value earthquake catalogue ") and len(repr(events)) < 120
    with pytest.raises(AttributeError, match='type earthquake catalogue have no component "depth"; components: count'):
        events.depth
    with pytest.raises(KeyError, match='no component "depth"'):
        events["depth"]


@pytest.mark.parametrize("text", ["", "2026-01-31T06:00:00Z", "1.5 d"])
def test_a_value_of_a_client_type_is_made_from_its_text_and_pickled(text: str) -> None:
    moment = fa.Value("Moment", text)
    assert str(moment) == text and moment.type == "moment"
    assert eval(repr(moment)) == moment == pickle.loads(pickle.dumps(moment)) == fa.Value("moment", text)
    assert hash(moment) == hash(fa.Value("Moment", text)) and moment != fa.Value("Moment", "7")


def test_a_value_needs_a_type_and_a_text_that_the_type_accepts() -> None:
    with pytest.raises(ValueError, match='found "soon", expected a text of type moment, such as "2026-'):
        fa.Value("Moment", "soon")
    with pytest.raises(ValueError, match='found type "Nowhere", expected one that a loaded library registers'):
        fa.Value("Nowhere", "")


def test_unknown_numbers_of_events_are_nan(tmp_path: pathlib.Path) -> None:
    net = fa.read('format = 1\nlibraries = ["quakes"]\n[[object]]\nname = "all"\ntype = "QuakeFilter"\n')
    net["all"].catalog = "1,2,3,,4.5,,,,,,\n2,3,4,5,,,,,,,\n"
    assert np.array_equal(net["all"].catalog.depths, [np.nan, 5], equal_nan=True)
    assert np.array_equal(net["all"].catalog.magnitudes, [4.5, np.nan], equal_nan=True)


def test_the_values_of_a_grid_are_an_array_on_its_memory() -> None:
    net = fa.load(TOP / "examples" / "rain" / "rain.toml")
    grid = net["reader"].grid
    assert str(grid).startswith(f"{grid.columns}x{grid.rows} ")
    assert grid.values.reshape(grid.rows, grid.columns).base is not None
    assert grid.values.ctypes.data == net["reader"].grid.values.ctypes.data == net["smooth"].grid.values.ctypes.data
    assert not grid.values.flags.writeable
    assert [grid.longitude, grid.latitude, grid.eastStep, grid.northStep] == [
        float(part) for part in str(grid).partition(":")[0].replace(",", " ").split()[1:]
    ]
    del net
    gc.collect()
    assert np.nanmax(grid.values) > 1000


def test_the_clock_accepts_dates_and_durations() -> None:
    net = fa.Network()
    net.add("GlobalTime", "clock")
    clock = net["clock"]
    east = datetime.timezone(datetime.timedelta(hours=1))
    clock["from"] = datetime.datetime(2018, 1, 31, 1, tzinfo=east)
    clock["to"] = datetime.date(2018, 2, 1)
    clock["step"] = datetime.timedelta(hours=6)
    net.add_column("time", "clock.GlobalTime.time")
    assert net.table()["time"].tolist() == [1517356800 + 21600 * step for step in range(5)]
    assert str(clock["from"]) == "2018-01-31T00:00:00Z" and clock["from"].seconds == 1517356800
    assert clock["step"].seconds == 21600
    clock["step"] = 43200
    assert str(clock["step"]) == "43200"
    with pytest.raises(ValueError, match="without a time zone"):
        clock["from"] = datetime.datetime(2018, 1, 31)
    with pytest.raises(ValueError, match='input "step"'):
        clock["step"] = datetime.timedelta(0)
