#pragma once

#include "shell/render/gl_objects.hpp"
#include "shell/render/shader_assembly.hpp"

namespace korl {

/// Compiles and links an assembled lighting shader in the current context, its vertex attributes bound to the
/// locations of vertex_attribute_names. Throws Error where the driver refuses; the text names the light and
/// the line of its snippet where the driver's message leads there (see compileErrorText).
Program buildLightingProgram(const AssembledShader& shader);

} // namespace korl
