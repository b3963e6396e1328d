"""Destruction in every order, processes that fork, and threads that outlive networks."""

from __future__ import annotations

import gc
import itertools
import multiprocessing
import os
import signal
import subprocess
import sys
import threading

import pytest

import fathom as fa
from fathom import _fathom

TEXT = (
    'format = 1\nlibraries = ["testobjects"]\n'
    '[[object]]\nname = "clock"\ntype = "GlobalTime"\nset = { time = "0[0,1]@0.5" }\n'
    '[[object]]\nname = "a"\ntype = "Adder"\nset = { b = 2 }\nconnect = { a = "clock.GlobalTime.time" }\n'
    '[[column]]\ntitle = "sum"\nvalue = "a.sum"\n'
)


def resident() -> int:
    with open("/proc/self/statm", encoding="ascii") as file:
        return int(file.read().split()[1]) * os.sysconf("SC_PAGESIZE")


def is_loaded(library: str) -> bool:
    with open("/proc/self/maps", encoding="utf-8") as file:
        return library in file.read()


def test_10000_networks_do_not_grow_the_process() -> None:
    keep = fa.read(TEXT)  # keeps the library in memory

    def use(count: int) -> None:
        for _ in range(count):
            net = fa.read(TEXT)
            assert net["a"].sum == 2
        gc.collect()

    use(2000)
    before = resident()
    chunks = _fathom._chunk_bytes()
    use(8000)
    assert _fathom._chunk_bytes() == chunks
    # AddressSanitizer keeps the stacks of allocations.
    allowed = 40_000_000 if "libasan" in os.environ.get("LD_PRELOAD", "") else 4_000_000
    assert resident() < before + allowed
    assert keep["a"].sum == 2


@pytest.mark.parametrize("order", list(itertools.permutations(range(5))))
def test_everything_may_be_destroyed_in_any_order(order: tuple[int, ...]) -> None:
    net = fa.read(TEXT)
    case = net.context()
    run = case.run()
    next(run)
    things: list[object] = [net, case, net["a"], run, case["a"].inputs["a"]]
    del net, case, run
    for index in order:
        things[index] = None
        gc.collect()
    assert not is_loaded("testobjects.so"), "the library was unloaded with the network"


def test_the_library_is_unloaded_with_the_last_user() -> None:
    script = (
        "import fathom as fa, gc\n"
        f"net = fa.read({TEXT!r})\n"
        "net.add('Everything', 'all')\n"
        "values = [net['all'][name] for name in net['all'].inputs]\n"
        "ticket = net['all']['Ticket']\n"
        "is_loaded = lambda: 'testobjects.so' in open('/proc/self/maps').read()\n"
        "assert is_loaded()\n"
        "del net\n"
        "gc.collect()\n"
        "assert is_loaded(), 'the ticket is a value of the library'\n"
        "str(ticket)\n"
        "del ticket\n"
        "values = [value for value in values if not isinstance(value, fa.Value)]\n"
        "gc.collect()\n"
        "assert not is_loaded()\n"
        "[repr(value) for value in values]\n"
    )
    done = subprocess.run([sys.executable, "-c", script], capture_output=True, text=True)
    assert (done.returncode, done.stderr) == (0, "")


def test_the_library_of_a_network_is_unloaded_while_others_live() -> None:
    script = (
        "import fathom as fa, gc\n"
        "other = fa.Network()\n"
        "other.add('GlobalTime', 'clock', time=(0, 0, 1, 0.5))\n"
        f"net = fa.read({TEXT!r})\n"
        "net.evaluate()\n"
        "del net\n"
        "gc.collect()\n"
        "assert 'testobjects.so' not in open('/proc/self/maps').read()\n"
    )
    done = subprocess.run([sys.executable, "-c", script], capture_output=True, text=True)
    assert (done.returncode, done.stderr) == (0, "")


def test_a_process_ends_quietly_with_networks_in_use() -> None:
    script = f"import fathom as fa\nnet = fa.read({TEXT!r})\ncase = net.context()\nrun = case.run()\nnext(run)\nnet['a'].sum\n"
    done = subprocess.run([sys.executable, "-c", script], capture_output=True, text=True)
    assert (done.returncode, done.stdout, done.stderr) == (0, "", "")


def test_a_process_ends_quietly_while_a_thread_evaluates() -> None:
    script = (
        "import fathom as fa, threading, time\n"
        "net = fa.Network()\n"
        "net.load_library('testobjects')\n"
        "net.add('Slow', 'slow')\n"
        "began = threading.Event()\n"
        "def evaluate():\n"
        "    began.set()\n"
        "    net.evaluate()\n"
        "threading.Thread(target=evaluate, daemon=True).start()\n"
        "began.wait()\n"
    )
    done = subprocess.run([sys.executable, "-c", script], capture_output=True, text=True, timeout=60)
    assert (done.returncode, done.stderr) == (0, "")


def test_a_forked_process_evaluates(sums: fa.Network) -> None:
    assert sums["b"].sum == 12
    child = os.fork()
    if child == 0:
        status = 1
        try:
            sums["a"].b = 5
            is_right = sums["b"].sum == 15 and [step["sum"] for step in sums.run()][-1] == 16
            status = 0 if is_right and fa.read(TEXT)["a"].sum == 2 else 2
        finally:
            os._exit(status)
    assert os.waitstatus_to_exitcode(os.waitpid(child, 0)[1]) == 0
    assert sums["b"].sum == 12


def test_a_forked_process_evaluates_what_used_several_threads() -> None:
    net = fa.Network()
    net.load_library("testobjects")
    for number in range(16):
        net.add("Sleeper", f"s{number}", **{"in": number})
    net.evaluate()
    child = os.fork()
    if child == 0:
        status = 1
        try:
            signal.alarm(30)  # ends the process if the evaluation waits for threads of the parent
            for number in range(16):
                net[f"s{number}"]["in"] = number + 100
            net.evaluate()
            status = 0 if net["s3"].out == 103 else 2
        finally:
            os._exit(status)
    assert os.waitstatus_to_exitcode(os.waitpid(child, 0)[1]) == 0


def last_sum(number: int) -> float:
    net = fa.read(TEXT)
    net["a"].b = number
    return float(net.table()["sum"][-1])


@pytest.mark.parametrize("method", ["fork", "spawn"])
def test_multiprocessing_works_after_loading(sums: fa.Network, method: str) -> None:
    sums.evaluate()
    with multiprocessing.get_context(method).Pool(2) as pool:
        assert pool.map(last_sum, range(4)) == [1, 2, 3, 4]


def test_threads_may_outlive_the_network() -> None:
    results: list[float] = []
    ready = threading.Event()

    def work(case: fa.Context) -> None:
        ready.wait()
        results.extend(step["sum"] for step in case.run())

    net = fa.read(TEXT)
    thread = threading.Thread(target=work, args=(net.context(),))
    thread.start()
    del net
    gc.collect()
    ready.set()
    thread.join()
    assert results == [2, 2.5, 3]
