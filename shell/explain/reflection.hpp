#pragma once

#include "shell/explain/g_buffer.hpp"
#include "shell/render/light_sampler.hpp"

#include <glm/vec3.hpp>

namespace korl {

/// What a surface sends to the eye of the light that falls on it: red, green and blue, 1 for white.
struct Reflection {
    glm::vec3 diffuse{0};  ///< of ambient light, too
    glm::vec3 specular{0}; ///< of the highlights

    Reflection& operator+=(const Reflection& other) {
        diffuse += other.diffuse;
        specular += other.specular;
        return *this;
    }
    glm::vec3 sum() const { return diffuse + specular; }
};

/// The cosine of the angle between a surface's normal and the direction to the light, -1 to 1; 0 where either
/// has no length. Light of zero incidence comes from everywhere and counts as 1.
float cosineOfIncidence(const SurfacePoint& point, const LightSample& light);

/// How the material of all meshes (shell/render/material.hpp) reflects a light, before all lights are summed
/// and clamped: the Blinn-Phong model (J. F. Blinn, "Models of Light Reflection for Computer Synthesized
/// Pictures", 1977) as the lighting shader evaluates it, one-sided and with a local viewer. A light that is
/// not finite adds nothing.
/// @param eye in scene space.
Reflection reflect(const SurfacePoint& point, const LightSample& light, const glm::vec3& eye);

} // namespace korl
