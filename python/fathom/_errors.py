"""What the package raises, besides the exceptions of Python."""

from __future__ import annotations

import enum
from typing import NamedTuple


class FaultKind(enum.IntEnum):
    """What a fault is about."""

    SYNTAX = 0
    CONTENT = 1
    LIBRARY = 2
    TYPE = 3
    OBJECT = 4
    INPUT = 5
    CONNECTION = 6
    COLUMN = 7
    CHART = 8
    TIME = 9
    EVENT = 10
    OPTION = 11


class Fault(NamedTuple):
    """A fault of a saved network. Lines and columns count from 1; 0 means that the fault is not in the file."""

    kind: FaultKind
    file: str
    line: int
    column: int
    message: str

    def __str__(self) -> str:
        return f"{self.file}:{self.line}:{self.column}: {self.message}" if self.line else self.message


class NetworkError(Exception):
    """A saved network has faults. Its text has one line per fault, as `tarn check` prints them.

    >>> try:
    ...     fa.read("format = 1\\nobjects = 2\\n", title="net.toml")
    ... except fa.NetworkError as error:
    ...     print(error)
    net.toml:2:1: unknown key "objects"; did you mean "object"?
    """

    def __init__(self, lines: list[str], faults: list[Fault]) -> None:
        super().__init__(lines, faults)
        self.faults = faults

    def __str__(self) -> str:
        return "\n".join(self.args[0])


class RunError(Exception):
    """A run ended before its last step; the text has the reason."""
