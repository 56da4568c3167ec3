#include "shell/explain/reflection.hpp"

#include "shell/render/material.hpp"
#include "shell/scene/vectors.hpp"

#include <glm/common.hpp>
#include <glm/geometric.hpp>

#include <algorithm>
#include <cmath>

namespace korl {

float cosineOfIncidence(const SurfacePoint& point, const LightSample& light) {
    return light.incidence == glm::vec3(0)
               ? 1
               : glm::dot(directionOf(point.normal), directionOf(-light.incidence));
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
    const glm::vec3 halfway = directionOf(directionOf(-light.incidence) + directionOf(eye - point.position));
    const float highlight =
        std::pow(std::max(glm::dot(directionOf(point.normal), halfway), 0.0f), material_shininess);
    return {cosine * diffuse, highlight * material_specular * light.specular_intensity};
}

} // namespace korl
