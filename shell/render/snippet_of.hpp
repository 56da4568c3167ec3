#pragma once

#include "shell/base/module_call.hpp"

#include <doltra/light_source.hpp>

#include <string>

namespace korl {

/// The snippet of a light source. Throws Error that names the light if its module throws.
inline std::string snippetOf(const Qelt::RenderNamespace::LightSource& source,
                             const std::string& light_name) {
    return ModuleCall(typeid(source), light_name, "snippet").run([&] { return source.snippet(); });
}

} // namespace korl
