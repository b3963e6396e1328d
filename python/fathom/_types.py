"""The registered types, and the descriptions of objects for `help`."""

from __future__ import annotations

from dataclasses import dataclass
from typing import TYPE_CHECKING, Optional

from . import _fathom

if TYPE_CHECKING:
    from ._networks import NetworkObject, Slot


@dataclass(frozen=True)
class ValueType:
    """A registered value type. A type whose values cannot be created has the reason in `failure`."""

    name: str
    label: str
    colour: str
    default_text: str
    is_input: bool
    components: tuple[str, ...]
    example: str
    failure: str


@dataclass(frozen=True)
class InputType:
    """An input of a registered object type. `limits` are the smallest and the largest number that it accepts;
    an end may be infinite or excluded, and `limits_text` states both exactly."""

    name: str
    type: str
    level: int
    initial_text: str
    is_automatic: bool
    choices: tuple[str, ...]
    description: str
    unit: str
    limits: Optional[tuple[float, float]]
    limits_text: str


@dataclass(frozen=True)
class OutputType:
    """An output of a registered object type."""

    name: str
    type: str
    description: str
    unit: str
    limits: Optional[tuple[float, float]]
    limits_text: str


@dataclass(frozen=True)
class ObjectType:
    """A registered object type, read from an object that was created for that. A type whose objects cannot be
    created has the reason in `failure`. Texts that the type does not have are empty."""

    name: str
    library: str
    failure: str
    description: str
    details: str
    category: str
    keywords: tuple[str, ...]
    page: str
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
    >>> fa.objects()["GlobalTime"].category
    'Time'
    """
    made = {}
    for each in _fathom.object_types(libraries):
        made[each["name"]] = ObjectType(
            name=each["name"],
            library=each["library"],
            failure=each["failure"],
            description=each["description"],
            details=each["details"],
            category=each["category"],
            keywords=each["keywords"],
            page=each["page"],
            inputs={slot["name"]: InputType(**slot) for slot in each["inputs"]},
            outputs={slot["name"]: OutputType(**slot) for slot in each["outputs"]},
        )
    return made


def _line(slot: Slot) -> str:
    notes = [slot.type]
    if slot.limits_text:
        notes.append(slot.limits_text)
    elif slot.unit:
        notes.append(f"in {slot.unit}")
    if slot.source:
        notes.append(f"reads {slot.source}")
    return f"    {slot.name}: {', '.join(notes)}" + (f". {slot.description}" if slot.description else "")


def description(described: NetworkObject) -> str:
    """Returns what `help` shows of an object."""
    lines = [f"{described.type} {described.name!r}", "", "Inputs:"]
    lines += [_line(slot) for slot in described.inputs.values()] or ["    none"]
    lines += ["", "Outputs:"]
    lines += [_line(slot) for slot in described.outputs.values()] or ["    none"]
    return "\n".join(lines) + "\n"
