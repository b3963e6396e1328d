"""The registered types, and the descriptions of objects for `help`."""

from __future__ import annotations

from dataclasses import dataclass
from typing import TYPE_CHECKING

from . import _fathom

if TYPE_CHECKING:
    from ._networks import NetworkObject, Slot


@dataclass(frozen=True)
class ValueType:
    """A registered value type."""

    name: str
    label: str
    colour: str
    default_text: str
    is_input: bool
    components: tuple[str, ...]


@dataclass(frozen=True)
class InputType:
    """An input of a registered object type."""

    name: str
    type: str
    level: int
    initial_text: str
    is_automatic: bool


@dataclass(frozen=True)
class OutputType:
    """An output of a registered object type."""

    name: str
    type: str


@dataclass(frozen=True)
class ObjectType:
    """A registered object type, read from an object that was created for that. A type whose objects cannot be
    created has the reason in `failure`."""

    name: str
    library: str
    failure: str
    inputs: dict[str, InputType]
    outputs: dict[str, OutputType]


def types(*libraries: str) -> dict[str, ValueType]:
    """Returns the value types of the standard library, the named ones and those in memory, by their names.

    >>> fa.types()["Range"].default_text
    '0:1'
    """
    return {each["name"]: ValueType(**each) for each in _fathom.value_types(libraries)}


def objects(*libraries: str) -> dict[str, ObjectType]:
    """Returns the object types of the standard library, the named ones and those in memory, by their names.

    >>> sorted(fa.objects()["GlobalTime"].inputs)
    ['from', 'step', 'time', 'to']
    """
    made = {}
    for each in _fathom.object_types(libraries):
        made[each["name"]] = ObjectType(
            name=each["name"],
            library=each["library"],
            failure=each["failure"],
            inputs={slot["name"]: InputType(**slot) for slot in each["inputs"]},
            outputs={slot["name"]: OutputType(**slot) for slot in each["outputs"]},
        )
    return made


def _line(slot: Slot) -> str:
    # The place for what objects say about their slots: a sentence, a unit, limits.
    notes = [slot.type]
    if slot.source:
        notes.append(f"reads {slot.source}")
    return f"    {slot.name}: {', '.join(notes)}"


def description(described: NetworkObject) -> str:
    """Returns what `help` shows of an object."""
    lines = [f"{described.type} {described.name!r}", "", "Inputs:"]
    lines += [_line(slot) for slot in described.inputs.values()] or ["    none"]
    lines += ["", "Outputs:"]
    lines += [_line(slot) for slot in described.outputs.values()] or ["    none"]
    return "\n".join(lines) + "\n"
