#pragma once

#include <string_view>

namespace korl {

/// Refuses PLY files that must not come before a reader that trusts them: those whose header is incomplete or
/// makes no sense, has an element or a property twice, or lists where the reader takes none; that hold less
/// than the header tells, numbers that are not of their type, or blank lines among them; and those with a
/// face of fewer than three corners or more than `max_corners`, or with a corner that leads to no vertex.
/// @param file the whole file, text or binary of either byte order.
/// Throws Error with the reason and, in a text, its line; it doesn't name the file.
void requireSoundPly(std::string_view file);

} // namespace korl
