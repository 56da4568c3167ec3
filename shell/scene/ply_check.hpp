#pragma once

#include <string_view>

namespace korl {

/// Refuses PLY files that must not come before a reader that trusts them: those whose header is incomplete or
/// makes no sense, that hold less than the header tells, and those with a face of fewer than three corners or
/// with a corner that leads to no vertex.
/// @param bytes the whole file, text or binary of either byte order.
/// Throws Error with the reason, which doesn't name the file.
void requireSoundPly(std::string_view bytes);

} // namespace korl
