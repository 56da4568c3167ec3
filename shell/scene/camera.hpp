#pragma once

#include "shell/mesh/mesh.hpp"

#include <glm/mat4x4.hpp>

namespace korl {

/// Where a scene is seen from: an eye in scene space that looks at a target.
struct Camera {
    glm::dvec3 position{0, 0, 0};
    glm::dvec3 target{0, 0, 0};
    glm::dvec3 up{
        0, 0, 1}; ///< points upwards in the picture; of any length, at any angle but along the line of sight
    double fov_degrees = 30; ///< the angle between the picture's lower and upper edge

    /// Scene space to eye space: the eye at the origin looks along -z, x to the right, y up. The camera must
    /// be valid.
    glm::dmat4 view() const;

    /// Eye space to OpenGL's clip space. The near and the far plane enclose the ball as closely as the depth
    /// buffer's precision allows: the near plane is never nearer than a thousandth of the far plane's
    /// distance, also where the eye is inside the ball or the ball behind it. The camera must be valid.
    /// @param aspect the picture's width divided by its height, above 0.
    glm::dmat4 projection(double aspect, const Ball& scene) const;
};

/// Throws Error that says what the camera has and what it takes: a number that is not finite, an eye at the
/// target, an up direction that is zero or along the line of sight, a field of view outside (0, 180) degrees.
void validate(const Camera& camera);

/// A camera that sees the whole ball in the narrower of the picture's two directions, with 5 % of the radius
/// to spare. It looks down a little from the +y side, where the fronts of models face and the noon sun of
/// northern latitudes stands: along -(0.35, 0.85, 0.45). A ball without extent is seen as if its radius were
/// 1.
/// @param aspect the picture's width divided by its height, above 0.
/// @param fov_degrees the field of view, above 0 and below 180; for any other the camera is not valid.
Camera fitCamera(const Ball& ball, double aspect, double fov_degrees = Camera().fov_degrees);

} // namespace korl
