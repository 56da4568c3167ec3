#pragma once

// What the light types share, and nothing in which they differ.

#include <doltra/render_context.hpp>
#include <doltra/shader_light_source.hpp>
#include <doltra/uniform_map.hpp>
#include <orvid/fixed_array.hpp>
#include <orvid/physical_space.hpp>
#include <orvid/rgba_float.hpp>
#include <sorvik/slot.hpp>
#include <sorvik/value.hpp>

#include <cmath>
#include <GL/gl.h>

namespace tovek {

/// The priority number of every light type but the headlight.
constexpr int light_priority = -199990;

/// A colour as the uniform map and `glLightfv` take it: red, green, blue, alpha.
using FloatColor = Orvid::FixedArray<float, 4>;

/// Reads a slot in a context. `Held` says what kind of value is taken: `VValue<T>` one that is held as such
/// or derived from it, `VTypedValueBase<T>` any value of type `T`, a computed one too.
/// @returns `fallback` if the slot holds no live parameter, or its value is of another kind or cannot be
/// read.
template <class Held, class T>
T readOr(const T& fallback, const Qelt::VSlot& slot, Qelt::ValuePool& pool) {
    T value = fallback;
    if (const auto* const held = dynamic_cast<const Held*>(slot.getValueBase(pool)))
        held->getValue(value);
    return value;
}

/// The read that most parameters get: any value of the slot's type.
template <class T>
T readTypedOr(const T& fallback, const Qelt::VSlot& slot, Qelt::ValuePool& pool) {
    return readOr<Qelt::VTypedValueBase<T>>(fallback, slot, pool);
}

/// Attaches a property for editors to a slot's parameter, if the slot holds one.
inline void setProperty(const Qelt::VSlot& slot, const char* name, double value) {
    if (Qelt::VParameter* const parameter = slot.parameter())
        parameter->setProperty(name, Qelt::VValue<double>(value));
}

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

/// `illuminate` of the shader lights: hands the light source of the context's state in.
inline void enableLightSourceOf(const Qelt::ShaderLightSource& light, const Qelt::VRenderContext& context) {
    using LightState = Qelt::ShaderLightSource::LightState;
    context.enableLightSource(
        static_cast<const LightState&>(*light.myState(context.pool()).get()).lightSource());
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
