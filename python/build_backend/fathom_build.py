"""Builds the wheel of the package with CMake, against installed libraries of the framework.

It is the build backend of pyproject.toml and needs only the standard library, so that pip needs no network.
"""

import base64
import hashlib
import pathlib
import subprocess
import sys
import sysconfig
import tempfile
import tomllib
import zipfile

TOP = pathlib.Path(__file__).resolve().parent.parent


def _project():
    return tomllib.loads((TOP / "pyproject.toml").read_text(encoding="utf-8"))["project"]


def _tag():
    python = "cp{}{}".format(*sys.version_info[:2])
    platform = sysconfig.get_platform().replace("-", "_").replace(".", "_")
    return f"{python}-{python}-{platform}"


def _metadata(project):
    lines = [
        "Metadata-Version: 2.1",
        f"Name: {project['name']}",
        f"Version: {project['version']}",
        f"Summary: {project['description']}",
        f"Requires-Python: {project['requires-python']}",
        *(f"Requires-Dist: {each}" for each in project["dependencies"]),
    ]
    return "\n".join(lines) + "\n"


def _build(folder):
    """Compiles the extension module, and returns the folder of the package."""
    for command in (
        ["cmake", "-S", TOP, "-B", folder, "-DCMAKE_BUILD_TYPE=Release", f"-DPython3_EXECUTABLE={sys.executable}"],
        ["cmake", "--build", folder, "--parallel"],
    ):
        subprocess.run(command, check=True)
    return folder / "python" / "fathom"


def _record(entries):
    """Returns the contents of RECORD: the files with their hashes and sizes."""
    lines = []
    for name, content in entries:
        digest = base64.urlsafe_b64encode(hashlib.sha256(content).digest()).rstrip(b"=").decode("ascii")
        lines.append(f"{name},sha256={digest},{len(content)}\n")
    return lines


def get_requires_for_build_wheel(config_settings=None):
    return []


def build_wheel(wheel_directory, config_settings=None, metadata_directory=None):
    project = _project()
    name = f"{project['name']}-{project['version']}"
    info = f"{name}.dist-info"
    wheel = f"{name}-{_tag()}.whl"
    with tempfile.TemporaryDirectory() as folder:
        package = _build(pathlib.Path(folder))
        entries = [(f"fathom/{file.name}", file.read_bytes()) for file in sorted(package.iterdir()) if file.is_file()]
    entries.append((f"{info}/METADATA", _metadata(project).encode("utf-8")))
    entries.append((f"{info}/WHEEL", f"Wheel-Version: 1.0\nRoot-Is-Purelib: false\nTag: {_tag()}\n".encode("ascii")))
    record = f"{info}/RECORD"
    entries.append((record, "".join([*_record(entries), f"{record},,\n"]).encode("utf-8")))
    with zipfile.ZipFile(pathlib.Path(wheel_directory, wheel), "w", zipfile.ZIP_DEFLATED) as archive:
        for path, content in entries:
            archive.writestr(path, content)
    return wheel


def build_sdist(sdist_directory, config_settings=None):
    raise RuntimeError("the package is built from the source tree of the framework; a source archive is not offered")
