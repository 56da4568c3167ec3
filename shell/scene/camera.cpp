#include "shell/scene/camera.hpp"

#include "shell/base/error.hpp"
#include "shell/scene/vectors.hpp"

#include <sorvik/value_trait.hpp>

#include <algorithm>
#include <cmath>
#include <fmt/core.h>
#include <glm/ext/matrix_clip_space.hpp>
#include <glm/ext/matrix_transform.hpp>
#include <glm/geometric.hpp>
#include <glm/trigonometric.hpp>
#include <string>

namespace korl {

namespace {

constexpr glm::dvec3 default_side{0.35, 0.85, 0.45}; ///< where the eye stands as seen from the target
constexpr double fit_margin = 1.05;
constexpr double nearest_by_farthest = 1e-3; ///< leaves a 24-bit depth buffer about 14 bits at the far plane

/// Half of the field of view in the narrower of the picture's two directions, radians.
double narrowerHalfAngle(double fov_degrees, double aspect) {
    const double vertical = glm::radians(fov_degrees) / 2;
    return aspect < 1 ? std::atan(std::tan(vertical) * aspect) : vertical;
}

std::string text(const glm::dvec3& value) {
    return fmt::format("\"{}\"", componentsText(value));
}

void requireFinite(const std::string& what, const glm::dvec3& value) {
    if (!isFinite(value))
        throw InvalidValue(
            fmt::format("the camera's {} is {}, expected three finite numbers", what, text(value)));
}

} // namespace

glm::dmat4 Camera::view() const {
    const glm::dmat4 turn = glm::lookAt(glm::dvec3(0), directionOf(target - position), directionOf(up));
    return glm::translate(turn, -position);
}

glm::dmat4 Camera::projection(double aspect, const Ball& scene) const {
    const glm::dvec3 sight = target - position;
    const double depth = glm::dot(scene.center - position, directionOf(sight));
    // A little more than the radius, so that rounding cuts nothing off, and never nothing.
    const double reach = std::max({scene.radius * 1.01, std::abs(depth) * 1e-3, glm::length(sight) * 1e-6});
    const double far = depth + reach > 0 ? depth + reach : reach;
    const double near = std::max(depth - reach, far * nearest_by_farthest);
    return glm::perspectiveRH_NO(glm::radians(fov_degrees), aspect, near, far);
}

void validate(const Camera& camera) {
    requireFinite("position", camera.position);
    requireFinite("target", camera.target);
    requireFinite("up direction", camera.up);
    // Both conditions are needed: not-a-number meets neither.
    if (!(camera.fov_degrees > 0 && camera.fov_degrees < 180))
        throw InvalidValue(
            fmt::format("the camera's field of view is {} degrees, expected more than 0 and less than 180",
                        Qelt::VValueTrait<double>::Text(camera.fov_degrees)));
    const glm::dvec3 sight = camera.target - camera.position;
    if (sight == glm::dvec3(0))
        throw InvalidValue(fmt::format(
            "the camera's position and target are both {}, so that it has no line of sight; move one of them",
            text(camera.target)));
    if (!isFinite(sight))
        throw InvalidValue(
            fmt::format("the camera's position {} and target {} are too far apart; move them closer together",
                        text(camera.position), text(camera.target)));
    if (camera.up == glm::dvec3(0))
        throw InvalidValue("the camera's up direction is \"0 0 0\", which leads nowhere; give another one");
    if (glm::length(glm::cross(directionOf(sight), directionOf(camera.up))) < 1e-6)
        throw InvalidValue(
            fmt::format("the camera's up direction {} lies along its line of sight; give one across it",
                        text(camera.up)));
}

Camera fitCamera(const Ball& ball, double aspect, double fov_degrees) {
    Camera camera;
    camera.fov_degrees = fov_degrees;
    const double radius = ball.radius > 0 ? ball.radius : 1;
    // A ball just touches the cone of half angle a around the line of sight from the distance radius /
    // sin(a).
    const double distance = fit_margin * radius / std::sin(narrowerHalfAngle(camera.fov_degrees, aspect));
    camera.target = ball.center;
    camera.position = ball.center + distance * glm::normalize(default_side);
    return camera;
}

} // namespace korl
