#pragma once

// What the light types share, and nothing in which they differ.

#include <doltra/render_context.hpp>
#include <orvid/fixed_array.hpp>
#include <orvid/rgba_float.hpp>
#include <sorvik/slot.hpp>

#include <GL/gl.h>

namespace tovek {

/// The priority number of every light type but the headlight.
constexpr int light_priority = -199990;

/// A colour as the uniform map and `glLightfv` take it: red, green, blue, alpha.
using FloatColor = Orvid::FixedArray<float, 4>;

inline FloatColor floatColor(const Orvid::rgba_float_t& color) {
    return {color.r, color.g, color.b, color.a};
}

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

/// The OpenGL light that the context has next: `GL_LIGHT0` + n − 1 for light number n.
inline GLenum openGLLight(const Qelt::VRenderContext& context) {
    return GL_LIGHT0 + static_cast<GLenum>(context.lightNumber() - 1);
}

} // namespace tovek
