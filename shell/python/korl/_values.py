"""Values of parameters: numbers and tuples, and the text forms of other types."""

import numbers
import operator
import os

import numpy

from ._errors import InvalidValueError, WrongTypeError

_COUNTS = {"double": 1, "point": 3, "vector": 3, "color": 4}
_FORMS = {
    "double": "a double, one number",
    "point": "a point, three numbers (x, y, z)",
    "vector": "a vector, three numbers (x, y, z)",
    "color": "a colour, four numbers (red, green, blue, alpha)",
}


def numbers_in(value, count, what):
    """The numbers of a value as floats: of one number or, where count is not 1, of that many in a row.

    Raises WrongTypeError for anything else, and InvalidValueError for numbers that are not finite.
    """
    if isinstance(value, numpy.ndarray) and (value.ndim == 0) == (count == 1):
        value = value.tolist()
    parts = [value] if count == 1 else parts_of(value)
    if parts is None or not all(isinstance(part, numbers.Real) for part in parts):
        raise WrongTypeError(f"{what}, found {value!r}")
    if len(parts) != count:
        raise InvalidValueError(f"{what}, found {len(parts)} numbers, {value!r}")
    try:
        found = [float(part) for part in parts]
    except OverflowError:
        found = [float("inf")]
    if not numpy.isfinite(found).all():
        raise InvalidValueError(f"{what}, and finite ones, found {value!r}")
    return found


def parts_of(value):
    """The parts of a sequence or an array as a list; None for a text and for anything else."""
    if isinstance(value, (str, bytes)) or not hasattr(value, "__len__"):
        return None
    try:
        return list(value)
    except TypeError:  # a class, or an array without dimensions
        return None


def whole(value, minimum, what, maximum=2**31 - 1):
    """A whole number of a range, which is an int's of the shell unless told otherwise."""
    try:
        number = operator.index(None if isinstance(value, bool) else value)
    except TypeError:
        raise WrongTypeError(f"{what}, found {value!r}") from None
    if not minimum <= number <= maximum:
        raise InvalidValueError(f"{what}, from {minimum} to {maximum}, found {number}")
    return number


def shown(text):
    """A text as it can be shown: what is not a character in it is escaped."""
    return text.encode(errors="backslashreplace").decode()


def text_in(value, what):
    """A text, all of it characters."""
    if not isinstance(value, str):
        raise WrongTypeError(f"{what} is a text, found {value!r}")
    if shown(value) != value:
        raise InvalidValueError(f"{what} is a text of characters alone, found {value!r}")
    return value


def array_of(values, what):
    """The numpy array of some values, the same where they are one."""
    try:
        return numpy.asarray(values)
    except ValueError:
        raise InvalidValueError(f"{what}, found rows of different lengths") from None
    except Exception as error:
        raise WrongTypeError(f"{what}, found what is none: {error}") from None


def triple(value, what):
    """Three finite numbers, as of a point or a direction."""
    return numbers_in(value, 3, f"{what} takes three numbers (x, y, z)")


def require(value, type_, what):
    """The value, where it is of a type."""
    if not isinstance(value, type_):
        raise WrongTypeError(f"{what}, found {value!r}")
    return value


def text_of(floats):
    """The shortest text that reads back as the same numbers."""
    return " ".join(repr(number) for number in floats)


def to_shell(kind, value, name):
    """A value for a parameter of a kind as the shell takes it: floats or, of another kind than the four, text."""
    if kind in _COUNTS:
        return numbers_in(value, _COUNTS[kind], f'"{name}" takes {_FORMS[kind]}')
    return text_in(value, f'the value of "{name}", the text form of a {kind},')


def from_shell(kind, value):
    """What the shell gives for a value as a float, a tuple of floats or a text; None for no value."""
    if value is None or kind not in _COUNTS:
        return value
    return value[0] if kind == "double" else tuple(value)


def from_text(kind, text):
    """The same from a value's text form."""
    is_text = text is None or kind not in _COUNTS
    return text if is_text else from_shell(kind, [float(word) for word in text.split()])


def path_of(file):
    """A file as the system's text for it; WrongTypeError for what is not a path."""
    try:
        path = os.fsdecode(file)
        if b"\0" in os.fsencode(path):
            raise InvalidValueError(f"the path of a file has no zero byte, found {file!r}")
    except TypeError:
        raise WrongTypeError(f"expected the path of a file, found {file!r}") from None
    except UnicodeError:
        raise InvalidValueError(f"the path of a file is a text of characters, found {file!r}") from None
    return path
