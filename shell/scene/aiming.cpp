#include "shell/scene/aiming.hpp"

#include "shell/base/error.hpp"
#include "shell/base/printable.hpp"

#include <orvid/physical_space.hpp>
#include <sorvik/component_text.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <glm/geometric.hpp>

namespace korl {

namespace {

using Orvid::PhysicalSpace;

/// The parameters by which lights are aimed.
constexpr const char* direction_name = "direction"; ///< the way in which parallel light travels
constexpr const char* position_name = "lightposition";
constexpr const char* target_name = "shineat";

std::string text(const glm::dvec3& value) {
    return Qelt::componentsToText(std::array{value.x, value.y, value.z});
}

bool has(const Qelt::VObject& light, const char* name, const std::type_info& type) {
    const Qelt::VParameter* const parameter = light.findParameter(name);
    return parameter && parameter->type() == type;
}

bool hasParallelRays(const Qelt::VObject& light) {
    return has(light, direction_name, typeid(PhysicalSpace::vector));
}

void requireAimable(const Qelt::VObject& light) {
    if (!hasParallelRays(light) && !(has(light, position_name, typeid(PhysicalSpace::point)) &&
                                     has(light, target_name, typeid(PhysicalSpace::point))))
        throw WrongType(inQuotes(light.Name()) + ", a " + printable(light.type_key()) +
                        ", has no direction to set; a DirectionalLight and a DistanceLight have one");
}

/// A vector's direction; scaled first, since the squares of very large or small components leave the range of
/// double.
glm::dvec3 directionOf(const glm::dvec3& vector) {
    return glm::normalize(vector / std::max({std::abs(vector.x), std::abs(vector.y), std::abs(vector.z)}));
}

void requireFinite(const Qelt::VObject& light, const char* what, const glm::dvec3& value) {
    if (!std::isfinite(value.x) || !std::isfinite(value.y) || !std::isfinite(value.z))
        throw InvalidValue("cannot aim " + inQuotes(light.Name()) + ": the " + what + " is " +
                           inQuotes(text(value)) + ", expected three finite numbers");
}

glm::dvec3 pointIn(const Qelt::VObject& light, const char* name) {
    std::array<double, 3> read{};
    Qelt::componentsFromText(read, light.findParameter(name)->globalValue().Text());
    return {read[0], read[1], read[2]};
}

} // namespace

void aimAt(Scene& scene, const std::string& name, const glm::dvec3& point) {
    const Qelt::VObject& light = scene.object(name);
    requireAimable(light);
    requireFinite(light, "point", point);
    const bool parallel = hasParallelRays(light);
    if (point == (parallel ? glm::dvec3(0) : pointIn(light, position_name)))
        throw InvalidValue("cannot aim " + inQuotes(name) + " at " + inQuotes(text(point)) + ": " +
                           (parallel ? "its rays are seen from the origin, and there is no way from there "
                                       "to itself"
                                     : "the light stands there itself; aim it elsewhere or move it"));
    scene.setParameter(name, parallel ? direction_name : target_name,
                       text(parallel ? directionOf(point) : point));
}

void shineFrom(Scene& scene, const std::string& name, const glm::dvec3& direction) {
    const Qelt::VObject& light = scene.object(name);
    requireAimable(light);
    requireFinite(light, "direction", direction);
    if (direction == glm::dvec3(0))
        throw InvalidValue("cannot aim " + inQuotes(name) + ": the direction \"0 0 0\" leads nowhere");
    const glm::dvec3 from = directionOf(direction);
    if (hasParallelRays(light)) {
        // Subtracted from zero, so that no component becomes a negative zero.
        scene.setParameter(name, direction_name, text(glm::dvec3(0) - from));
        return;
    }
    const glm::dvec3 target = pointIn(light, target_name);
    const double distance = glm::distance(pointIn(light, position_name), target);
    scene.setParameter(name, position_name, text(target + from * (distance > 0 ? distance : 1)));
}

} // namespace korl
