#include "shell/explain/opengl_light.hpp"

#include <epoxy/gl.h>
#include <glm/geometric.hpp>
#include <glm/mat3x3.hpp>
#include <glm/matrix.hpp>
#include <glm/trigonometric.hpp>
#include <glm/vec4.hpp>

#include <algorithm>
#include <cmath>

namespace korl {

namespace {

glm::vec4 vectorOf(GLenum light, GLenum name) {
    glm::vec4 values(0);
    glGetLightfv(light, name, &values.x);
    return values;
}

} // namespace

// NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): one after the other, since some need others
OpenGLLight::OpenGLLight(int number, const glm::mat4& view) {
    const GLenum light = GL_LIGHT0 + static_cast<GLenum>(number - 1);
    const glm::mat4 to_scene = glm::inverse(view);
    my_ambient = glm::vec3(vectorOf(light, GL_AMBIENT));
    my_diffuse = glm::vec3(vectorOf(light, GL_DIFFUSE));
    my_specular = glm::vec3(vectorOf(light, GL_SPECULAR));
    const glm::vec4 position = vectorOf(light, GL_POSITION);
    my_is_at_infinity = position.w == 0;
    const glm::vec4 in_scene = to_scene * position;
    my_position = my_is_at_infinity ? glm::vec3(in_scene) : glm::vec3(in_scene) / position.w;
    my_spot_direction = glm::mat3(to_scene) * glm::vec3(vectorOf(light, GL_SPOT_DIRECTION));
    my_cutoff = vectorOf(light, GL_SPOT_CUTOFF).x;
    my_spot_exponent = vectorOf(light, GL_SPOT_EXPONENT).x;
    my_constant = vectorOf(light, GL_CONSTANT_ATTENUATION).x;
    my_linear = vectorOf(light, GL_LINEAR_ATTENUATION).x;
    my_quadratic = vectorOf(light, GL_QUADRATIC_ATTENUATION).x;
}

LightSample OpenGLLight::directedAt(const glm::vec3& point) const {
    const float weakening = attenuationAt(point);
    return {travelTo(point), weakening * my_diffuse, weakening * my_specular};
}

LightSample OpenGLLight::ambientAt(const glm::vec3& point) const {
    return {glm::vec3(0), attenuationAt(point) * my_ambient, glm::vec3(0)};
}

glm::vec3 OpenGLLight::travelTo(const glm::vec3& point) const {
    return glm::normalize(my_is_at_infinity ? -my_position : point - my_position);
}

float OpenGLLight::attenuationAt(const glm::vec3& point) const {
    const float distance = glm::distance(point, my_position);
    const float attenuation =
        my_is_at_infinity ? 1 : 1 / (my_constant + (my_linear + my_quadratic * distance) * distance);
    if (my_cutoff == 180)
        return attenuation;
    const float along = glm::dot(travelTo(point), glm::normalize(my_spot_direction));
    if (along < std::cos(glm::radians(my_cutoff)))
        return 0;
    return attenuation * std::pow(std::max(along, 0.0f), my_spot_exponent);
}

} // namespace korl
