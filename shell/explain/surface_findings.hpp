#pragma once

#include "shell/explain/explanation.hpp"
#include "shell/explain/g_buffer.hpp"

#include <glm/vec3.hpp>
#include <vector>

namespace korl {

/// What is wrong with the meshes of a scene as a picture shows them: none in view, placeholders for normals,
/// normals that point away from the camera, black colours.
/// @param coverage the share of the picture that shows a mesh, 0 to 1.
/// @param seen places spread over all that is seen.
/// @param eye in scene space.
std::vector<Finding> findOnSurfaces(GBuffer::Meshes meshes, float coverage,
                                    const std::vector<SurfacePoint>& seen, const glm::vec3& eye);

} // namespace korl
