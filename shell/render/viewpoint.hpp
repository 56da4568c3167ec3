#pragma once

#include <glm/glm.hpp>

namespace korl {

/// Where a frame is seen from, as OpenGL takes it.
struct Viewpoint {
    glm::mat4 view;       ///< scene space to eye space
    glm::mat4 projection; ///< eye space to clip space
    glm::vec3 eye;        ///< the eye in scene space
};

} // namespace korl
