"""Helpers of all tests."""

from __future__ import annotations

import pathlib
import sys

import pytest

import fathom as fa

TOP = pathlib.Path(__file__).parents[2]

sys.path.insert(0, str(pathlib.Path(__file__).parent))


@pytest.fixture
def sums() -> fa.Network:
    """Adds a time from 0 to 1 in steps of 0.25 to 10."""
    net = fa.read(
        """format = 1
libraries = ["testobjects"]

[[object]]
name = "clock"
type = "GlobalTime"
set = { time = "0[0,1]@0.25" }

[[object]]
name = "a"
type = "Adder"
set = { b = 2 }
connect = { a = "clock.GlobalTime.time" }

[[object]]
name = "b"
type = "Adder"
set = { b = 10 }
connect = { a = "a.sum" }

[[column]]
title = "sum"
value = "b.sum"
"""
    )
    return net


@pytest.fixture
def everything() -> fa.Network:
    """Has an object with one input per type, named after the type."""
    net = fa.Network()
    net.load_library("testobjects")
    net.add("Everything", "all")
    return net
