"""What can go wrong: every exception of this module is a korl.Error."""


class Error(Exception):
    """Something that was asked of a shell could not be done; the text says what, why, and what to do."""

    __str__ = Exception.__str__  # a KeyError's own text would come in quotes


class ClosedError(Error):
    """The shell was closed before it was asked for something."""


class UnknownNameError(Error, AttributeError, KeyError):
    """There is no type, object, parameter or view of this name; the text lists the near ones."""


class ReadOnlyError(Error, AttributeError):
    """An attribute can be read, but neither set nor deleted."""


class InvalidValueError(Error, ValueError):
    """A value is of the right type, but not one that can be taken: not finite, out of range, damaged."""


class WrongTypeError(Error, TypeError):
    """A value is of another type than what is asked for, or an object is."""


class Warning(UserWarning):
    """What the user should know about a picture: a light that was left out, or is not finite."""
