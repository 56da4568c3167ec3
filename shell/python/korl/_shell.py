"""Shells."""

import json
import warnings
from collections.abc import Mapping
from typing import NamedTuple

import numpy

from . import _korl
from ._camera import Camera
from ._errors import ClosedError, InvalidValueError, Warning, WrongTypeError
from ._image import Image
from ._meshes import MeshInfo, rows, rows_for
from ._objects import Object, Parameter, ParameterType, Type, View, view_name
from ._strict import Names, Strict, checked, strict, strict_tuple
from ._values import numbers_in, parts_of, path_of, text_in, text_of, to_shell, whole

_PATHS = _korl.RenderPath.__members__
_MAX_LIMIT = 10**9  # the largest limit of time or memory


@strict_tuple
class Plugin(NamedTuple):
    """A module that a shell has loaded."""

    name: str
    file: str


@strict
class Explanation(Names):
    """Why a picture is as dark as it is: what was found, and as a text the same in words."""

    __getattr__ = Strict.__getattr__
    text = ""

    def __init__(self, text, found):
        self.text = text_in(text, "the text of an explanation")
        try:
            entries = dict(json.loads(text_in(found, "what was found")))
        except (TypeError, ValueError) as error:
            raise InvalidValueError(f"what was found is a JSON object: {error}") from None
        super().__init__("part of an explanation", entries)

    def __str__(self):
        return self.text


@checked
def set_verbosity(level):
    """How much the shells say of what they do: 0 the least, 50 traces parameters, 100 creators too."""
    _korl.set_verbosity(whole(level, -(2**31), "the verbosity is a whole number"))


class Shell(Strict):
    """A shell: modules, a scene that is built with them, and what draws it.

    It takes the plug-ins given, then those on the search path. Calls from several threads take turns. A `with`
    statement closes the shell at its end; whatever it is asked for then raises ClosedError.
    """

    __slots__ = ("_session",)

    def __init__(self, plugins=()):
        if isinstance(plugins, (str, bytes)) or not hasattr(plugins, "__iter__"):
            raise WrongTypeError(f"plugins takes a list of files, found {plugins!r}")
        object.__setattr__(self, "_session", _korl.open_session([path_of(file) for file in plugins]))
        self._warn()

    def __enter__(self):
        if self.closed:
            raise ClosedError("the shell is closed; make another one")
        return self

    def __exit__(self, *exception):
        self.close()

    def close(self):
        """Lets go of the scene, its objects and the modules. Images stay."""
        self._session.close()

    closed = property(lambda self: self._session.is_closed(), doc="Whether the shell was closed.")

    # Modules and what they bring.

    def load(self, file):
        """Loads one more module from a library file."""
        self._session.load(path_of(file))
        self._warn()

    @property
    def plugins(self):
        """The modules that are loaded, in the order of loading."""
        return tuple(Plugin(name, str(file)) for name, file in self._session.plugins())

    @property
    def types(self):
        """The types of objects that there are, by name."""
        types = {
            info.name: Type(
                info.name,
                info.category,
                info.doc,
                tuple(ParameterType._of(parameter) for parameter in info.parameters),
            )
            for info in self._session.types()
        }
        return Names("type", types)

    # The objects of the scene.

    def create(self, type, name="", **parameters):
        """Creates an object of a type. Without a name it gets the type's, numbered where that is taken.

        Parameters are set from the keywords; where one of them is refused, no object is left behind.
        """
        type, name = text_in(type, "an object's type"), text_in(name, "an object's name")
        created = Object(self._session, self._session.create(type, name))
        try:
            for parameter, value in parameters.items():
                created.set(parameter, value)
        except Exception:
            self._session.remove(created.name)
            raise
        return created

    def __getitem__(self, name):
        return Object(self._session, self._session.find(text_in(name, "an object's name")))

    def __delitem__(self, name):
        self._session.remove(text_in(name, "an object's name"))

    def __contains__(self, sought):
        """Whether there is an object, given as such or by its name."""
        if isinstance(sought, Object):
            return sought in list(self)
        return any(handle.name == sought for handle, _ in self._session.objects())

    def __iter__(self):
        """The objects in the order of their creation, as they are now."""
        return iter([Object(self._session, handle) for handle, _ in self._session.objects()])

    def __len__(self):
        return len(self._session.objects())

    def __bool__(self):
        return True  # a shell without objects is a shell

    def solo(self, light=None):
        """Lets one light alone shine, whatever is muted; without one, all shine again."""
        if light is None:
            self._session.end_solo()
            return
        found = self[light] if isinstance(light, str) else light
        if not isinstance(found, Object):
            raise WrongTypeError(f"solo takes a light, its name or nothing, found {light!r}")
        if found._session is not self._session:
            raise InvalidValueError(f"{found!r} belongs to another shell")
        self._session.solo(found._handle)

    @property
    def solo_light(self):
        """The light that shines alone, or None."""
        handle = self._session.solo_light()
        return handle and Object(self._session, handle)

    # What is seen, and how.

    def add_view(self, name):
        """A new view of the scene, in which parameters can have values of their own."""
        self._session.add_view(text_in(name, "a view's name"))
        return View(self._session, name)

    def remove_view(self, view):
        """Takes away a view and its values."""
        self._session.remove_view(view_name(view, self._session))

    @property
    def views(self):
        """The views of the scene by name."""
        return Names("view", {name: View(self._session, name) for name in self._session.views()})

    def add_mesh(self, mesh, triangles=None, normals=None, colors=None, *, up="y", name="mesh"):
        """Adds a mesh to the scene: from a model file, or from arrays.

        A model (OBJ, PLY, STL, glTF, 3DS) is turned so that its axis `up` is z and scaled to a radius of 0.5
        around the origin. A process of its own reads it, within `model_timeout` and `model_memory`. Arrays are
        taken as they are, in scene space: N x 3 vertices; M x 3 triangles, by the vertices' indices from 0,
        counter-clockwise seen from the front; normals and colours (0 to 1), N x 3. Without normals, smooth ones
        are made. Arrays of float32 and uint32 in C order are read where they lie.
        """
        if triangles is None:
            if normals is not None or colors is not None:
                raise WrongTypeError("vertices without triangles make no mesh; give triangles too")
            self._session.add_model(path_of(mesh), text_in(up, "the model's axis that is up"))
            self._warn()
            return
        vertices = rows("vertices", mesh, numpy.float32)
        none = numpy.empty((0, 3), numpy.float32)
        self._session.add_mesh(
            text_in(name, "a mesh's name"),
            vertices,
            rows("triangles", triangles, numpy.uint32),
            none if normals is None else rows_for(vertices, "normals", normals),
            none if colors is None else rows_for(vertices, "colors", colors),
        )

    @property
    def model_timeout(self):
        """How many seconds reading a model file may take."""
        return self._session.model_limits()[0]

    @model_timeout.setter
    def model_timeout(self, seconds):
        (seconds,) = numbers_in(seconds, 1, "model_timeout takes a number of seconds")
        if not 0.001 <= seconds <= _MAX_LIMIT:
            raise InvalidValueError(f"model_timeout takes 0.001 to 1e9 seconds, found {seconds!r}")
        self._session.set_model_limits(seconds, *self._session.model_limits()[1:])

    @property
    def model_memory(self):
        """How many MiB of memory reading a model file may take."""
        return self._session.model_limits()[1]

    @model_memory.setter
    def model_memory(self, mebibytes):
        mebibytes = whole(mebibytes, 1, "model_memory takes a whole number of MiB", _MAX_LIMIT)
        timeout, _, anywhere = self._session.model_limits()
        self._session.set_model_limits(timeout, mebibytes, anywhere)

    @property
    def model_anywhere(self):
        """Whether a model file may name others that lie outside its folder: buffers, material libraries."""
        return self._session.model_limits()[2]

    @model_anywhere.setter
    def model_anywhere(self, anywhere):
        self._session.set_model_limits(*self._session.model_limits()[:2], bool(anywhere))

    def add_landscape(self):
        """Adds the program's own meshes: hilly land, a column and a sphere, in a radius of 0.6 about the origin."""
        self._session.add_landscape()

    @property
    def meshes(self):
        """The meshes of the scene, in the order of their coming."""
        return tuple(MeshInfo(*mesh) for mesh in self._session.meshes())

    @property
    def camera(self):
        """Where the scene is seen from."""
        return Camera(self._session)

    @property
    def background(self):
        """The colour where nothing is: red, green, blue and alpha, 0 to 1; set also as "#rrggbb"."""
        return tuple(float(word) for word in self._session.background().split())

    @background.setter
    def background(self, color):
        if not isinstance(color, str):
            count = 3 if len(parts_of(color) or ()) == 3 else 4
            color = text_of(numbers_in(color, count, "the background takes (red, green, blue) or with alpha"))
        self._session.set_background(text_in(color, "the background's colour"))

    def render(self, width=640, height=480, path="shader", view=None):
        """Draws the scene: an Image, which is an array of height x width x 4 bytes.

        `path` says by what the lights shine: "shader" by their GLSL, "fixed" as OpenGL's own lights, "both" with
        one picture of each side by side, twice as wide. What the user should know about the picture comes as
        a korl.Warning, once for each light; so does that the scene has no light, or no mesh, to be seen. Other
        threads of Python go on meanwhile.
        """
        pixels = self._session.render(*_size(width, height), _path(path), view_name(view, self._session))
        self._warn()
        return Image(pixels)

    def _warn(self):
        for report in self._session.take_reports():
            warnings.warn(report, Warning, stacklevel=4)  # past what checks the arguments

    # Files, sequences, explanations.

    def save(self, file):
        """Writes the scene into a scene file, whole or not at all."""
        self._session.save(path_of(file))
        self._warn()

    def load_scene(self, file):
        """Adds what a scene file describes to the scene; where it is refused, the scene is as it was."""
        self._session.load_scene(path_of(file))
        self._warn()

    def save_rig(self, file):
        """Writes the lights alone into a file, to be put into another scene."""
        self._session.save_rig(path_of(file))
        self._warn()

    def load_rig(self, file, replace=False):
        """Adds the lights of a scene file; with `replace`, in the place of those that there are."""
        self._session.load_rig(path_of(file), bool(replace))
        self._warn()

    def script(self):
        """The text of a Python script that builds this scene."""
        return self._session.script()

    def animate(
        self,
        output,
        vary=None,
        frames=25,
        width=640,
        height=480,
        path="shader",
        view=None,
        *,
        sun_time=None,
        fps=25,
        jobs=0,
        resume=False,
        progress=None,
    ):
        """Renders a sequence in which parameters go from one value to another.

        `output` is "NAME_####.png" for pictures, numbered from 1, or a film, .mp4 or .gif. `vary` is a dict
        from parameters, given as such or as "NAME.PARAMETER", to pairs of the first and the last value;
        `sun_time` is a pair of hours for the scene's first Sun. Frames are made by `jobs` processes, 0 for one
        on each core; with `resume`, those that are there already stay. `progress` is called with the number of
        frames that are there and of all; it must not use a shell. Returns how many frames were made.
        """
        frames = whole(frames, 1, "frames takes a whole number")
        jobs = whole(jobs, 0, "jobs takes a whole number")
        (fps,) = numbers_in(fps, 1, "fps takes a number of frames per second")
        if vary is not None and not isinstance(vary, Mapping):
            raise WrongTypeError(f"vary takes a dict from parameters to pairs of values, found {vary!r}")
        if progress is not None and not callable(progress):
            raise WrongTypeError(f"progress takes a function of two numbers, found {progress!r}")
        settings = _korl.SequenceSettings(path_of(output), frames, fps, jobs, bool(resume))
        settings.show(*_size(width, height), _path(path), view_name(view, self._session))
        for key, values in (vary or {}).items():
            parameter, ends = self._parameter(key), parts_of(values)
            if ends is None or len(ends) != 2:
                raise WrongTypeError(f'"{parameter}" varies over a pair of values, found {values!r}')
            values = [to_shell(parameter.kind, end, parameter) for end in ends]
            texts = [value if isinstance(value, str) else text_of(value) for value in values]
            settings.vary(parameter.object.name, parameter.name, *texts)
        if sun_time is not None:
            hours = numbers_in(sun_time, 2, "sun_time takes two numbers, the first and the last hour")
            sun_time = ":".join(repr(hour) for hour in hours)
        made, _, _ = self._session.animate(settings, sun_time, progress)
        self._warn()
        return made

    def explain(self, width=640, height=480, path="shader", pixel=None, view=None):
        """Says why the picture is as dark as it is: a dict, whose text (str, print) says it in words.

        `pixel` is one to look at, (x, y) from the left and the top, from 0.
        """
        if pixel is not None:
            ends = parts_of(pixel)
            if ends is None or len(ends) != 2:
                raise WrongTypeError(f"pixel takes a pair of whole numbers (x, y), found {pixel!r}")
            pixel = tuple(whole(end, 0, "pixel takes two whole numbers (x, y)") for end in ends)
        found = self._session.explain(*_size(width, height), _path(path), pixel, view_name(view, self._session))
        self._warn()
        return Explanation(*found)

    def _parameter(self, full_name):
        if isinstance(full_name, Parameter):
            if full_name.object not in self:
                raise InvalidValueError(f"{full_name!r} belongs to no object of this shell")
            return full_name
        if not isinstance(full_name, str) or "." not in full_name:
            raise WrongTypeError(f'expected a parameter or "NAME.PARAMETER", found {full_name!r}')
        name, _, parameter = full_name.rpartition(".")
        return self[name].parameters[parameter]

    def __repr__(self):
        return "<korl.Shell, closed>" if self.closed else f"<korl.Shell of {len(self)} objects>"


def _path(path):
    if text_in(path, "a path") not in _PATHS:
        raise InvalidValueError(f"unknown path {path!r}: {_korl.near_names(path, list(_PATHS), '')}")
    return _PATHS[path]


def _size(width, height):
    return [whole(size, 1, "a picture's size is in whole pixels") for size in (width, height)]
