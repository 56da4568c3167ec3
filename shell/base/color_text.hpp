#pragma once

#include <orvid/rgba_float.hpp>

#include <string>

namespace korl {

/// Reads a colour as users write it: "#rrggbb" or "#rrggbbaa" in hexadecimal, or three or four numbers from 0
/// to 1, "red green blue" or "red green blue alpha". Alpha is 1 where it is left out. Throws Error for any
/// other text.
Orvid::rgba_float_t parseColor(const std::string& text);

} // namespace korl
