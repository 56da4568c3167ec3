"""Classes that have the attributes that they have, and no others."""

from . import _korl
from ._errors import ReadOnlyError, UnknownNameError
from ._values import shown


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
        if getattr(getattr(type(self), name), "fset", None) is None:
            raise ReadOnlyError(f'the attribute "{name}" of {type(self).__name__} can be read, but not set')
        super().__setattr__(name, value)

    def __delattr__(self, name):
        raise ReadOnlyError(f'the attribute "{shown(name)}" of {type(self).__name__} cannot be deleted')

    def _refusal(self, name):
        known = [known for known in dir(type(self)) if not known.startswith("_")]
        return f'{type(self).__name__} has no attribute "{shown(name)}": {_korl.near_names(shown(name), known, "")}'
