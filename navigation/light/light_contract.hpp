#pragma once

// What the light types share, and nothing in which they differ.

#include <doltra/render_context.hpp>
#include <doltra/uniform_map.hpp>
#include <orvid/physical_space.hpp>

#include <cmath>
#include <GL/gl.h>

namespace tovek {

/// The priority number of every light type but the headlight.
constexpr int light_priority = -199990;

/// Colours are given to `glLightfv` as they are to the uniform map.
using Qelt::RenderNamespace::FloatColor;

/// A vector of the same direction and unit length. The length is taken of the quotients by the largest
/// component, so that no square over- or underflows. A zero vector is not guarded against: it gives
/// not-a-number components.
inline Orvid::PhysicalSpace::vector normalized(const Orvid::PhysicalSpace::vector& v) {
    const double x = std::abs(v.x), y = std::abs(v.y), z = std::abs(v.z);
    const bool y_leads = y > x;
    const double largest = y_leads ? (z > y ? z : y) : (z > x ? z : x);
    double length = 0;
    if (y_leads || z > x || v.x != 0) {
        const double qx = v.x / largest, qy = v.y / largest, qz = v.z / largest;
        length = largest * std::sqrt(qx * qx + qy * qy + qz * qz);
    }
    return {v.x / length, v.y / length, v.z * (1 / length)};
}

/// The OpenGL light that the context has next: `GL_LIGHT0` + n − 1 for light number n.
inline GLenum openGLLight(const Qelt::VRenderContext& context) {
    return GL_LIGHT0 + static_cast<GLenum>(context.lightNumber() - 1);
}

/// The attenuation of a light whose strength does not fall off with distance.
inline void setNoAttenuation(GLenum light) {
    glLightf(light, GL_CONSTANT_ATTENUATION, 1);
    glLightf(light, GL_LINEAR_ATTENUATION, 0);
    glLightf(light, GL_QUADRATIC_ATTENUATION, 0);
}

} // namespace tovek
