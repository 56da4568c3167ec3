"""Where a scene is seen from."""

from . import _korl
from ._errors import InvalidValueError
from ._strict import Strict
from ._values import numbers_in, require, triple


class Camera(Strict):
    """The camera of a shell's scene, in scene space, z up.

    Until something is set, every picture is taken from where all of the scene is seen in it. From then on the
    camera stays where it is; what was not set is such that all is seen in a picture of 4:3.
    """

    __slots__ = ("_session",)

    def __init__(self, session):
        require(session, _korl.Session, "a Camera comes from a shell: shell.camera")
        object.__setattr__(self, "_session", session)

    position = property(lambda self: tuple(self._session.camera()[0]), doc="Where the eye is.")
    target = property(lambda self: tuple(self._session.camera()[1]), doc="What it looks at.")
    up = property(lambda self: tuple(self._session.camera()[2]), doc="What is up in the picture; of any length.")
    fov = property(lambda self: self._session.camera()[3], doc="The angle from lower to upper edge, degrees.")

    @position.setter
    def position(self, point):
        self.set(position=point)

    @target.setter
    def target(self, point):
        self.set(target=point)

    @up.setter
    def up(self, direction):
        self.set(up=direction)

    @fov.setter
    def fov(self, degrees):
        self.set(fov=degrees)

    def set(self, position=None, target=None, up=None, fov=None):
        """Changes several of its values at once; None leaves one as it is."""
        given = [
            None if value is None else triple(value, f"the camera's {name}")
            for name, value in (("position", position), ("target", target), ("up", up))
        ]
        if fov is not None:
            (fov,) = numbers_in(fov, 1, "the camera's fov takes a number of degrees")
        self._session.set_camera(*given, fov)

    def fit(self, aspect=4 / 3):
        """Moves it to where all of the scene is seen in pictures of an aspect, width by height; `fov` stays."""
        (aspect,) = numbers_in(aspect, 1, "fit takes the width of the picture divided by its height")
        if aspect <= 0:
            raise InvalidValueError(f"the aspect of a picture is above 0, found {aspect!r}")
        self._session.fit_camera(aspect)

    def __repr__(self):
        return f"<korl.Camera at {self.position} to {self.target}, fov {self.fov}>"
