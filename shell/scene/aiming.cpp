#include "shell/scene/aiming.hpp"

#include "shell/base/error.hpp"
#include "shell/base/printable.hpp"
#include "shell/catalogue/parameter_value.hpp"
#include "shell/scene/vectors.hpp"

#include <orvid/physical_space.hpp>

#include <array>
#include <fmt/core.h>
#include <glm/geometric.hpp>

namespace korl {

namespace {

using Orvid::PhysicalSpace;

/// The parameters by which lights are aimed.
constexpr const char* direction_name = "direction"; ///< the way in which parallel light travels
constexpr const char* position_name = "lightposition";
constexpr const char* target_name = "shineat";

template <class T>
bool has(const Qelt::VObject& light, const char* name) {
    const Qelt::VParameter* const parameter = light.findParameter(name);
    return parameter && parameter->type() == typeid(T);
}

/// Sets a point or a vector.
template <class T>
void set(Scene& scene, const std::string& light, const char* name, const glm::dvec3& value) {
    scene.setParameter(light, name, *makeValue(typeid(T), std::array{value.x, value.y, value.z}).get());
}

bool hasParallelRays(const Qelt::VObject& light) {
    return has<PhysicalSpace::vector>(light, direction_name);
}

void requireAimable(const Qelt::VObject& light) {
    if (!hasParallelRays(light) &&
        !(has<PhysicalSpace::point>(light, position_name) && has<PhysicalSpace::point>(light, target_name)))
        throw WrongType(
            fmt::format("{}, a {}, has no direction to set: it lacks the parameter \"direction\", "
                        "and \"lightposition\" with \"shineat\"",
                        inQuotes(light.Name()), printable(light.type_key())));
}

void requireFinite(const Qelt::VObject& light, const char* what, const glm::dvec3& value) {
    if (!isFinite(value))
        throw InvalidValue(fmt::format("cannot aim {}: the {} is {}, expected three finite numbers",
                                       inQuotes(light.Name()), what, inQuotes(componentsText(value))));
}

glm::dvec3 pointIn(const Qelt::VObject& light, const char* name) {
    const std::vector<double> read = numbersOf(light.findParameter(name)->globalValue());
    if (read.size() != 3)
        throw InvalidValue(fmt::format("cannot aim {}: its {} cannot be read", inQuotes(light.Name()), name));
    return {read[0], read[1], read[2]};
}

} // namespace

void aimAt(Scene& scene, const std::string& name, const glm::dvec3& point) {
    const Qelt::VObject& light = scene.object(name);
    requireAimable(light);
    requireFinite(light, "point", point);
    const bool parallel = hasParallelRays(light);
    if (point == (parallel ? glm::dvec3(0) : pointIn(light, position_name)))
        throw InvalidValue(fmt::format(
            "cannot aim {} at {}: {}", inQuotes(name), inQuotes(componentsText(point)),
            parallel ? "its rays are seen from the origin, and there is no way from there to itself"
                     : "the light stands there itself; aim it elsewhere or move it"));
    if (parallel)
        set<PhysicalSpace::vector>(scene, name, direction_name, directionOf(point));
    else
        set<PhysicalSpace::point>(scene, name, target_name, point);
}

void shineFrom(Scene& scene, const std::string& name, const glm::dvec3& direction) {
    const Qelt::VObject& light = scene.object(name);
    requireAimable(light);
    requireFinite(light, "direction", direction);
    if (direction == glm::dvec3(0))
        throw InvalidValue(
            fmt::format("cannot aim {}: the direction \"0 0 0\" leads nowhere", inQuotes(name)));
    const glm::dvec3 from = directionOf(direction);
    if (hasParallelRays(light)) {
        // Subtracted from zero, so that no component becomes a negative zero.
        set<PhysicalSpace::vector>(scene, name, direction_name, glm::dvec3(0) - from);
        return;
    }
    const glm::dvec3 target = pointIn(light, target_name);
    const double distance = glm::distance(pointIn(light, position_name), target);
    set<PhysicalSpace::point>(scene, name, position_name, target + from * (distance > 0 ? distance : 1));
}

} // namespace korl
