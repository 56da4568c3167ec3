#pragma once

#include <doltra/export.hpp>
#include <doltra/uniform_map.hpp>
#include <doltra/vlight_source.hpp>

#include <string>

namespace Qelt {

/// A light that is described by a GLSL snippet and uniform values alone: the base keeps one light source for
/// each render context, and a type says what its snippet is and how its uniforms are filled.
///
/// The operations stand in the order of the virtual table that the light types are built for.
class DOLTRA_EXPORT ShaderLightSource : public VLightSource {
public:
    /// What a shader light keeps for one render context.
    class DOLTRA_EXPORT LightState : public State {
    public:
        explicit LightState(const Tessan::StrongPtr<RenderNamespace::LightSource>& source);
        ~LightState() override;

        const Tessan::StrongPtr<RenderNamespace::LightSource>& lightSource() const noexcept {
            return my_source;
        }

    private:
        Tessan::StrongPtr<RenderNamespace::LightSource> my_source;
    };

    using VLightSource::VLightSource;
    ~ShaderLightSource() override;

    /// Has nothing to bring up to date: the uniforms are filled at rendering. Returns true.
    bool update(VRequest& request, double time) override;

    /// Sets up no fixed-function light. Returns true.
    bool environment_render(VRenderContext& context) const override;
    using VLightSource::environment_render;

    /// A state with a new light source that gives this light's snippet.
    Tessan::StrongPtr<State> newState() const override;

    /// The GLSL text of the type, "$$" included.
    virtual std::string lightSnippet() const = 0;

    /// Writes the uniform values for one rendering, read from the context's pool.
    virtual void fillUniforms(RenderNamespace::UniformMap& uniforms, VRenderContext& context) const = 0;

    /// Called by the renderer for each rendering: fills the uniforms.
    virtual void updateLightAtRendering(RenderNamespace::UniformMap& uniforms, VRenderContext& context) const;
};

} // namespace Qelt
