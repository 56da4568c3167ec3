"""Scenes that are lit by the lights of Korl's modules, built and rendered from Python.

    import korl

    with korl.Shell() as shell:
        shell.add_landscape()
        sun = shell.create("Sun", "sun", latitude=52, timeofday=9)
        shell.render(640, 480).save("morning.png")

Scene space is right-handed, z up. A direction of light is the one in which light travels.
"""

from ._camera import Camera
from ._errors import (
    ClosedError,
    Error,
    InvalidValueError,
    ReadOnlyError,
    UnknownNameError,
    Warning,
    WrongTypeError,
)
from ._image import Image
from ._meshes import MeshInfo
from ._objects import Number, Numbers, Object, Parameter, Parameters, ParameterType, Text, Type, View
from ._shell import Explanation, Plugin, Shell, set_verbosity

__all__ = [
    "Camera",
    "ClosedError",
    "Error",
    "Explanation",
    "Image",
    "InvalidValueError",
    "MeshInfo",
    "Number",
    "Numbers",
    "Object",
    "Parameter",
    "ParameterType",
    "Parameters",
    "Plugin",
    "ReadOnlyError",
    "Shell",
    "Text",
    "Type",
    "UnknownNameError",
    "View",
    "Warning",
    "WrongTypeError",
    "set_verbosity",
]
