"""Loads, evaluates, changes and saves networks of processing objects.

>>> import fathom as fa
>>> net = fa.Network()
>>> clock = net.add("GlobalTime", "clock", time="0[0,1]@0.5")
>>> for step in net.run():
...     print(step.time, net["clock"].time)
0.0 0[0,1]@0.5
0.5 0.5[0,1]@0.5
1.0 1[0,1]@0.5
"""

from ._errors import Fault as Fault
from ._errors import FaultKind as FaultKind
from ._errors import NetworkError as NetworkError
from ._errors import RunError as RunError
from ._fathom import Action as Action
from ._fathom import Ball as Ball
from ._fathom import Bivector as Bivector
from ._fathom import Box as Box
from ._fathom import Camera as Camera
from ._fathom import Cancelled as Cancelled
from ._fathom import Chart as Chart
from ._fathom import Charts as Charts
from ._fathom import Choice as Choice
from ._fathom import Color as Color
from ._fathom import Enumeration as Enumeration
from ._fathom import Event as Event
from ._fathom import Flags as Flags
from ._fathom import ImageTile as ImageTile
from ._fathom import IntegerTriple as IntegerTriple
from ._fathom import MultipleChoice as MultipleChoice
from ._fathom import ObjectError as ObjectError
from ._fathom import Pair as Pair
from ._fathom import Point as Point
from ._fathom import Range as Range
from ._fathom import Ranges as Ranges
from ._fathom import Request as Request
from ._fathom import ScalarFunction as ScalarFunction
from ._fathom import Status as Status
from ._fathom import Time as Time
from ._fathom import TouchPoints as TouchPoints
from ._fathom import Value as Value
from ._fathom import array as array
from ._fathom import zeros as zeros
from ._images import Image as Image
from ._networks import Context as Context
from ._networks import Network as Network
from ._networks import NetworkObject as NetworkObject
from ._networks import ObjectStatus as ObjectStatus
from ._networks import Severity as Severity
from ._networks import Slot as Slot
from ._networks import Step as Step
from ._networks import load as load
from ._networks import read as read
from ._objects import Input as Input
from ._objects import Object as Object
from ._objects import Output as Output
from ._objects import Timed as Timed
from ._objects import input as input
from ._objects import output as output
from ._objects import register as register
from ._objects import unregister as unregister
from ._tables import Table as Table
from ._types import InputType as InputType
from ._types import ObjectType as ObjectType
from ._types import OutputType as OutputType
from ._types import ValueType as ValueType
from ._types import objects as objects
from ._types import types as types

object = register
