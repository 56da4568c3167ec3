#pragma once

#include "shell/render/light_sampler.hpp"

#include <glm/mat4x4.hpp>
#include <glm/vec3.hpp>

namespace korl {

/// One of OpenGL's fixed-function lights, as a light has set it up: a copy of its state.
class OpenGLLight {
public:
    /// Reads the state of a light of the context that is current.
    /// @param number of the light, from 1.
    /// @param view scene space to eye space, in which OpenGL keeps its lights. Only turned and moved.
    OpenGLLight(int number, const glm::mat4& view);

    /// What it gives at a point in scene space, by the lighting equation of the OpenGL specification (version
    /// 2.1, section 2.14.1): the attenuation and the spot's cone are in the intensities.
    LightSample directedAt(const glm::vec3& point) const;

    /// Its ambient light there, which has no direction.
    LightSample ambientAt(const glm::vec3& point) const;

    /// The ambient light of one that is taken for its ambient light alone: the same everywhere.
    LightSample ambientAlone() const { return {glm::vec3(0), my_ambient, glm::vec3(0)}; }

private:
    glm::vec3 travelTo(const glm::vec3& point) const;
    float attenuationAt(const glm::vec3& point) const;

    glm::vec3 my_ambient, my_diffuse, my_specular;
    glm::vec3 my_position; ///< in scene space; of a light at infinity, the direction to it
    bool my_is_at_infinity;
    glm::vec3 my_spot_direction;       ///< in scene space
    float my_cutoff, my_spot_exponent; ///< degrees; 180 for a light without a cone
    float my_constant, my_linear, my_quadratic;
};

} // namespace korl
