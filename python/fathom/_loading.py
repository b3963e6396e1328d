"""Loads object libraries written in Python for the host."""

from __future__ import annotations

import importlib.util
import os
import sys
import threading
import time
import traceback
from typing import Optional

from . import _fathom, _objects


class _Library:
    def __init__(self, module: str, classes: list[type[_objects.Object]]) -> None:
        self.module = module
        self.classes = classes
        self.users = 1


_loaded: dict[str, _Library] = {}


def _reason(error: BaseException, path: str) -> str:
    text = "".join(traceback.format_exception_only(type(error), error)).strip().splitlines()[-1]
    lines = [frame.lineno for frame in traceback.extract_tb(error.__traceback__) if frame.filename == path]
    if isinstance(error, SyntaxError) and error.filename == path:
        lines.append(error.lineno)
    return f"line {lines[-1]}: {text}" if lines else text


def _unregister(classes: list[type[_objects.Object]]) -> None:
    for cls in classes:
        if cls.__dict__.get("_registration") is not None:
            _objects.unregister(cls)


_watcher: Optional[threading.Thread] = None


def _interrupt_cancelled_updates() -> None:
    while True:
        time.sleep(0.05)
        _fathom.interrupt_updates()


def watch(_: bytes) -> str:
    """Makes cancellation end updates, from now on. Returns the empty text."""
    global _watcher
    if _watcher is None:
        _watcher = threading.Thread(target=_interrupt_cancelled_updates, name="fathom cancellation", daemon=True)
        _watcher.start()
    return ""


def load(file: bytes) -> str:
    """Runs a file that registers classes. Returns why that failed, or the empty text."""
    path = os.path.realpath(os.fsdecode(file))
    if path in _loaded:
        _loaded[path].users += 1
        return ""
    name = f"_fathom_library_{len(sys.modules)}_{os.path.basename(path)[:-3]}"
    before = set(_objects._registered.values())
    try:
        spec = importlib.util.spec_from_file_location(name, path)
        assert spec is not None and spec.loader is not None
        module = importlib.util.module_from_spec(spec)
        sys.modules[name] = module
        spec.loader.exec_module(module)
    except BaseException as error:
        reason = _reason(error, path)
    else:
        reason = ""
    classes = [cls for cls in _objects._registered.values() if cls not in before]
    if not reason and not classes:
        reason = "the file registers no object types; @fathom.object registers a class"
    if reason:
        _unregister(classes)
        sys.modules.pop(name, None)
        return reason
    _loaded[path] = _Library(name, classes)
    return ""


def unload(file: bytes) -> str:
    """Ends one use of a file."""
    path = os.path.realpath(os.fsdecode(file))
    library = _loaded.get(path)
    if library is None:
        return "the file is not loaded"
    library.users -= 1
    if library.users == 0:
        del _loaded[path]
        _unregister(library.classes)
        sys.modules.pop(library.module, None)
    return ""
