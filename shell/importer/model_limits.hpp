#pragma once

#include <cstddef>

namespace korl {

/// The most corners of a face: cutting it into triangles takes time by the square of their number.
inline constexpr unsigned max_corners = 1024;

/// How deep nodes may lie in each other: what walks through them goes as deep.
inline constexpr std::size_t max_node_levels = 64;

} // namespace korl
