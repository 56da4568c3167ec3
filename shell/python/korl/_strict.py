"""Classes that have the attributes that they have, and no others."""

from . import _korl
from ._errors import UnknownNameError


class Strict:
    """An unknown attribute is refused, read or set, with the names of those that there are."""

    __slots__ = ()

    def __getattr__(self, name):
        if name.startswith("_"):  # Python's own questions, such as a notebook's for _repr_html_
            raise AttributeError(f"{type(self).__name__} has no attribute {name!r}")
        raise UnknownNameError(self._refusal(name))

    def __setattr__(self, name, value):
        if not hasattr(type(self), name):
            raise UnknownNameError(self._refusal(name))
        super().__setattr__(name, value)

    def _refusal(self, name):
        known = [known for known in dir(type(self)) if not known.startswith("_")]
        return f'{type(self).__name__} has no attribute "{name}": {_korl.near_names(name, known, "")}'
