#pragma once

#include "canvas.hpp"

#include <cstdint>
#include <vector>

namespace artwork {

/// The picture as a PNG file of 16 bits a channel, RGBA, of exactly `size` bytes. A private chunk without
/// meaning fills it up. Throws std::length_error where the picture takes more.
std::vector<std::uint8_t> encodePng(const Picture& picture, std::size_t size);

} // namespace artwork
