"""Columns of results as numpy arrays."""

from __future__ import annotations

from collections.abc import Iterable, Sequence
from typing import Any

import numpy as np
from numpy.typing import NDArray

Table = dict[str, NDArray[Any]]


def _element_type(values: Sequence[Any]) -> type:
    kinds = {type(value) for value in values}
    if kinds == {float}:
        return np.float64
    limits = np.iinfo(np.int64)
    if kinds == {int} and limits.min <= min(values) and max(values) <= limits.max:
        return np.int64
    return object


def column(values: Sequence[Any]) -> NDArray[Any]:
    """Returns an array of numbers if all values are numbers, else of objects. A missing value, None, is masked."""
    present = [value for value in values if value is not None]
    array: NDArray[Any] = np.zeros(len(values), dtype=_element_type(present))
    for index, value in enumerate(values):
        if value is not None:
            array[index] = value
    if len(present) == len(values):
        return array
    masked: NDArray[Any] = np.ma.masked_where([value is None for value in values], array)  # type: ignore[no-untyped-call]
    return masked


def table(titles: Sequence[str], rows: Sequence[Sequence[Any]]) -> Table:
    """Returns the columns by their titles."""
    repeated = sorted({title for title in titles if titles.count(title) > 1})
    if repeated:
        raise ValueError(f"several columns have the title {repeated[0]!r}, expected one")
    columns: Iterable[Sequence[Any]] = zip(*rows) if rows else ([] for _ in titles)
    return {title: column(list(values)) for title, values in zip(titles, columns)}
