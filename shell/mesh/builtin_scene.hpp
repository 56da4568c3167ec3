#pragma once

#include "shell/mesh/mesh.hpp"

#include <vector>

namespace korl {

/// A scene to judge light and shade by: a round piece of green, hilly land, a sandstone column that stands on
/// it and a white sphere that hangs beside the column. All of it is made by formula, always the same, about
/// the origin and within a radius of 0.6; fewer than 40 000 triangles. Valid meshes, named "landscape",
/// "column" and "sphere".
std::vector<Mesh> builtinScene();

} // namespace korl
