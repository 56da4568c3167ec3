#pragma once

#include "tests/support/temporary_folder.hpp"

#include <array>

namespace korl::test {

inline const std::filesystem::path data = KORL_TEST_DATA;

/// A corner of a box, 3 along x, 2 along y and 1 along z, once in each format; all have y up.
inline const std::array<std::string, 8> corner_files{
    "corner.obj",        "corner_text.ply", "corner_binary.ply", "corner_text.stl",
    "corner_binary.stl", "corner.gltf",     "corner.glb",        "corner.3ds"};

} // namespace korl::test
