"""Pictures."""

from collections.abc import Mapping

import numpy

from . import _korl
from ._errors import InvalidValueError, WrongTypeError
from ._strict import Strict, strict
from ._values import array_of, path_of, text_in


@strict
class Image(numpy.ndarray):
    """A picture: an array of height x width x 4 bytes, red, green, blue and alpha, the rows from top to bottom.

    It owns its pixels and outlives its shell. A notebook shows it as a picture.
    """

    __getattr__ = Strict.__getattr__

    def __new__(cls, pixels):
        """An image that shows the pixels of an array of height x width x 4 bytes, without a copy of them."""
        array = array_of(pixels, "an image takes height x width x 4 bytes")
        _require_picture(array)
        return array.view(cls)

    @property
    def width(self):
        """Pixels in a row."""
        _require_picture(self)
        return self.shape[1]

    @property
    def height(self):
        """Rows of pixels."""
        _require_picture(self)
        return self.shape[0]

    def png(self, text=None):
        """The picture as the bytes of a PNG file; `text` is a dict of what it says beside it, by keyword."""
        _require_picture(self)
        if text is not None and not isinstance(text, Mapping):
            raise WrongTypeError(f"text takes a dict of texts by keyword, found {text!r}")
        pairs = [
            tuple(text_in(str(part), "what a picture says beside it") for part in pair) for pair in (text or {}).items()
        ]
        return _korl.encode_png(numpy.ascontiguousarray(self).view(numpy.ndarray), pairs)

    def save(self, file, text=None):
        """Writes the picture into a PNG file, whole or not at all; a name of another suffix is refused."""
        _korl.write_png(path_of(file), self.png(text))

    def _repr_png_(self):
        return self.png() if _is_picture(self) else None


def _is_picture(array):
    return array.ndim == 3 and array.shape[2] == 4 and array.size > 0 and array.dtype == numpy.uint8


def _require_picture(array):
    if not _is_picture(array):
        raise InvalidValueError(
            f"an image takes height x width x 4 bytes, found an array of {array.dtype} of the shape {array.shape}"
        )
