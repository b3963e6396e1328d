"""Processing objects written in Python."""

from __future__ import annotations

import inspect
import os
import sys
import types
import typing
from collections.abc import Callable, Sequence
from typing import Any, ClassVar, Generic, Optional, TypeVar, Union, overload

import numpy

from . import _fathom

T = TypeVar("T")
C = TypeVar("C", bound="type[Object]")

# The registered names of the types that Python's own types and the classes of the package mean.
_TYPES: dict[Any, str] = {
    float: "double",
    int: "int",
    bool: "bool",
    str: "string",
    numpy.ndarray: "double[]",
}


def _type_name(given: Any) -> str:
    if isinstance(given, str):
        return given
    given = typing.get_origin(given) or given
    if given in _TYPES:
        return _TYPES[given]
    name = _fathom.type_name(given) if isinstance(given, type) else ""
    if not name:
        raise TypeError(f"{given!r} is not a type of values; write its registered name as a str")
    return name


class _Slot(Generic[T]):
    """An input or output that a class declares by an annotation."""

    _is_output: ClassVar[bool] = False

    def __init__(self, type: Any, options: Optional[dict[str, Any]] = None) -> None:
        self.type = type
        self.options = options or {}
        self.name = ""

    def __set_name__(self, owner: type, name: str) -> None:
        self.name = name

    @overload
    def __get__(self, instance: None, owner: type) -> _Slot[T]: ...
    @overload
    def __get__(self, instance: object, owner: type) -> T: ...
    def __get__(self, instance: Any, owner: type) -> Any:
        return self if instance is None else instance._core._read(self.name, self._is_output)

    def _declared(self) -> dict[str, Any]:
        return {
            "default": None,
            **self.options,
            "name": self.name,
            "type": _type_name(self.type),
            "is_output": self._is_output,
        }


class Input(_Slot[T]):
    """Annotates an input: `reach: fa.Input[float]`. During an update, the attribute has its value."""

    def __class_getitem__(cls, type: Any) -> Any:
        return _Annotation(cls, type)

    def __set__(self, instance: Any, value: Any) -> None:
        raise AttributeError(f"input {self.name!r} cannot be assigned")


class Output(_Slot[T]):
    """Annotates an output: `depth: fa.Output[float]`. An update assigns the attribute."""

    _is_output = True

    def __class_getitem__(cls, type: Any) -> Any:
        return _Annotation(cls, type)

    def __set__(self, instance: Any, value: Any) -> None:
        instance._core._write(self.name, value)


class _Annotation:
    def __init__(self, kind: type, type: Any) -> None:
        self.kind = kind
        self.type = type


class _Options:
    def __init__(self, kind: type, options: dict[str, Any]) -> None:
        self.kind = kind
        self.options = options


def input(default: Any = None, *, description: str = "", unit: str = "",
          limits: Optional[tuple[Optional[float], Optional[float]]] = None, above: Optional[float] = None,
          below: Optional[float] = None, finite: bool = False, soft_limits: Optional[tuple[float, float]] = None,
          step: float = 0, logarithmic: bool = False, kind: str = "", extensions: Sequence[str] = (),
          visibility: str = "", only_if: Optional[tuple[str, Union[str, Sequence[str]]]] = None, level: int = 0,
          triggers: bool = True) -> Any:
    """Describes an input: `reach: fa.Input[float] = fa.input(5e4, unit="m", limits=(0, 1e7))`.

    `default` is the initial value, also as a text. Values outside `limits`, of which either may be None, are
    refused. So are values that are not `above` or `below` a number, and infinite ones if the input is `finite`.
    `soft_limits`, `step` and `logarithmic` describe a slider. `kind` is what a text names: "input file",
    "output file", "folder", "colour", "web page" or "multi-line text"; `extensions` are the usual ones of the file.
    `visibility` is "advanced", "hidden" or "private state". `only_if=("mode", "grid")` means that the input matters
    only if the input `mode` has that text, or one of several. A change of an input that does not trigger leaves the
    object as it is.
    """
    if only_if is not None and isinstance(only_if[1], str):
        only_if = (only_if[0], [only_if[1]])
    return _Options(Input, {"default": default, "description": description, "unit": unit, "limits": limits,
                            "above": above, "below": below, "finite": finite, "soft_limits": soft_limits,
                            "step": step, "logarithmic": logarithmic, "kind": kind, "extensions": list(extensions),
                            "visibility": visibility, "only_if": only_if, "level": level, "triggers": triggers})


def output(default: Any = None, *, description: str = "", unit: str = "", visibility: str = "") -> Any:
    """Describes an output: `depth: fa.Output[float] = fa.output(unit="km")`. `default` is its value before the first
    update; `visibility` is as in `input`."""
    return _Options(Output, {"default": default, "description": description, "unit": unit, "visibility": visibility})


class Object:
    """Base class of processing objects, which `fa.object` registers. Each object of a network has an instance.

    Inputs and outputs can be used only while `update` runs, in its thread. One update of an object runs at a time.
    """

    _core: _fathom.Request
    _slots: ClassVar[tuple[_Slot[Any], ...]] = ()
    _registration: ClassVar[Optional[_fathom.Registration]] = None

    def __init_subclass__(cls, **arguments: Any) -> None:
        super().__init_subclass__(**arguments)
        slots = {slot.name: slot for slot in cls._slots}
        for name, annotation in _annotations(cls, sys._getframe(1)).items():
            if not isinstance(annotation, _Annotation):
                continue
            given = cls.__dict__.get(name)
            if not isinstance(given, _Options):
                given = _Options(annotation.kind, {"default": given})
            elif given.kind is not annotation.kind:
                raise TypeError(f"{cls.__name__}.{name}: fa.input and fa.output describe different slots")
            slot = annotation.kind(annotation.type, given.options)
            slot.__set_name__(cls, name)
            setattr(cls, name, slot)
            slots[name] = slot
        for name, value in list(vars(cls).items()):
            if isinstance(value, _Options):
                raise TypeError(f"{cls.__name__}.{name}: expected an annotation fa.Input[TYPE] or fa.Output[TYPE]")
        cls._slots = tuple(slots.values())

    def update(self, request: _fathom.Request) -> Optional[bool]:
        """Computes the outputs from the inputs. An exception, or False, is a failure."""
        raise NotImplementedError(f"{type(self).__name__} has no method update")

    def input_file(self, name: str) -> str:
        """Returns the path of a file that the object reads; relative names start at the network's folder."""
        return self._core._input_file(name)

    def result_file(self, name: str) -> str:
        """Returns the path of a file that the object writes; it differs between the cases of a sweep."""
        return self._core._result_file(name)


def _annotations(cls: type, frame: types.FrameType) -> dict[str, Any]:
    # Annotations are texts in modules that postpone their evaluation. They use names of the place where
    # the class is defined, which may be a function.
    space = {**frame.f_globals, **frame.f_locals, **vars(cls)}
    made = {}
    for name, annotation in inspect.get_annotations(cls).items():
        if isinstance(annotation, str):
            try:
                annotation = eval(annotation, space)
            except Exception as error:
                if "Input" in annotation or "Output" in annotation:
                    raise TypeError(f"{cls.__name__}.{name}: cannot evaluate {annotation!r}: {error}") from None
                continue
        made[name] = annotation
    return made


class Timed(Object):
    """Base class of objects that depend on the current time: `self.time` is a `Time`, and the input `time` is
    connected automatically."""

    @property
    def time(self) -> _fathom.Time:
        """The current time."""
        time: _fathom.Time = self._core._read("time", False)
        return time


def _file_of(cls: type) -> str:
    file: Optional[str] = getattr(sys.modules.get(cls.__module__), "__file__", None)
    return os.path.abspath(file) if file else f"<{cls.__module__}>"


# The registered classes by file and name; a class that is defined again replaces the former one.
_registered: dict[tuple[str, str], type[Object]] = {}


@overload
def register(cls: C, /) -> C: ...
@overload
def register(*, name: str = "", category: str = "", keywords: Sequence[str] = (), page: str = "",
           keeps_state: bool = False) -> Callable[[C], C]: ...
def register(cls: Any = None, /, *, name: str = "", category: str = "", keywords: Sequence[str] = (), page: str = "",
           keeps_state: bool = False) -> Any:
    """Registers a class as a type of processing objects, under its name or `name`:

    >>> @fa.object(category="Numbers")
    ... class Halver(fa.Object):
    ...     \"\"\"Halves a number.\"\"\"
    ...     whole: fa.Input[float] = fa.input(1, description="The number.")
    ...     half: fa.Output[float]
    ...     def update(self, request):
    ...         self.half = self.whole / 2
    >>> net = fa.Network()
    >>> net.add("Halver", "halver", whole=5).half
    2.5
    >>> fa.unregister(Halver)

    The first paragraph of the docstring describes the type, the others are its details. With `keeps_state`, results
    depend on earlier updates, so a run begins with new objects and evaluates cases one after the other.
    """
    if cls is None:
        return lambda made: object_of(made, name, category, keywords, page, keeps_state)
    return object_of(cls, name, category, keywords, page, keeps_state)


def object_of(cls: C, name: str, category: str, keywords: Sequence[str], page: str, keeps_state: bool) -> C:
    """Registers a class; see `register`."""
    if not (isinstance(cls, type) and issubclass(cls, Object)):
        raise TypeError(f"{cls!r} is not derived from fa.Object")
    text = inspect.cleandoc(cls.__doc__ or "")
    first, _, details = text.partition("\n\n")
    key = (_file_of(cls), name or cls.__name__)
    options = {
        "name": key[1],
        "file": key[0],
        "description": " ".join(first.split()),
        "details": details,
        "category": category,
        "keywords": list(keywords),
        "page": page,
        "is_timed": issubclass(cls, Timed),
        "keeps_state": keeps_state,
    }
    if key in _registered:
        unregister(_registered[key])
    cls._registration = _fathom.register_class(cls, options, [slot._declared() for slot in cls._slots])
    _registered[key] = cls
    return cls


def unregister(cls: type[Object]) -> None:
    """Ends the registration of a class. Existing objects stay."""
    registration = cls.__dict__.get("_registration")
    if registration is None:
        raise ValueError(f"{cls.__name__} is not registered")
    registration.unregister()
    cls._registration = None
    for key in [key for key, each in _registered.items() if each is cls]:
        del _registered[key]
