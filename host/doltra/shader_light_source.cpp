#include <doltra/shader_light_source.hpp>

#include <utility>

namespace Qelt {

namespace {

/// The light source of a shader light in one render context. The snippet of a type never changes, so it is
/// fetched once.
class SnippetLightSource final : public RenderNamespace::LightSource {
public:
    explicit SnippetLightSource(std::string snippet) : my_snippet(std::move(snippet)) {}
    std::string snippet() const override { return my_snippet; }

private:
    std::string my_snippet;
};

} // namespace

ShaderLightSource::LightState::LightState(const Tessan::StrongPtr<RenderNamespace::LightSource>& source)
    : my_source(source) {}

ShaderLightSource::LightState::~LightState() = default;

ShaderLightSource::~ShaderLightSource() = default;

bool ShaderLightSource::update(VRequest&, double) {
    return true;
}

bool ShaderLightSource::environment_render(VRenderContext&) const {
    return true;
}

Tessan::StrongPtr<VStateCreatorBase::State> ShaderLightSource::newState() const {
    const Tessan::StrongPtr<RenderNamespace::LightSource> source(new SnippetLightSource(lightSnippet()));
    return Tessan::makeStrong<LightState>(source);
}

void ShaderLightSource::updateLightAtRendering(RenderNamespace::UniformMap& uniforms,
                                               VRenderContext& context) const {
    fillUniforms(uniforms, context);
}

} // namespace Qelt
