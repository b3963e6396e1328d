"""Pictures that objects draw."""

from __future__ import annotations

import os
import pathlib
import tempfile
from typing import TYPE_CHECKING

from ._fathom import ObjectError

if TYPE_CHECKING:
    from ._networks import NetworkObject

# The type of inputs that trigger objects, and the number by which a run reports its end.
_ACTION = "StrongPtr<VAction>"
_FINISHED = 2


class Image:
    """A picture in the format PNG, which displays itself in a notebook."""

    def __init__(self, data: bytes) -> None:
        self.data = data

    def save(self, path: str | os.PathLike[str]) -> None:
        """Writes the picture to a file."""
        pathlib.Path(path).write_bytes(self.data)

    def _repr_png_(self) -> bytes:
        return self.data

    def __repr__(self) -> str:
        return f"<fathom.Image of {len(self.data)} bytes>"


def _reason(drawer: NetworkObject) -> str:
    statuses = drawer.evaluation.statuses
    own = [each.text for each in statuses if each.object == drawer.name]
    # Without one, it may wait for objects that failed.
    others = [f"{each.object}: {each.text}" for each in statuses if each.waiting > 0]
    return "; ".join(own or others) or f"{drawer.type} {drawer.name!r} wrote no picture"


def draw(drawer: NetworkObject) -> Image:
    """Triggers an object that writes a picture, with a file of its own, and returns the picture."""
    file = next((slot for slot in drawer.inputs.values() if slot.names_result), None)
    trigger = next((slot for slot in drawer.inputs.values() if slot.type_code == _ACTION), None)
    if file is None or trigger is None:
        raise TypeError(f"{drawer.type} {drawer.name!r} writes no pictures")
    former = file.value
    with tempfile.TemporaryDirectory(prefix="fathom-") as folder:
        path = pathlib.Path(folder, "picture.png")
        drawer.evaluation.evaluate()
        drawer._assign_here(file.name, path)
        try:
            drawer.emit(trigger.name, _FINISHED)
            drawer.evaluation.evaluate()
        finally:
            drawer._assign_here(file.name, former)
        if not path.exists():
            raise ObjectError(_reason(drawer))
        return Image(path.read_bytes())
