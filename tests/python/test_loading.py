"""Object libraries written in Python, in networks and in the program."""

from __future__ import annotations

import gc
import os
import pathlib
import subprocess

import pytest

import fathom as fa

HALVER = '''
import fathom as fa

@fa.object(category="Numbers")
class Halver(fa.Object):
    """Halves a number."""
    whole: fa.Input[float] = fa.input(9, description="The number.", unit="km", limits=(0, 100))
    half: fa.Output[float]

    def update(self, request):
        print("a line for people")
        if self.whole == 13:
            raise SystemExit(5)
        self.half = self.whole / 2
'''

NETWORK = """format = 1
libraries = ["halver.py"]

[[object]]
name = "h"
type = "Halver"

[[column]]
title = "half"
value = "h.half"
"""


@pytest.fixture
def net(tmp_path: pathlib.Path) -> pathlib.Path:
    (tmp_path / "halver.py").write_text(HALVER, encoding="utf-8")
    file = tmp_path / "net.toml"
    file.write_text(NETWORK, encoding="utf-8")
    return file


def tarn(*arguments: object, **variables: str) -> subprocess.CompletedProcess[str]:
    environment = {name: value for name, value in os.environ.items() if name not in ("PYTHONPATH", "TARN_LIBRARIES")}
    words = [os.environ["TARN_PROGRAM"], *map(str, arguments)]
    return subprocess.run(words, env={**environment, **variables}, capture_output=True, text=True)


def test_a_network_loads_its_library_and_ends_its_registration(net: pathlib.Path) -> None:
    first = fa.load(net)
    second = fa.load(net)
    assert first["h"].half == 4.5 and first.to_toml() == NETWORK
    del first
    gc.collect()
    assert second["h"].half == 4.5 and "Halver" in fa.objects()
    del second
    gc.collect()
    assert "Halver" not in fa.objects()


def test_the_program_runs_a_network_with_a_library_in_python(net: pathlib.Path) -> None:
    done = tarn("run", net, "--table=-", "--set=h.whole=5")
    assert (done.returncode, done.stdout.splitlines()[-1].split(",")[-1]) == (0, "2.5"), done.stderr
    assert "a line for people" in done.stderr


def test_the_program_describes_a_type_in_python(net: pathlib.Path) -> None:
    done = subprocess.run(
        [os.environ["TARN_PROGRAM"], "describe", "Halver", "--library=halver.py"],
        cwd=net.parent, capture_output=True, text=True, check=False,
    )
    assert done.returncode == 0, done.stderr
    assert "Halves a number." in done.stdout and "from 0 to 100 km" in done.stdout


def test_an_exception_fails_the_object_in_the_program(net: pathlib.Path) -> None:
    done = tarn("run", net, "--set=h.whole=13")
    assert done.returncode == 1 and "SystemExit: 5" in done.stderr and "Traceback" in done.stderr


@pytest.mark.parametrize(
    "content, message",
    [
        ("import fathom\nnowhere\n", "line 2: NameError: name 'nowhere' is not defined"),
        ("x = (\n", "line 1: SyntaxError"),
        ("x = 1\n", "the file registers no object types"),
        ("raise SystemExit(0)\n", "line 1: SystemExit: 0"),
    ],
)
def test_a_file_that_cannot_be_loaded_is_a_fault(net: pathlib.Path, content: str, message: str) -> None:
    (net.parent / "halver.py").write_text(content, encoding="utf-8")
    done = tarn("check", net)
    assert done.returncode == 2 and message in done.stderr
    with pytest.raises(fa.NetworkError) as raised:
        fa.load(net)
    assert message in str(raised.value) and raised.value.faults[0].line == 2


def test_a_missing_package_is_named(net: pathlib.Path, tmp_path: pathlib.Path) -> None:
    # A folder of the name hides the package.
    (tmp_path / "hidden" / "fathom").mkdir(parents=True)
    (tmp_path / "hidden" / "fathom" / "__init__.py").write_text("", encoding="utf-8")
    done = tarn("check", net, PYTHONPATH=str(tmp_path / "hidden"))
    assert done.returncode == 2 and "install python3-fathom" in done.stderr
