"""Ctrl-C, progress, and functions that raise."""

from __future__ import annotations

import os
import pathlib
import signal
import subprocess
import threading
import time

import pytest

import fathom as fa
from conftest import TOP


@pytest.fixture
def slow() -> fa.Network:
    """Its object works until it is cancelled."""
    net = fa.Network()
    net.load_library("testobjects")
    net.add("Slow", "slow")
    net.add("Adder", "sum", a=1)
    return net


def interrupt(delay: float) -> threading.Timer:
    timer = threading.Timer(delay, os.kill, (os.getpid(), signal.SIGINT))
    timer.start()
    return timer


def test_an_interruption_raises_within_a_second_and_leaves_the_network_usable(slow: fa.Network) -> None:
    for _ in range(2):
        began = time.monotonic()
        timer = interrupt(0.1)
        with pytest.raises(KeyboardInterrupt):
            slow.evaluate()
        assert time.monotonic() - began < 1.1
        timer.join()
    slow.remove("slow")
    assert slow["sum"].sum == 1


def test_an_interruption_ends_a_run_and_the_next_one_begins_again(slow: fa.Network) -> None:
    timer = interrupt(0.1)
    with pytest.raises(KeyboardInterrupt):
        list(slow.run())
    timer.join()
    slow.remove("slow")
    assert len(list(slow.run())) == 1


def test_an_interruption_ends_a_sweep(slow: fa.Network) -> None:
    timer = interrupt(0.3)
    with pytest.raises(KeyboardInterrupt):
        slow.sweep({"sum.a": [1, 2, 3]}, jobs=2)
    timer.join()


def test_a_signal_handler_that_returns_does_not_end_an_evaluation(slow: fa.Network) -> None:
    received = []
    former = signal.signal(signal.SIGUSR1, lambda *_: received.append("usr1"))
    try:
        context = slow.context()
        threading.Timer(0.1, os.kill, (os.getpid(), signal.SIGUSR1)).start()
        stop = threading.Thread(target=lambda: (wait_for(received), context.cancel()))
        stop.start()
        with pytest.raises(fa.ObjectError, match="cancelled"):
            context.evaluate()
        stop.join()
        assert received == ["usr1"]
    finally:
        signal.signal(signal.SIGUSR1, former)


def wait_for(received: list[str]) -> None:
    while not received:
        time.sleep(0.001)


def test_progress_is_reported_and_may_raise(sums: fa.Network) -> None:
    net = fa.load(TOP / "examples" / "quakes" / "quakes.toml")
    fractions: list[float] = []
    net.evaluate(progress=fractions.append)
    assert fractions and all(0 <= fraction <= 1 for fraction in fractions)

    def fail(fraction: float) -> None:
        raise ZeroDivisionError

    net.forget()
    with pytest.raises(ZeroDivisionError):
        net.evaluate(progress=fail)
    net.evaluate()
    assert net["all"].count == 0


def test_a_function_for_progress_must_not_use_the_network() -> None:
    net = fa.load(TOP / "examples" / "quakes" / "quakes.toml")
    with pytest.raises(RuntimeError, match="the network is in use"):
        net.evaluate(progress=lambda fraction: net["all"].count)


def test_an_interruption_ends_an_update_in_python_within_a_second_in_tarn(tmp_path: pathlib.Path) -> None:
    (tmp_path / "endless.py").write_text(
        "import fathom as fa, pathlib\n"
        "@fa.object\n"
        "class Endless(fa.Object):\n"
        "    result: fa.Output[float]\n"
        "    def update(self, request):\n"
        "        pathlib.Path(self.result_file('began')).touch()\n"
        "        while True: pass\n",
        encoding="utf-8",
    )
    (tmp_path / "endless.toml").write_text(
        'format = 1\nlibraries = ["endless.py"]\n[[object]]\nname = "endless"\ntype = "Endless"\n'
        '[[column]]\ntitle = "result"\nvalue = "endless.result"\n',
        encoding="utf-8",
    )
    program = subprocess.Popen([os.environ["TARN_PROGRAM"], "run", tmp_path / "endless.toml"], stderr=subprocess.PIPE)
    try:
        while not (tmp_path / "began").exists() and program.poll() is None:
            time.sleep(0.01)
        began = time.monotonic()
        program.send_signal(signal.SIGINT)
        _, messages = program.communicate(timeout=60)
        assert time.monotonic() - began < 1.1
        assert program.returncode == 130, messages
    finally:
        program.kill()
