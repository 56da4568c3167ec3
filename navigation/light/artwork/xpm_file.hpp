#pragma once

#include "canvas.hpp"

#include <string>

namespace artwork {

/// The picture as an XPM 3 file, an array of C strings called `name`, with exactly `colours` colours, each of
/// which some pixel has; one of them is "None". Pixels are either clear or opaque, divided at one half.
/// Throws std::length_error where the picture has too few colours of eight bits a channel, or no clear pixel.
std::string encodeXpm(const Picture& picture, const std::string& name, std::size_t colors);

} // namespace artwork
