"""Meshes and the arrays that they are made from."""

from typing import NamedTuple

import numpy

from ._errors import InvalidValueError, WrongTypeError
from ._strict import strict_tuple
from ._values import array_of


@strict_tuple
class MeshInfo(NamedTuple):
    """A mesh of a scene, and how many vertices and triangles it has."""

    name: str
    vertices: int
    triangles: int


def rows(name, values, type_):
    """An array of rows of three, of a type: where it is one already, in C order, the same array."""
    array = array_of(values, f"{name} takes an array of N x 3 numbers")
    if array.ndim != 2 or array.shape[1] != 3:
        raise InvalidValueError(f"{name} takes an array of N x 3 numbers, found the shape {array.shape}")
    allowed = "iu" if type_ is numpy.uint32 else "fiu"
    if array.dtype.kind not in allowed:
        what = "whole numbers" if allowed == "iu" else "numbers"
        raise WrongTypeError(f"{name} takes an array of {what}, found one of {array.dtype}")
    if type_ is numpy.uint32 and array.size and (array.min() < 0 or array.max() >= 2**32):
        raise InvalidValueError(f"{name} takes indices from 0, found {array.min()} to {array.max()}")
    with numpy.errstate(over="ignore"):  # what is too large becomes infinite, and is refused as such
        return numpy.ascontiguousarray(array, type_)


def rows_for(vertices, name, values):
    """An array with a row for each of the vertices."""
    array = rows(name, values, numpy.float32)
    if len(array) != len(vertices):
        raise InvalidValueError(f"{name} takes one row for each of the {len(vertices)} vertices, found {len(array)}")
    return array
