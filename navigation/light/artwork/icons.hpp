#pragma once

#include "canvas.hpp"

#include <string>
#include <vector>

namespace artwork {

/// A burning torch, upright: flame, iron basket, wooden shaft. The flame is drawn to the width of the
/// picture, the shaft takes what is left of the height; `height` is best at two to three times `width`.
Picture drawTorch(int width, int height);

/// A round headlamp seen from the side and a little from the front, shining to the right; square.
Picture drawHeadlight(int size);

/// The module's icon files, byte for byte. Nothing but their content comes from a compiler or a library.
std::vector<std::uint8_t> torchPng();
std::string torchXpm();
std::string headlightXpm();

} // namespace artwork
