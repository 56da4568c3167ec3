#pragma once

#include "shell/image/image.hpp"

namespace korl {

/// The picture of an XPM 3 image as a C program holds it: the header "WIDTH HEIGHT COLORS CHARACTERS", a line
/// for each colour, "KEY c #RRGGBB" or "KEY c None", and a line for each row of pixels. Throws Error for
/// anything else. The array must have as many lines as its header says.
Image decodeXpm(const char* const* lines);

} // namespace korl
