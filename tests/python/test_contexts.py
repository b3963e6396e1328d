"""Runs, tables, contexts and sweeps."""

from __future__ import annotations

import gc
import threading
import time

import numpy as np
import pandas
import pytest

import fathom as fa


def test_a_run_iterates_over_the_time_steps(sums: fa.Network) -> None:
    steps = [(step.number, step.time, step["sum"], sums["b"].sum) for step in sums.run()]
    assert steps == [(0, 0, 12, 12), (1, 0.25, 12.25, 12.25), (2, 0.5, 12.5, 12.5), (3, 0.75, 12.75, 12.75), (4, 1, 13, 13)]
    assert sums.step_count == 5


def test_a_run_is_lazy_and_begins_again_after_it_was_abandoned(sums: fa.Network) -> None:
    steps = sums.run()
    assert next(steps).time == 0
    assert next(steps).time == 0.25
    assert sums["b"].sum == 12.25 and sums.time.time == 0.25
    steps.close()
    assert [step.time for step in sums.run()] == [0, 0.25, 0.5, 0.75, 1]


def test_an_input_may_be_assigned_during_a_run(sums: fa.Network) -> None:
    results = []
    for step in sums.run():
        if step.number == 2:
            sums["a"].b = 100
            assert sums["b"].sum == 110.5
        results.append(sums["b"].sum)
    assert results == [12, 12.25, 110.5, 110.75, 111]


def test_a_second_run_ends_the_first(sums: fa.Network) -> None:
    first = sums.run()
    next(first)
    next(sums.run())
    with pytest.raises(RuntimeError, match="another run"):
        next(first)


def test_runs_repeat_also_if_results_depend_on_earlier_updates() -> None:
    net = fa.read(
        'format = 1\nlibraries = ["testobjects"]\n'
        '[[object]]\nname = "clock"\ntype = "GlobalTime"\nset = { time = "0[0,1]@0.25" }\n'
        '[[object]]\nname = "integral"\ntype = "Integrator"\n'
        '[[column]]\ntitle = "sum"\nvalue = "integral.sum"\n'
    )
    expected = [0, 0.25, 0.75, 1.5, 2.5]
    assert net.table()["sum"].tolist() == expected
    assert net.table()["sum"].tolist() == expected


def test_a_network_without_time_has_one_step() -> None:
    net = fa.Network()
    assert [(step.number, step.time, step.values) for step in net.run()] == [(0, None, {})]
    assert net.time is None


def test_a_table_has_arrays_that_pandas_accepts(sums: fa.Network) -> None:
    sums.add_column("time", "clock.GlobalTime")
    table = sums.table()
    assert table["step"].dtype == np.int64 and table["step"].tolist() == [0, 1, 2, 3, 4]
    assert table["sum"].dtype == np.float64 and table["sum"].tolist() == [12, 12.25, 12.5, 12.75, 13]
    assert table["time"].dtype == object and table["time"][1] == fa.Time(0.25, 0, 1, 0.25)
    frame = pandas.DataFrame(table)
    assert frame["sum"].sum() == 62.5


def test_a_missing_cell_is_masked(sums: fa.Network) -> None:
    sums.add("Failing", "fails")
    sums.add_column("fails", "fails.out")
    column = sums.table()["fails"]
    assert isinstance(column, np.ma.MaskedArray)
    assert column.tolist() == [42, None, None, None, None]


def test_a_run_that_ends_early_raises_the_reason(sums: fa.Network) -> None:
    sums["clock"].time = "0[0,inf]@1"
    with pytest.raises(fa.RunError, match="has inf steps"):
        list(sums.run())
    sums["clock"].time = "0[0,1]@0.5"
    assert len(list(sums.run())) == 3


def test_a_context_has_its_own_inputs_and_results(sums: fa.Network) -> None:
    with sums.context({"a.b": 7}) as case, sums.context({"a.b": "8"}) as other:
        assert (case["b"].sum, other["b"].sum, sums["b"].sum) == (17, 18, 12)
        case["b"].b = 100
        assert [step["sum"] for step in case.run()] == [107, 107.25, 107.5, 107.75, 108]
        assert sums["a"].b == 2 and other["b"].b == 10
    assert 'b = "7"' not in sums.to_toml() and "b = 7" not in sums.to_toml()
    with pytest.raises(RuntimeError, match="closed"):
        case.evaluate()


def test_a_context_keeps_its_inputs_when_its_results_are_forgotten(sums: fa.Network) -> None:
    sums.add("Integrator", "integral")
    with sums.context({"a.b": 7}) as case:
        for _ in range(2):
            assert case.table()["sum"].tolist() == [17, 17.25, 17.5, 17.75, 18]


def test_a_keyword_names_the_only_free_input_of_that_name(sums: fa.Network) -> None:
    with sums.context(time="0[0,1]@0.5") as case:
        assert [step.time for step in case.run()] == [0, 0.5, 1]
    with pytest.raises(KeyError, match="expected one of .*'a.b', 'b.b'"):
        sums.context(b=3)
    with pytest.raises(KeyError, match="expected the name of an input"):
        sums.context(unknown=3)
    with pytest.raises(KeyError, match="expected OBJECT.SLOT"):
        sums.context({"c.b": 3})


def test_contexts_may_be_used_in_several_threads(sums: fa.Network) -> None:
    results: dict[int, list[float]] = {}

    def evaluate(number: int) -> None:
        with sums.context({"a.b": number}) as case:
            results[number] = [step["sum"] for _ in range(5) for step in case.run()]

    threads = [threading.Thread(target=evaluate, args=(number,)) for number in range(8)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert results == {number: 5 * [10 + number + time / 4 for time in range(5)] for number in range(8)}


def test_one_context_may_be_used_in_several_threads_in_turn(sums: fa.Network) -> None:
    faults = []

    def evaluate(number: int) -> None:
        try:
            for _ in range(50):
                sums["a"].b = number
                assert sums["b"].sum in range(10, 18)
        except BaseException as fault:
            faults.append(fault)

    threads = [threading.Thread(target=evaluate, args=(number,)) for number in range(8)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    assert faults == []


def test_a_network_may_change_while_contexts_run(sums: fa.Network) -> None:
    stop = threading.Event()
    tables = []

    def evaluate() -> None:
        with sums.context() as case:
            while not stop.is_set():
                tables.append(case.table()["sum"].tolist())

    thread = threading.Thread(target=evaluate)
    thread.start()
    for number in range(30):
        sums.add("Adder", f"more {number}")
        sums.connect("a.sum", f"more {number}.a")
        sums.remove(f"more {number}")
    stop.set()
    thread.join()
    assert tables and all(table == [12, 12.25, 12.5, 12.75, 13] for table in tables)


def test_other_python_threads_run_during_an_evaluation() -> None:
    net = fa.Network()
    net.load_library("testobjects")
    net.add("Slow", "slow")  # works until it is cancelled
    context = net.context()
    faults: list[str] = []

    def evaluate() -> None:
        try:
            context.evaluate()
        except fa.ObjectError as error:
            faults.append(str(error))

    thread = threading.Thread(target=evaluate)
    thread.start()
    while thread.is_alive():
        context.cancel()  # impossible if the evaluation held the interpreter lock
    thread.join()
    assert faults == ["the evaluation was cancelled"]


@pytest.mark.parametrize("jobs", [1, 4])
def test_a_sweep_returns_arrays_that_do_not_depend_on_the_number_of_jobs(sums: fa.Network, jobs: int) -> None:
    table = sums.sweep({"a.b": [1, 2], "clock.time": ["0[0,1]@1", "0[0,1]@0.5"]}, jobs=jobs)
    assert list(table) == ["case", "a.b", "clock.time", "step", "sum"]
    assert table["case"].tolist() == [0, 0, 1, 1, 1, 2, 2, 3, 3, 3]
    assert table["a.b"].tolist() == 5 * [1] + 5 * [2]
    assert table["sum"].tolist() == [11, 12, 11, 11.5, 12, 12, 13, 12, 12.5, 13]


def test_a_sweep_ends_at_the_first_error(sums: fa.Network) -> None:
    with pytest.raises(ValueError, match="is refused"):
        sums.sweep({"a.b": ["1", "x", "3"]})


def test_a_context_keeps_its_network(sums: fa.Network) -> None:
    case = sums.context({"a.b": 3})
    del sums
    gc.collect()
    assert case["b"].sum == 13


def test_a_sweep_equals_one_context_per_case(sums: fa.Network) -> None:
    values = [3, 1, 4, 1, 5]
    table = sums.sweep({"a.b": values}, jobs=2)
    expected = []
    for value in values:
        with sums.context({"a.b": value}) as case:
            expected += [step["sum"] for step in case.run()]
    assert table["sum"].tolist() == expected


def test_a_failed_object_leaves_its_cells_of_a_sweep_empty_and_later_cases_alone(everything: fa.Network) -> None:
    @fa.object
    class Root(fa.Object):
        square: fa.Input[float]
        root: fa.Output[float]

        def update(self, request: fa.Request) -> None:
            self.root = self.square**0.5 if self.square >= 0 else 1 / 0

    everything.add("Root", "root")
    everything.add_column("root", "root.root")
    try:
        table = everything.sweep({"root.square": [4, -1, 9]}, jobs=1)
    finally:
        fa.unregister(Root)
    assert table["root"].tolist() == [2, None, 3]


def test_a_sweep_reports_its_progress(sums: fa.Network) -> None:
    fractions: list[float] = []
    sums.sweep({"a.b": range(1000)}, progress=fractions.append)
    assert fractions == sorted(fractions) and fractions[-1] == 1


def test_a_sweep_without_values_has_no_rows(sums: fa.Network) -> None:
    assert {title: len(column) for title, column in sums.sweep({"a.b": []}).items()} == {
        "case": 0,
        "a.b": 0,
        "step": 0,
        "sum": 0,
    }


def test_a_sweep_names_the_case_whose_run_ends_early(sums: fa.Network) -> None:
    with pytest.raises(fa.RunError, match="case 1: "):
        sums.sweep({"clock.time": ["0[0,1]@1", "0[0,1]@1e-300"]})


def test_a_case_of_a_sweep_does_not_depend_on_earlier_ones(everything: fa.Network) -> None:
    @fa.object
    class Accumulator(fa.Object):
        number: fa.Input[float]
        total: fa.Output[float]

        def update(self, request: fa.Request) -> None:
            self.total = self.total + self.number

    everything.add("Accumulator", "total")
    everything.add_column("total", "total.total")
    try:
        table = everything.sweep({"total.number": [1, 2, 3]}, jobs=1)
    finally:
        fa.unregister(Accumulator)
    assert table["total"].tolist() == [1, 2, 3]


def test_objects_that_keep_state_get_the_cases_of_a_sweep_in_order(everything: fa.Network) -> None:
    seen = []

    @fa.object(keeps_state=True)
    class Recorder(fa.Object):
        number: fa.Input[float]

        def update(self, request: fa.Request) -> None:
            time.sleep(0.02 * (4 - self.number))
            seen.append(self.number)

    everything.add("Recorder", "recorder")
    try:
        everything.sweep({"recorder.number": [1, 2, 3, 4]}, jobs=4)
    finally:
        fa.unregister(Recorder)
    assert seen == [1, 2, 3, 4]
