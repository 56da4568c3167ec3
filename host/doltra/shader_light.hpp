#pragma once

// What the shader lights of modules share.

#include <doltra/render_context.hpp>
#include <doltra/shader_light_source.hpp>
#include <doltra/uniform_map.hpp>
#include <sorvik/slot_access.hpp>

namespace Qelt {

/// Base of a module's lights that are described by a snippet and uniform values alone: `illuminate` hands in
/// the light source that the light has in the context. It is defined here, not in the library, so that it
/// becomes a part of the module.
class ShaderLight : public ShaderLightSource {
public:
    using ShaderLightSource::ShaderLightSource;

    void illuminate(const VRenderContext& context) const override {
        context.enableLightSource(static_cast<const LightState&>(*myState(context.pool())).lightSource());
    }
};

} // namespace Qelt
