"""The type hints and stubs of the package."""

from __future__ import annotations

import inspect
import pathlib
import subprocess
import sys

import fathom as fa
from conftest import TOP

USE = """
import fathom as fa
net = fa.load("quakes.toml")
net["strong"].magnitude = fa.Range(5, 10)
for step in net.run():
    reveal_type(step.time)
with net.context({"strong.magnitude": "5:10"}, name="case") as case:
    reveal_type(case.table())
reveal_type(fa.Camera().position.x)
reveal_type(net["picture"].image)
"""


def mypy(*arguments: str) -> subprocess.CompletedProcess[str]:
    command = [sys.executable, "-m", "mypy", "--strict", "--cache-dir=/dev/null", *arguments]
    return subprocess.run(command, capture_output=True, text=True, cwd=TOP / "python")


def test_the_package_passes_the_strict_type_checker() -> None:
    done = mypy("-p", "fathom")
    assert done.returncode == 0, done.stdout + done.stderr


def test_a_user_sees_the_types_of_results(tmp_path: pathlib.Path) -> None:
    script = tmp_path / "use.py"
    script.write_text(USE, encoding="utf-8")
    done = mypy(str(script))
    assert done.returncode == 0, done.stdout + done.stderr
    revealed = [line.split("Revealed type is ")[1] for line in done.stdout.splitlines() if "Revealed type is" in line]
    assert [each.strip('"').replace("builtins.", "") for each in revealed[::2]] == [
        "Union[float, None]",
        "float",
    ]
    assert "ndarray" in revealed[1] and "Image" in revealed[3]


def test_the_stubs_name_what_the_extension_module_has() -> None:
    text = (TOP / "python" / "fathom" / "_fathom.pyi").read_text(encoding="utf-8")
    for name, value in vars(fa._fathom).items():
        if name.startswith("__"):
            continue
        assert f"class {name}" in text or f"def {name}(" in text, name
        if inspect.isclass(value) and not issubclass(value, Exception) and name != "SlotKind":
            stub = text[text.index(f"class {name}") :].split("\n\nclass ")[0]
            for member in vars(value):
                if not member.startswith("_"):
                    assert f"def {member}(" in stub, f"{name}.{member}"
