#pragma once

#include "shell/scene/scene.hpp"

#include <glm/vec3.hpp>
#include <string>

namespace korl {

/// Makes a light shine towards a point of the scene: light travels to it. A light that stands at a place
/// ("lightposition", "shineat") keeps its place; one of parallel rays ("direction") has none, and shines as
/// if from the origin.
/// Throws WrongType for a light that has no direction to set, InvalidValue for a point that is not finite or
/// where the light itself stands; nothing is changed then.
void aimAt(Scene& scene, const std::string& light, const glm::dvec3& point);

/// Makes a light come from a direction, of any length: a lamp in the zenith shines from (0, 0, 1), and its
/// light travels along (0, 0, -1). A light that stands at a place goes to the other side of what it shines
/// at, at the distance that it has, or 1 where it has none.
/// Throws WrongType for a light that has no direction to set, InvalidValue for a direction that is zero or
/// not finite; nothing is changed then.
void shineFrom(Scene& scene, const std::string& light, const glm::dvec3& direction);

} // namespace korl
