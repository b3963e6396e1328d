"""The examples in the documentation and in docstrings."""

from __future__ import annotations

import doctest
import importlib
import inspect
import os
import pathlib

import pytest

import fathom as fa
from conftest import TOP

MODULES = ["fathom", "fathom._errors", "fathom._networks", "fathom._types", "fathom._tables", "fathom._images"]
GLOBALS = {"fa": fa}


@pytest.mark.parametrize("name", MODULES)
def test_the_examples_in_docstrings_are_right(name: str) -> None:
    failed, _ = doctest.testmod(importlib.import_module(name), extraglobs=GLOBALS)
    assert failed == 0


def test_the_examples_of_the_extension_module_are_right() -> None:
    parser = doctest.DocTestParser()
    runner = doctest.DocTestRunner()
    for name, value in vars(fa._fathom).items():
        text = inspect.getdoc(value) or ""
        if not name.startswith("__") and ">>>" in text:
            runner.run(parser.get_doctest(text, dict(GLOBALS), name, None, None))
    assert runner.tries >= 5 and runner.failures == 0


def test_every_public_name_is_documented() -> None:
    for name, value in vars(fa).items():
        if name.startswith("_") or inspect.ismodule(value) or name == "Table":
            continue
        assert inspect.getdoc(value), name
        if inspect.isclass(value) and value.__module__.startswith("fathom"):
            for member, attribute in vars(value).items():
                if not member.startswith("_") and (callable(attribute) or isinstance(attribute, property)):
                    assert inspect.getdoc(attribute), f"{name}.{member}"


def test_the_examples_of_the_page_are_right(tmp_path: pathlib.Path, monkeypatch: pytest.MonkeyPatch) -> None:
    monkeypatch.chdir(tmp_path)
    os.symlink(TOP / "examples", tmp_path / "examples")
    text = (TOP / "docs" / "python.md").read_text(encoding="utf-8")
    runner = doctest.DocTestRunner()
    runner.run(doctest.DocTestParser().get_doctest(text, {}, "python.md", "python.md", 0))
    assert runner.tries > 10 and runner.failures == 0
