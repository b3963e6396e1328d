"""Measures the package fathom: inputs and outputs, steps, objects in Python, arrays and the import.

Next to it, in the same run, the same work in C++, and in the Python package of VTK, if it is installed
(python3-vtk9). Prints the median time per operation of several rounds, in which all take turns:

    cmake --preset bench && cmake --build --preset bench
    python3 bench/python/bench.py build/bench
"""

from __future__ import annotations

import json
import os
import pathlib
import statistics
import subprocess
import sys
import threading
import time
from collections.abc import Callable
from typing import Any, Optional

ROUNDS = 9
SHORTEST = 0.05  # seconds per measurement
SIZES = (1_000, 10_000_000)
STEPS = 1_000

HERE = pathlib.Path(__file__).resolve().parent

Work = Callable[[int], None]


class Row:
    """The same work in one or more ways; each function does it a number of times."""

    def __init__(self, title: str, **ways: Optional[Work]) -> None:
        self.title = title
        self.times: dict[str, list[float]] = {way: [] for way, work in ways.items() if work is not None}
        self._ways = {way: work for way, work in ways.items() if work is not None}
        self._counts = {way: self._count(work) for way, work in self._ways.items()}

    @staticmethod
    def _count(work: Work) -> int:
        count = 1
        while True:
            begin = time.perf_counter()
            work(count)
            spent = time.perf_counter() - begin
            if spent >= SHORTEST:
                return count
            count = max(2 * count, int(1.2 * count * SHORTEST / spent) if spent > 0 else 0)

    def measure(self) -> None:
        for way, work in self._ways.items():
            begin = time.perf_counter()
            work(self._counts[way])
            self.times[way].append((time.perf_counter() - begin) / self._counts[way])


def in_words(seconds: float) -> str:
    for unit, name in ((1, "s"), (1e-3, "ms"), (1e-6, "us")):
        if seconds >= unit:
            return f"{seconds / unit:.3g} {name}"
    return f"{seconds / 1e-9:.3g} ns"


def in_cpp(build: pathlib.Path) -> dict[str, float]:
    """Returns seconds per operation of the benchmarks of contexts in C++."""
    program = build / "bin" / "fathom-bench"
    names = {"setInput": "set an input", "readOutput": "read an output", "evaluateSteps": "evaluate a step"}
    arguments = [f"--benchmark_filter=^({'|'.join(names)})$", "--benchmark_format=json",
                 f"--benchmark_repetitions={ROUNDS}", "--benchmark_report_aggregates_only=true"]
    done = subprocess.run([program, *arguments], capture_output=True, text=True, check=True)
    return {
        names[each["run_name"]]: each["real_time"] * 1e-9
        for each in json.loads(done.stdout)["benchmarks"]
        if each["aggregate_name"] == "median"
    }


def import_of(statement: str, build: pathlib.Path) -> Work:
    environment = {**os.environ, "PYTHONPATH": str(build / "python")}

    def work(count: int) -> None:
        for _ in range(count):
            subprocess.run([sys.executable, "-c", statement], env=environment, check=True)

    return work


def ways_of_fathom() -> dict[str, Work]:
    import fathom as fa

    net = fa.load(HERE.parent / "steps.toml")
    first, second = net["first"], net["second"]
    second.sum

    def set_input(count: int) -> None:
        for _ in range(count):
            first.b = 2.5

    def read_output(count: int) -> None:
        for _ in range(count):
            second.sum

    def steps(count: int) -> None:
        while count > 0:
            run = net.run()
            for _ in run:
                count -= 1
                if count == 0:
                    run.close()
                    break

    def table(count: int) -> None:
        for _ in range(count):
            assert len(net.table()["sum"]) == STEPS

    @fa.object
    class PythonAdder(fa.Object):
        a: fa.Input[float]
        sum: fa.Output[float]

        def update(self, request: fa.Request) -> None:
            self.sum = self.a + 1

    pair = fa.Network()
    source = pair.add("PythonAdder", "first")
    result = pair.add("PythonAdder", "second")
    pair.connect("first.sum", "second.a")
    given = 0

    def objects(count: int) -> None:
        nonlocal given
        for _ in range(count):
            given += 1
            source.a = given
            assert result.sum == given + 2

    ways: dict[str, Work] = {"set an input": set_input, "read an output": read_output, "evaluate a step": steps,
                             f"table of {STEPS:,} steps": table, "evaluate two objects in Python": objects}
    for size in SIZES:
        holder = fa.Network()
        holder.load_library("benchobjects")
        reader = holder.add("FirstNumber", "reader")
        arrays = [fa.zeros(size), fa.zeros(size)]

        def assign(count: int, reader: Any = reader, arrays: list[Any] = arrays) -> None:
            for number in range(count):
                reader.numbers = arrays[number % 2]
            assert reader.numbers.ctypes.data == arrays[(count - 1) % 2].ctypes.data

        def read(count: int, reader: Any = reader, arrays: list[Any] = arrays, size: int = size) -> None:
            for _ in range(count):
                found = reader.numbers
            assert found.ctypes.data in (arrays[0].ctypes.data, arrays[1].ctypes.data) and len(found) == size

        ways[f"assign an array of {size:,}"] = assign
        ways[f"read an array of {size:,}"] = read
    return ways


def ways_of_vtk() -> dict[str, Work]:
    try:
        import numpy
        from vtkmodules.util import numpy_support
        from vtkmodules.util.vtkAlgorithm import VTKPythonAlgorithmBase
        from vtkmodules.vtkCommonDataModel import vtkPolyData
        from vtkmodules.vtkCommonTransforms import vtkTransform
        from vtkmodules.vtkFiltersGeneral import vtkTransformPolyDataFilter
        from vtkmodules.vtkFiltersSources import vtkLineSource, vtkSphereSource
    except ImportError:
        return {}

    sphere = vtkSphereSource()

    def set_input(count: int) -> None:
        for _ in range(count):
            sphere.SetRadius(2.5)

    def read_output(count: int) -> None:
        for _ in range(count):
            sphere.GetRadius()

    # The cheapest source that has an input, and two filters that add to a coordinate.
    line = vtkLineSource()
    filters = []
    for _ in range(2):
        filter = vtkTransformPolyDataFilter()
        transform = vtkTransform()
        transform.Translate(1, 0, 0)
        filter.SetTransform(transform)
        filter.SetInputConnection((filters[-1] if filters else line).GetOutputPort())
        filters.append(filter)
    given = 0

    def steps(count: int) -> None:
        nonlocal given
        for _ in range(count):
            given += 1
            line.SetPoint1(given, 0, 0)
            filters[-1].Update()
            assert filters[-1].GetOutput().GetPoint(0)[0] == given + 2

    class Source(VTKPythonAlgorithmBase):
        value = 0.0

        def __init__(self) -> None:
            super().__init__(nInputPorts=0, nOutputPorts=1, outputType="vtkPolyData")

        def RequestData(self, request: Any, inputs: Any, outputs: Any) -> int:
            vtkPolyData.GetData(outputs, 0).result = self.value + 1
            return 1

    class Adder(VTKPythonAlgorithmBase):
        def __init__(self) -> None:
            super().__init__(nInputPorts=1, nOutputPorts=1, inputType="vtkPolyData", outputType="vtkPolyData")

        def RequestData(self, request: Any, inputs: Any, outputs: Any) -> int:
            vtkPolyData.GetData(outputs, 0).result = vtkPolyData.GetData(inputs[0], 0).result + 1
            return 1

    source, adder = Source(), Adder()
    adder.SetInputConnection(source.GetOutputPort())

    def objects(count: int) -> None:
        nonlocal given
        for _ in range(count):
            given += 1
            source.value = given
            source.Modified()
            adder.Update()
            assert adder.GetOutputDataObject(0).result == given + 2

    ways: dict[str, Work] = {"set an input": set_input, "read an output": read_output, "evaluate a step": steps,
                             "evaluate two objects in Python": objects}
    for size in SIZES:
        array = numpy.zeros(size)
        held = numpy_support.numpy_to_vtk(array)
        data = vtkPolyData()

        def assign(count: int, array: Any = array) -> None:
            for _ in range(count):
                data.GetFieldData().AddArray(numpy_support.numpy_to_vtk(array))

        def read(count: int, held: Any = held, array: Any = array) -> None:
            for _ in range(count):
                found = numpy_support.vtk_to_numpy(held)
            assert found.ctypes.data == array.ctypes.data

        ways[f"assign an array of {size:,}"] = assign
        ways[f"read an array of {size:,}"] = read
    return ways


def speed_of_two_threads() -> float:
    """Returns how many times as fast two contexts are evaluated in two threads as in one. The network is a chain, so
    that one evaluation uses one core."""
    import fathom as fa

    net = fa.load(HERE.parents[1] / "examples" / "rain" / "rain.toml")
    for name in set(net) - {"clock", "reader", "smooth", "ChartSelector"}:
        net.remove(name)

    def evaluate(diffusivity: float) -> None:
        with net.context({"smooth.diffusivity": diffusivity}) as case:
            for step in range(case.step_count):
                case.set_step(step)
                case.evaluate()

    cases = (900, 1000)
    ratios = []
    for _ in range(ROUNDS):
        begin = time.perf_counter()
        for each in cases:
            evaluate(each)
        alone = time.perf_counter() - begin
        threads = [threading.Thread(target=evaluate, args=(each,)) for each in cases]
        begin = time.perf_counter()
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        ratios.append(alone / (time.perf_counter() - begin))
    return statistics.median(ratios)


def main() -> None:
    if len(sys.argv) != 2:
        sys.exit("usage: bench.py BUILD_FOLDER")
    build = pathlib.Path(sys.argv[1]).resolve()
    sys.path.insert(0, str(build / "python"))
    os.environ["TARN_LIBRARIES"] = str(build / "bench")
    cpp = in_cpp(build)
    ours, theirs = ways_of_fathom(), ways_of_vtk()
    rows = [Row(title, fathom=work, VTK=theirs.get(title)) for title, work in ours.items()]
    imports = {"numpy": "import numpy", "fathom": "import fathom"}
    if theirs:
        imports["VTK"] = "from vtkmodules.util import numpy_support, vtkAlgorithm"
    rows.append(Row("start Python and import", **{way: import_of(text, build) for way, text in imports.items()}))
    for _ in range(ROUNDS):
        for row in rows:
            row.measure()
    print(f"{'median of ' + str(ROUNDS) + ' rounds':34}{'fathom':>10}{'C++':>10}{'VTK':>10}{'numpy':>10}")
    for row in rows:
        times = {way: statistics.median(measured) for way, measured in row.times.items()}
        if row.title in cpp:
            times["C++"] = cpp[row.title]
        cells = [in_words(times[way]) if way in times else "-" for way in ("fathom", "C++", "VTK", "numpy")]
        print(f"{row.title:34}" + "".join(f"{cell:>10}" for cell in cells))
    print(f"two contexts in two threads: {speed_of_two_threads():.2f} times as fast as in one")


if __name__ == "__main__":
    main()
