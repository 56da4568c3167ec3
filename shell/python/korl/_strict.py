"""Classes that refuse in this package's own words: unknown attributes, wrong arguments, pickling."""

import functools
import types

from . import _korl
from ._errors import Error, ReadOnlyError, UnknownNameError, WrongTypeError
from ._values import shown


def checked(function):
    """The function with a korl.WrongTypeError for arguments that it does not take: too few, too many, unknown."""

    @functools.wraps(function)
    def call(*arguments, **keywords):
        try:
            return function(*arguments, **keywords)
        except TypeError as error:
            was_entered = error.__traceback__.tb_next is not None
            if was_entered or isinstance(error, Error):
                raise
            text = str(error)
        raise WrongTypeError(text)

    return call


def strict(class_):
    """The class with every public function of its own checked."""
    for name, member in list(vars(class_).items()):
        if name.startswith("_") and not name.startswith("__"):
            continue
        if isinstance(member, types.FunctionType):
            setattr(class_, name, checked(member))
        elif isinstance(member, (staticmethod, classmethod)):
            setattr(class_, name, type(member)(checked(member.__func__)))
    return class_


def strict_tuple(class_):
    """A class of named tuples, checked, whose attributes are refused as those of the other classes are."""
    class_.__getattr__ = Strict.__getattr__
    class_.__setattr__ = Strict.__setattr__
    class_.__delattr__ = Strict.__delattr__
    class_.__new__ = staticmethod(checked(class_.__new__))
    return class_


def known_attributes(class_):
    return [known for known in dir(class_) if not known.startswith("_")]


def unknown_attribute(class_, name):
    near = _korl.near_names(shown(name), known_attributes(class_), "")
    return UnknownNameError(f'{class_.__name__} has no attribute "{shown(name)}": {near}')


class Strict:
    """An unknown attribute is refused, read or set, with the names of those that there are.

    Objects of such a class look at something of a shell, which stays in its process.
    """

    __slots__ = ()

    def __init_subclass__(cls, **keywords):
        super().__init_subclass__(**keywords)
        strict(cls)

    def __getattr__(self, name):
        if name.startswith("_"):  # Python's own questions, such as a notebook's for _repr_html_
            raise UnknownNameError(f"{type(self).__name__} has no attribute {name!r}")
        raise unknown_attribute(type(self), name)

    def __setattr__(self, name, value):
        if not hasattr(type(self), name):
            raise unknown_attribute(type(self), name)
        if getattr(getattr(type(self), name), "fset", None) is None:
            raise ReadOnlyError(f'the attribute "{name}" of {type(self).__name__} can be read, but not set')
        super().__setattr__(name, value)

    def __delattr__(self, name):
        raise ReadOnlyError(f'the attribute "{shown(name)}" of {type(self).__name__} cannot be deleted')

    def __setitem__(self, name, value):
        raise WrongTypeError(f"{type(self).__name__} takes no items: [{name!r}] cannot be set")

    def __delitem__(self, name):
        raise WrongTypeError(f"{type(self).__name__} gives no items away: [{name!r}] cannot be deleted")

    def __reduce_ex__(self, protocol):
        raise WrongTypeError(
            f"{type(self).__name__} cannot be pickled or copied: it belongs to a shell of this process; "
            "save the scene, and load it elsewhere"
        )


class Names(dict):
    """A dict by names, whose refusals list the near ones."""

    def __init__(self, what, entries):
        super().__init__(entries)
        self._what = what

    def __getitem__(self, name):
        if not isinstance(name, str):
            raise WrongTypeError(f"expected the name of a {self._what}, found {name!r}")
        return super().__getitem__(name)

    def __missing__(self, name):
        near = _korl.near_names(shown(name), list(self), f"there is no {self._what}")
        raise UnknownNameError(f'unknown {self._what} "{shown(name)}": {near}')

    def __contains__(self, name):
        return isinstance(name, str) and super().__contains__(name)

    def get(self, name, default=None):
        return self[name] if name in self else default
