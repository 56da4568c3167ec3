#pragma once

#include "shell/mesh/mesh.hpp"

#include <glm/vec3.hpp>
#include <span>
#include <string>

namespace korl {

/// A surface as arrays that belong to somebody else.
struct MeshArrays {
    std::span<const glm::vec3> positions;  ///< scene space
    std::span<const glm::uvec3> triangles; ///< positions by their indices, counter-clockwise from the front
    std::span<const glm::vec3> normals;    ///< one for each position, of any length; none for smooth ones
    std::span<const glm::vec3> colors;     ///< one for each position, 0 to 1; none for a white mesh
};

/// A valid mesh with copies of the arrays. Normals that are given are brought to unit length where they
/// are not within 0.001 of it; where there are none at all, smooth ones are made. Throws InvalidValue for
/// arrays that `validate` refuses.
Mesh meshFromArrays(const std::string& name, const MeshArrays& arrays);

} // namespace korl
