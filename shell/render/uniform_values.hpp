#pragma once

#include <doltra/uniform_map.hpp>
#include <epoxy/gl.h>

#include <string>

namespace korl {

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
