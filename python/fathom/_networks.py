"""Networks, their objects, and contexts."""

from __future__ import annotations

import enum
import itertools
import os
import threading
from collections.abc import Callable, Iterator, Mapping, Sequence
from typing import Any, NamedTuple, Optional, Union

from . import _errors, _fathom, _images, _tables, _types
from ._fathom import SlotKind

Progress = Callable[[float], object]
Path = Union[str, "os.PathLike[str]"]


class Severity(enum.IntEnum):
    """How serious a status is."""

    INFORMATION = 0
    WARNING = 1
    ERROR = 2


class ObjectStatus(NamedTuple):
    """What an object reports, or why it failed; `waiting` is the number of objects that wait for it."""

    object: str
    severity: Severity
    text: str
    waiting: int


class Step:
    """A step of a run: its number, its time, and the values of the columns by their titles.

    `time` is None in a network without time. The value of a column whose object failed is None.
    """

    __slots__ = ("number", "time", "values")

    def __init__(self, number: int, time: Optional[float], values: dict[str, Any]) -> None:
        self.number = number
        self.time = time
        self.values = values

    def __getitem__(self, title: str) -> Any:
        return self.values[title]

    def __repr__(self) -> str:
        return f"<fathom.Step {self.number} at {self.time}: {self.values}>"


class Slot:
    """An input or output of an object."""

    __slots__ = ("_owner", "_info")

    def __init__(self, owner: NetworkObject, info: _fathom.SlotInfo) -> None:
        self._owner = owner
        self._info = info

    @property
    def name(self) -> str:
        """The name."""
        return self._info.name

    @property
    def type(self) -> str:
        """The name of the type of its values, for people."""
        return self._info.type

    @property
    def type_code(self) -> str:
        """The name of the type of its values, for programs."""
        return self._info.type_code

    @property
    def components(self) -> list[str]:
        """The names of the components of its values."""
        return self._info.components

    @property
    def description(self) -> str:
        """A sentence about its meaning; empty if it is not described."""
        return self._info.description

    @property
    def unit(self) -> str:
        """The unit of its values, such as "km"; empty if it has none."""
        return self._info.unit

    @property
    def limits(self) -> Optional[tuple[float, float]]:
        """The smallest and the largest number that it accepts, or None. Ends may be infinite or excluded; see
        `limits_text`."""
        return self._info.limits

    @property
    def limits_text(self) -> str:
        """The limits for people, such as "from 0 to 100 km"; empty without limits."""
        return self._info.limits_text

    @property
    def level(self) -> int:
        """The expert level."""
        return self._info.level

    @property
    def is_output(self) -> bool:
        """True for an output."""
        return self._info.is_output

    @property
    def names_result(self) -> bool:
        """True for an input with the name of a file that the object writes."""
        return self._info.names_result

    @property
    def source(self) -> str:
        """The output "OBJECT.OUTPUT" that a connected input reads, else the empty text."""
        return self._info.source

    @property
    def value(self) -> Any:
        """The current value; see `NetworkObject`."""
        return self._owner._read(self.name, SlotKind.OUTPUT if self.is_output else SlotKind.INPUT)

    @value.setter
    def value(self, value: Any) -> None:
        if self.is_output:
            raise AttributeError(f"output {self.name!r} of {self._owner!r} cannot be assigned")
        self._owner[self.name] = value

    def __str__(self) -> str:
        return f"{self._owner.name}.{self.name}"

    def __repr__(self) -> str:
        kind = "output" if self.is_output else "input"
        return f"<{kind} {self} of type {self.type}>"


class _ObjectDoc:
    """Documents the class, or the object for which `help` is called."""

    def __init__(self, text: Optional[str]) -> None:
        self._text = text

    def __get__(self, instance: Optional[NetworkObject], owner: type) -> Optional[str]:
        if instance is None:
            return self._text
        return _types.description(instance) if instance.exists else repr(instance)


class NetworkObject:
    """An object of a network, in one evaluation. Its inputs and outputs are attributes:

    >>> net = fa.read('format = 1\\n[[object]]\\nname = "clock"\\ntype = "GlobalTime"\\n')
    >>> net["clock"].time = "0.5[0,1]@0.25"
    >>> net["clock"].time.step
    0.25

    An input accepts a text in the form of saved networks, a typed value, or Python's own types. An attribute of
    this class hides a slot of its name, and an input hides an output; `net["clock"]["time"]` and
    `net["clock"].outputs["GlobalTime"].value` name all slots. Reading evaluates what earlier assignments reach. If
    the object that computes a value failed, `ObjectError` is raised. After the object was removed, everything but
    its name raises `ReferenceError`.
    """

    __slots__ = ("_evaluation", "_handle")
    __doc__ = _ObjectDoc(__doc__)  # type: ignore[assignment]
    _evaluation: Evaluation
    _handle: _fathom.Handle

    def __init__(self, evaluation: Evaluation, handle: _fathom.Handle) -> None:
        object.__setattr__(self, "_evaluation", evaluation)
        object.__setattr__(self, "_handle", handle)

    @property
    def name(self) -> str:
        """The name of the object."""
        return self._handle.name

    @property
    def type(self) -> str:
        """The registered name of the object's type."""
        return self._handle.type

    @property
    def exists(self) -> bool:
        """False after the object was removed."""
        return self._handle.exists

    @property
    def evaluation(self) -> Evaluation:
        """The network or context in which values are read and assigned."""
        return self._evaluation

    @property
    def inputs(self) -> dict[str, Slot]:
        """The inputs by their names."""
        return {info.name: Slot(self, info) for info in self._handle.inputs()}

    @property
    def outputs(self) -> dict[str, Slot]:
        """The outputs by their names."""
        return {info.name: Slot(self, info) for info in self._handle.outputs()}

    @property
    def image(self) -> _images.Image:
        """The picture that the object draws now. Works for objects that write a picture when they are triggered."""
        return _images.draw(self)

    def emit(self, input: str, number: float = 0) -> None:
        """Triggers the object by an action, as a button or the end of a run does."""
        self._evaluation._context().emit(self._handle, input, number)

    def _read(self, name: str, kind: SlotKind) -> Any:
        return self._evaluation._context().read(self._handle, name, kind)

    def _assign_here(self, name: str, value: Any) -> None:
        self._evaluation._context().assign(self._handle, name, value)

    def __getitem__(self, name: str) -> Any:
        try:
            return self._read(name, SlotKind.ANY)
        except AttributeError as error:
            raise KeyError(str(error)) from None

    def __setitem__(self, name: str, value: Any) -> None:
        self._evaluation._assign(self._handle, name, value)

    def __getattr__(self, name: str) -> Any:
        # Tools look for many special names, which slots do not have.
        if name.startswith("__"):
            raise AttributeError(name)
        return self._read(name, SlotKind.ANY)

    def __setattr__(self, name: str, value: Any) -> None:
        if name in _OWN_ATTRIBUTES:
            raise AttributeError(f"{name!r} is an attribute of every object; assign the input by [{name!r}]")
        self[name] = value

    def __dir__(self) -> list[str]:
        slots = [info.name for info in self._handle.inputs() + self._handle.outputs()] if self.exists else []
        return sorted({*object.__dir__(self), *(name for name in slots if name.isidentifier())})

    def _ipython_key_completions_(self) -> list[str]:
        return [info.name for info in self._handle.inputs() + self._handle.outputs()]

    def __eq__(self, other: object) -> bool:
        if not isinstance(other, NetworkObject):
            return NotImplemented
        return (self._evaluation is other._evaluation) and self._handle == other._handle

    def __hash__(self) -> int:
        return hash(self._handle)

    def __repr__(self) -> str:
        removed = "" if self.exists else " (removed)"
        return f"<fathom.NetworkObject {self.name!r}{removed}>"


_OWN_ATTRIBUTES = frozenset(dir(NetworkObject))


class Evaluation:
    """What networks and their contexts have in common: objects by their names, runs and results."""

    _session: _fathom.Session

    def __init__(self, session: _fathom.Session) -> None:
        self._session = session
        self._runs = itertools.count(1)
        self._run = 0

    def _context(self) -> _fathom.Context:
        raise NotImplementedError

    def _assign(self, handle: _fathom.Handle, name: str, value: Any) -> None:
        raise NotImplementedError

    def __getitem__(self, name: str) -> NetworkObject:
        return NetworkObject(self, self._session.find(name))

    def __contains__(self, name: object) -> bool:
        return name in self._session.objects()

    def __iter__(self) -> Iterator[str]:
        return iter(self._session.objects())

    def __len__(self) -> int:
        return len(self._session.objects())

    def _ipython_key_completions_(self) -> list[str]:
        return self._session.objects()

    def _find(self, reference: str) -> tuple[_fathom.Handle, str]:
        """Finds the object of "OBJECT.SLOT" and the name of the slot. Names may contain dots; the longest wins."""
        names = set(self._session.objects())
        for end in (index for index in range(len(reference) - 1, 0, -1) if reference[index] == "."):
            if reference[:end] in names:
                return self._session.find(reference[:end]), reference[end + 1 :]
        raise KeyError(f"found {reference!r}, expected OBJECT.SLOT with one of the objects {sorted(names)}")

    def _find_input(self, reference: str) -> tuple[_fathom.Handle, str]:
        """Finds the input "OBJECT.INPUT", or the only free input of a name."""
        if "." in reference:
            return self._find(reference)
        handles = [self._session.find(name) for name in self._session.objects()]
        found = [
            handle
            for handle in handles
            if any(slot.name == reference and not slot.is_connected for slot in handle.inputs())
        ]
        if len(found) == 1:
            return found[0], reference
        choices = [f"{handle.name}.{reference}" for handle in found]
        expected = f"expected one of {choices}" if choices else "expected the name of an input that is not connected"
        raise KeyError(f"found the input {reference!r}, {expected}")

    def evaluate(self, progress: Optional[Progress] = None) -> None:
        """Evaluates what changed, at the current time. Reading an output does the same.

        `progress` is called with fractions between 0 and 1.
        """
        self._context().evaluate(progress)

    def run(self, progress: Optional[Progress] = None) -> Iterator[Step]:
        """Evaluates the steps of the time, each when the iterator is asked for it.

        The steps begin at the first one, also after an abandoned run. Raises `RunError` if the run ends early.

        >>> net = fa.read('format = 1\\n[[object]]\\nname = "clock"\\ntype = "GlobalTime"\\n'
        ...               'set = { time = "0[0,1]@0.5" }\\n')
        >>> [step.time for step in net.run()]
        [0.0, 0.5, 1.0]
        """
        self._run = run = next(self._runs)
        context = self._context()
        context.start_over()
        titles = self._session.columns()
        for number in itertools.count():
            if not context.step(progress):
                break
            time, values = context.outcome()
            yield Step(number, None if time is None else time.time, dict(zip(titles, values)))
            if self._run != run:
                raise RuntimeError("another run of the network began, which ends this one")
        reason = context.summary()[3]
        if reason is not None:
            raise _errors.RunError(reason)
        context.finish(progress)

    def table(self, progress: Optional[Progress] = None) -> _tables.Table:
        """Runs all steps and returns the columns by their titles, after the numbers of the steps.

        Numbers are arrays of numpy, other values arrays of objects. A missing value is masked: the column is then
        a `numpy.ma.MaskedArray`.
        """
        titles = ["step", *self._session.columns()]
        self._run = next(self._runs)
        rows, reason = self._context().run(progress)
        if reason is not None:
            raise _errors.RunError(reason)
        return _tables.table(titles, [(number, *cells) for number, cells in enumerate(rows)])

    @property
    def time(self) -> Optional[_fathom.Time]:
        """The current time with its interval and step; None in a network without time."""
        return self._context().time()

    @property
    def step_count(self) -> int:
        """The number of steps of a run."""
        return self._context().step_count()

    def set_step(self, step: int) -> None:
        """Sets the time to that of a step, for evaluations outside a run."""
        self._context().set_step(step)

    @property
    def statuses(self) -> list[ObjectStatus]:
        """The failures and statuses of the objects: errors, then warnings, then the rest."""
        return [
            ObjectStatus(name, Severity(severity), text, waiting)
            for name, severity, text, waiting in self._context().statuses()
        ]

    @property
    def charts(self) -> list[str]:
        """The names of the charts that objects offer, after an evaluation."""
        return self._context().charts()


class Context(Evaluation):
    """An evaluation with its own inputs and results, which `Network.context` returns.

    Several contexts may be used in several threads at the same time. A `with` statement closes the context.
    """

    def __init__(self, session: _fathom.Session, name: str = "", tag: str = "") -> None:
        super().__init__(session)
        self._made = _fathom.Context(session, name, tag)

    def _context(self) -> _fathom.Context:
        return self._made

    def _assign(self, handle: _fathom.Handle, name: str, value: Any) -> None:
        self._made.assign(handle, name, value)

    def set(self, inputs: Mapping[str, Any]) -> None:
        """Assigns inputs, named by "OBJECT.INPUT" or, if only one object has a free input of the name, "INPUT"."""
        for reference, value in inputs.items():
            self._made.assign(*self._find_input(reference), value)

    def select_chart(self, name: str) -> None:
        """Makes the objects follow a chart."""
        self._made.select_chart(name)

    def cancel(self) -> None:
        """Cancels an evaluation in another thread, which raises an exception there."""
        self._made.cancel()

    def close(self) -> None:
        """Releases all results. The context cannot be used any more."""
        self._made.close()

    def __enter__(self) -> Context:
        return self

    def __exit__(self, *_: object) -> None:
        self.close()


class Network(Evaluation):
    """A network of objects, with one evaluation of its own. `load` and `read` return networks.

    >>> net = fa.Network()
    >>> clock = net.add("GlobalTime", "clock", time=fa.Time(0, 0, 1, 0.5))
    >>> [step.time for step in net.run()]
    [0.0, 0.5, 1.0]
    """

    def __init__(self, folder: Path = "", *, _session: Optional[_fathom.Session] = None) -> None:
        super().__init__(_session or _fathom.Session.create(os.path.abspath(folder)))
        self._lock = threading.Lock()
        self._own: Optional[_fathom.Context] = None

    def _context(self) -> _fathom.Context:
        with self._lock:
            if self._own is None:
                self._own = _fathom.Context(self._session)
            return self._own

    def _assign(self, handle: _fathom.Handle, name: str, value: Any) -> None:
        # The initial value, for new contexts and the saved network, and that of the own context.
        self._session.assign(handle, name, value)
        if self._own is not None:
            self._own.assign(handle, name, value)

    @property
    def folder(self) -> str:
        """The folder at which relative names of files start."""
        return self._session.folder

    @property
    def columns(self) -> list[str]:
        """The titles of the columns of the table."""
        return self._session.columns()

    def context(self, inputs: Optional[Mapping[str, Any]] = None, /, *, name: str = "", tag: str = "",
                **more: Any) -> Context:
        """Returns a context for another evaluation, in which the given inputs differ.

        Inputs are named by "OBJECT.INPUT", or by "INPUT" if only one object has a free input of the name. `tag` is
        added to the names of files that objects write.

        >>> net = fa.Network()
        >>> clock = net.add("GlobalTime", "clock")
        >>> with net.context({"clock.time": "3[0,10]@1"}) as case:
        ...     case["clock"].time.time
        3.0
        """
        made = Context(self._session, name, tag)
        made.set({**(inputs or {}), **more})
        return made

    def sweep(self, inputs: Mapping[str, Sequence[Any]], *, jobs: Optional[int] = None,
              progress: Optional[Progress] = None) -> _tables.Table:
        """Runs the network for all combinations of the inputs; the last one varies fastest.

        Returns one row per step of each case: the number of the case, the inputs, the number of the step, and the
        columns. `jobs` cases at a time are evaluated; by default, one per core. The results do not depend on it.
        A network whose objects keep state in members is evaluated one case at a time. Raises `RunError` if the run
        of a case ends early.
        """
        titles = ["case", *inputs, "step", *self.columns]
        cases = list(itertools.product(*inputs.values()))
        if not cases:
            return _tables.table(titles, [])
        found = [self._find_input(reference) for reference in inputs]
        values = [list(each) for each in inputs.values()]
        rows, failure = _fathom.sweep(self._session, found, values, jobs or os.cpu_count() or 1, progress)
        if failure is not None:
            raise _errors.RunError(f"case {failure[0]}: {failure[1]}")
        return _tables.table(titles, [(number, *cases[number], step, *cells) for number, step, *cells in rows])

    def load_library(self, name: str) -> None:
        """Loads an object library."""
        self._session.load_library(name)

    def add(self, type: str, name: str, /, **inputs: Any) -> NetworkObject:
        """Creates an object of a registered type, and assigns inputs."""
        self._session.add(type, name)
        made = self[name]
        for input, value in inputs.items():
            made[input] = value
        return made

    def remove(self, object: Union[str, NetworkObject]) -> None:
        """Removes an object, its connections and its columns."""
        self._session.remove(object if isinstance(object, str) else object.name)

    def __delitem__(self, name: str) -> None:
        self._session.find(name)
        self.remove(name)

    def rename(self, object: Union[str, NetworkObject], name: str) -> None:
        """Renames an object; connections and columns follow."""
        self._session.rename(object if isinstance(object, str) else object.name, name)

    def connect(self, output: Union[str, Slot], input: Union[str, Slot]) -> None:
        """Connects "OBJECT.OUTPUT", or a component "OBJECT.OUTPUT.MEMBER", to "OBJECT.INPUT"."""
        self._session.connect(str(output), str(input))

    def disconnect(self, input: Union[str, Slot]) -> None:
        """Disconnects an input, which then has its initial value."""
        self._session.disconnect(str(input))

    def add_column(self, title: str, output: Union[str, Slot]) -> None:
        """Adds a column with the values of an output to the table."""
        self._session.add_column(title, str(output))

    def select_chart(self, name: str) -> None:
        """Makes the objects follow a chart, in this network and in new contexts."""
        self._session.select_chart(name)
        if self._own is not None:
            self._own.select_chart(name)

    def to_toml(self) -> str:
        """Returns the saved network in its canonical form, as `tarn convert` writes it."""
        return self._session.saved_text()

    def save(self, path: Path) -> None:
        """Writes the saved network to a file, which is complete or left unchanged."""
        self._session.save(os.fspath(path))

    def forget(self) -> None:
        """Forgets all results, so that the next evaluation reads files again."""
        self._context().forget()

    def __repr__(self) -> str:
        return f"<fathom.Network {self._session.file!r} with {len(self)} objects>"


def _checked(session: _fathom.Session) -> Network:
    faults = [
        _errors.Fault(_errors.FaultKind(kind), session.file, line, column, message)
        for kind, line, column, message in session.faults
    ]
    if faults:
        raise _errors.NetworkError(session.fault_lines, faults)
    return Network(_session=session)


def load(path: Path, *, set: Mapping[str, str] = {}, chart: Optional[str] = None,
         steps: Optional[int] = None) -> Network:
    """Loads a saved network, its libraries and its objects.

    `set` has texts of inputs by "OBJECT.INPUT", `chart` replaces the chart of the file, and `steps` limits the
    number of steps. Raises `NetworkError` with all faults, or `OSError` if the file cannot be read.
    """
    overrides = [f"{reference}={text}" for reference, text in set.items()]
    return _checked(_fathom.Session.load(os.fspath(path), overrides, chart, steps))


def read(text: str, *, title: str = "text", folder: Path = "", set: Mapping[str, str] = {},
         chart: Optional[str] = None, steps: Optional[int] = None) -> Network:
    """Loads the saved network `text` as if it were a file in `folder`. `title` names it in messages."""
    overrides = [f"{reference}={value}" for reference, value in set.items()]
    return _checked(_fathom.Session.read(text, title, os.path.abspath(folder), overrides, chart, steps))
