#pragma once

#include <glm/glm.hpp>

namespace korl {

class Scene;

/// Where a frame is seen from, as OpenGL takes it.
struct Viewpoint {
    glm::mat4 view;       ///< scene space to eye space
    glm::mat4 projection; ///< eye space to clip space
    glm::vec3 eye;        ///< the eye in scene space
};

/// Where a scene is seen from: its camera or, where it has none, one that sees all of it.
/// @param aspect the picture's width divided by its height, above 0. Throws Error for a camera that is not
/// valid.
Viewpoint viewpointOf(const Scene& scene, double aspect);

} // namespace korl
