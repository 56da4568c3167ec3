#pragma once

#include <doltra/uniform_map.hpp>
#include <epoxy/gl.h>

#include <array>
#include <optional>
#include <string>

namespace korl {

/// The floats that a value has as OpenGL holds it, doubles rounded: one to four of them, the rest zero. None
/// for integers, matrices and sequences.
struct UniformFloats {
    int size = 0;
    std::array<float, 4> values{};
};
std::optional<UniformFloats> floatsOf(const Qelt::RenderNamespace::UniformValue& value);

/// Sets a uniform of floats of the program in use; nothing at the location -1.
void uploadFloats(GLint location, const UniformFloats& floats);

/// Whether two uniform values are the same alternative with the same bits; not-a-number equals itself.
bool sameBits(const Qelt::RenderNamespace::UniformValue& a, const Qelt::RenderNamespace::UniformValue& b);

/// Whether all numbers of a value are finite in single precision, as a program gets them.
bool isFinite(const Qelt::RenderNamespace::UniformValue& value);

/// Sets a uniform of the program in use. Values in double precision are rounded to single precision, since
/// snippets declare their uniforms so. An empty sequence sets nothing.
void uploadUniform(GLint location, const Qelt::RenderNamespace::UniformValue& value);

/// The components of a value, separated by blanks, each the shortest text that reads back to the same bits.
std::string uniformText(const Qelt::RenderNamespace::UniformValue& value);

} // namespace korl
