"""What a scene is made of, as Python sees it: objects, their parameters and the values of those."""

from collections.abc import Mapping
from typing import NamedTuple, Optional

from . import _korl
from ._errors import Error, InvalidValueError, UnknownNameError, WrongTypeError
from ._strict import Strict, strict, strict_tuple
from ._values import from_shell, from_text, require, shown, text_in, to_shell, triple


@strict_tuple
class ParameterType(NamedTuple):
    """What a type says of a parameter. Nothing is clamped to the range."""

    name: str
    kind: str
    default: object
    minimum: Optional[float]
    maximum: Optional[float]
    unit: Optional[str]
    level: int
    doc: str

    @classmethod
    def _of(cls, info):
        values = (from_text(info.kind, text) for text in (info.default, info.minimum, info.maximum))
        return cls(info.name, info.kind, *values, info.unit, info.level, info.doc)


@strict_tuple
class Type(NamedTuple):
    """A type of objects."""

    name: str
    category: str
    doc: str
    parameters: tuple


def view_name(view, session):
    """The name of a view of a session, given as such or as a view object; empty for none."""
    if view is None:
        return ""
    if not isinstance(view, (View, str)):
        raise WrongTypeError(f"expected a view or the name of one, found {view!r}")
    if isinstance(view, View) and view._session is not session:
        raise InvalidValueError(f"{view!r} belongs to another shell")
    name = view.name if isinstance(view, View) else text_in(view, "a view's name")
    if not name:
        raise InvalidValueError("a view has a name; leave it out for the view without values of its own")
    return name


class View(Strict):
    """A view of a scene, which may have values of its own for the objects' parameters."""

    __slots__ = ("_session", "_name")

    def __init__(self, session, name):
        require(session, _korl.Session, "a View comes from a shell: shell.add_view(NAME) or shell.views[NAME]")
        object.__setattr__(self, "_session", session)
        object.__setattr__(self, "_name", text_in(name, "a view's name"))

    @property
    def name(self):
        return self._name

    def __repr__(self):
        return f"<korl.View {self.name!r}>"

    def __eq__(self, other):
        return isinstance(other, View) and (self._session, self._name) == (other._session, other._name)

    def __hash__(self):
        return hash((self._session, self._name))


@strict
class _Value:
    """What the values read from an object have in addition to being numbers: they know their parameter."""

    __slots__ = ()
    __getattr__ = Strict.__getattr__

    def follow(self, source):
        """See Parameter.follow."""
        self.parameter.follow(source)

    def unfollow(self):
        """See Parameter.unfollow."""
        self.parameter.unfollow()

    def reset(self, view=None):
        """See Parameter.reset."""
        self.parameter.reset(view)


@strict
class Number(_Value, float):
    """A number as it was read from a parameter; it does not change with it."""

    def __new__(cls, value, parameter):
        try:
            number = super().__new__(cls, value)
        except TypeError:
            raise WrongTypeError(f"a Number takes a number, found {value!r}") from None
        except ValueError:
            raise InvalidValueError(f"a Number takes a number, found {value!r}") from None
        number.parameter = require(parameter, Parameter, "a Number knows the parameter that it was read from")
        return number

    def __reduce__(self):
        return float, (float(self),)


@strict
class Numbers(_Value, tuple):
    """The components of a point, vector or colour as they were read; they do not change with the parameter."""

    def __new__(cls, values, parameter):
        try:
            numbers = super().__new__(cls, values)
        except TypeError:
            raise WrongTypeError(f"Numbers takes numbers, found {values!r}") from None
        numbers.parameter = require(parameter, Parameter, "Numbers knows the parameter that it was read from")
        return numbers

    def __reduce__(self):
        return tuple, (tuple(self),)


@strict
class Text(_Value, str):
    """The text form of a value of another kind."""

    def __new__(cls, text, parameter):
        made = super().__new__(cls, text_in(text, "the text form of a value"))
        made.parameter = require(parameter, Parameter, "a Text knows the parameter that it was read from")
        return made

    def __reduce__(self):
        return str, (str(self),)


class Parameter(Strict):
    """A parameter of an object. It looks at the object; it does not keep it in the scene."""

    __slots__ = ("_owner", "_type")

    def __init__(self, owner, type_):
        require(owner, Object, "a Parameter comes from an object: light.parameters[NAME]")
        require(type_, ParameterType, "a Parameter has a ParameterType")
        object.__setattr__(self, "_owner", owner)
        object.__setattr__(self, "_type", type_)

    name = property(lambda self: self._type.name, doc="The parameter's name.")
    kind = property(lambda self: self._type.kind, doc='"double", "color", "point" or "vector".')
    default = property(lambda self: self._type.default, doc="What it is before anything is set.")
    minimum = property(lambda self: self._type.minimum, doc="The smallest value that makes sense, or None.")
    maximum = property(lambda self: self._type.maximum, doc="The largest value that makes sense, or None.")
    unit = property(lambda self: self._type.unit, doc="The unit where it is known, else None.")
    level = property(lambda self: self._type.level, doc="0 for every user; higher ones are for experts.")
    doc = property(lambda self: self._type.doc, doc="What it does, in a few words; may be empty.")
    object = property(lambda self: self._owner, doc="The object that it belongs to.")

    @property
    def value(self):
        """What it is in every view without a value of its own; of a follower, what it follows."""
        return self.get()

    @value.setter
    def value(self, value):
        self.set(value)

    def get(self, view=None):
        """What it is in a view, as a float or a tuple of floats that knows its parameter."""
        value = self._read(view)
        if value is None:
            way_out = f'["{self._owner.name}"].parameters["{self.name}"].unfollow()'
            raise Error(f'"{self}" cannot be read: what it follows has gone; shell{way_out} ends that')
        return {float: Number, tuple: Numbers, str: Text}[type(value)](value, self)

    def _read(self, view=None):
        """What it is in a view; None where it follows what has gone."""
        session = self._owner._session
        return from_shell(self.kind, session.value(self._owner._handle, self.name, view_name(view, session)))

    def set(self, value, view=None):
        """Changes it in all views or, with a view, in that one alone."""
        value = to_shell(self.kind, value, self)
        session = self._owner._session
        session.set(self._owner._handle, self.name, value, view_name(view, session))

    def reset(self, view=None):
        """Brings back the default or, with a view, takes away what that one has of its own."""
        session = self._owner._session
        session.reset(self._owner._handle, self.name, view_name(view, session))

    def follow(self, source):
        """From now on reads as another parameter does, given as such or by a value read from it."""
        parameter = getattr(source, "parameter", source)
        if not isinstance(parameter, Parameter):
            raise WrongTypeError(f'"{self}" can follow a parameter such as light.direction, found {source!r}')
        if parameter._owner._session is not self._owner._session:
            raise InvalidValueError(f'"{self}" cannot follow "{parameter}" of another shell')
        self._owner._session.follow(
            self._owner._handle, self.name, parameter._owner._handle, parameter.name
        )

    def unfollow(self):
        """Ends that it follows another one; its own value shows again."""
        self._owner._session.unfollow(self._owner._handle, self.name)

    @property
    def source(self):
        """The parameter that this one follows, or None."""
        found = self._owner._session.source(self._owner._handle, self.name)
        return found and Object(self._owner._session, found[0]).parameters[found[1]]

    def __str__(self):
        return f"{self._owner.name}.{self.name}"

    def __repr__(self):
        return f'<korl.Parameter "{self}", a {self.kind}>'

    def __eq__(self, other):
        return isinstance(other, Parameter) and (self._owner, self.name) == (other._owner, other.name)

    def __hash__(self):
        return hash((self._owner, self.name))


class Parameters(Strict, Mapping):
    """The parameters of an object by their names, in the order of their making."""

    __slots__ = ("_owner",)

    def __init__(self, owner):
        require(owner, Object, "Parameters come from an object: light.parameters")
        object.__setattr__(self, "_owner", owner)

    def __getitem__(self, name):
        if not isinstance(name, str):
            raise WrongTypeError(f"expected the name of a parameter, found {name!r}")
        infos = self._owner._infos()
        for info in infos:
            if info.name == name:
                return Parameter(self._owner, ParameterType._of(info))
        name = shown(name)
        near = _korl.near_names(name, [info.name for info in infos], "it has no parameters")
        raise UnknownNameError(f'unknown parameter "{self._owner.name}.{name}": {near}')

    def __iter__(self):
        return iter([info.name for info in self._owner._infos()])

    def __len__(self):
        return len(self._owner._infos())

    def __repr__(self):
        values = ((name, parameter._read()) for name, parameter in self.items())
        gone = "(what it follows has gone)"
        return "{" + ", ".join(f"{name}: {gone if value is None else value}" for name, value in values) + "}"


class Object(Strict):
    """An object of a scene. Its parameters are its attributes and its items.

    It is a look at the object: the scene keeps it. Where an attribute of every object has a parameter's name,
    the parameter is the item of that name.
    """

    __slots__ = ("_session", "_handle")

    def __init__(self, session, handle):
        what = "an Object comes from a shell: shell.create(TYPE) or shell[NAME]"
        require(session, _korl.Session, what)
        require(handle, _korl.Handle, what)
        object.__setattr__(self, "_session", session)
        object.__setattr__(self, "_handle", handle)

    def _infos(self):
        return self._session.parameters(self._handle)

    @property
    def name(self):
        """The name of the object in its scene."""
        return self._handle.name

    @property
    def type(self):
        """The name of the object's type."""
        return self._session.type_of(self._handle)

    @property
    def parameters(self):
        """The object's parameters by name: defaults, ranges, values of views."""
        return Parameters(self)

    @property
    def enabled(self):
        """Whether the object takes part in pictures; False mutes it."""
        return not self._session.is_muted(self._handle)

    @enabled.setter
    def enabled(self, enabled):
        if not isinstance(enabled, bool):
            raise WrongTypeError(f'"enabled" takes True or False, found {enabled!r}')
        self._session.set_muted(self._handle, not enabled)

    def get(self, name, view=None):
        """The value of a parameter in a view."""
        return self.parameters[name].get(view)

    def set(self, name, value, view=None):
        """Changes a parameter in all views or, with a view or its name, in that one alone."""
        self.parameters[name].set(value, view)

    def reset(self, name=None, view=None):
        """Brings a parameter, or all of them, back to the default or, with a view, to what all views have."""
        for known in [name] if name is not None else list(self.parameters):
            self.parameters[known].reset(view)

    def aim_at(self, point):
        """Makes a light shine towards a point of the scene: its light travels to it.

        A light that stands at a place keeps it; one of parallel rays shines as if from the origin. Raises
        TypeError for a light without a direction, ValueError where the point gives none.
        """
        self._session.aim_at(self._handle, triple(point, "aim_at"))

    def shine_from(self, direction):
        """Makes a light come from a direction: a lamp in the zenith shines from (0, 0, 1).

        Its light then travels the opposite way, which is what the parameter "direction" holds. A light that
        stands at a place goes to the other side of what it shines at. Raises TypeError for a light without a
        direction, ValueError for a direction that is zero or not finite.
        """
        self._session.shine_from(self._handle, triple(direction, "shine_from"))

    def __getitem__(self, name):
        return self.parameters[name].value

    def __setitem__(self, name, value):
        self.set(name, value)

    def __contains__(self, name):
        """Whether it has a parameter of this name."""
        return name in list(self.parameters)

    def __getattr__(self, name):
        if name.startswith("__"):
            raise UnknownNameError(f"Object has no attribute {name!r}")
        return self[name]

    def __setattr__(self, name, value):
        if hasattr(type(self), name):
            super().__setattr__(name, value)
        else:
            self[name] = value

    def __dir__(self):
        return [*super().__dir__(), *(name for name in self.parameters if name.isidentifier())]

    def __repr__(self):
        return f"<korl.Object {self.name!r}>"

    def __eq__(self, other):
        return (
            isinstance(other, Object)
            and self._session is other._session
            and self._handle.number == other._handle.number
        )

    def __hash__(self):
        return hash(self._handle.number)
