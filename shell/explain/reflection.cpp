#include "shell/explain/reflection.hpp"

#include "shell/render/material.hpp"

#include <glm/common.hpp>
#include <glm/geometric.hpp>

#include <algorithm>
#include <cmath>

namespace korl {

namespace {

/// Scaled by the largest component first, so that no square over- or underflows; a zero vector stays zero.
glm::vec3 unit(const glm::vec3& value) {
    const float largest = std::max({std::abs(value.x), std::abs(value.y), std::abs(value.z)});
    return largest > 0 ? glm::normalize(value / largest) : glm::vec3(0);
}

} // namespace

float cosineOfIncidence(const SurfacePoint& point, const LightSample& light) {
    return light.incidence == glm::vec3(0) ? 1 : glm::dot(unit(point.normal), unit(-light.incidence));
}

Reflection reflect(const SurfacePoint& point, const LightSample& light, const glm::vec3& eye) {
    if (!light.isFinite())
        return {};
    const glm::vec3 diffuse = light.intensity * point.color;
    if (light.incidence == glm::vec3(0))
        return {diffuse, glm::vec3(0)};
    const float cosine = cosineOfIncidence(point, light);
    if (!(cosine > 0))
        return {};
    const glm::vec3 halfway = unit(unit(-light.incidence) + unit(eye - point.position));
    const float highlight =
        std::pow(std::max(glm::dot(unit(point.normal), halfway), 0.0f), material_shininess);
    return {cosine * diffuse, highlight * material_specular * light.specular_intensity};
}

} // namespace korl
