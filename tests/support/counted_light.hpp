#pragma once

#include <doltra/shader_light.hpp>

#include <string>
#include <utility>

namespace korl::test {

/// A shader light of the tests' own: a snippet given at its making, and one uniform.
class CountedLight : public Qelt::ShaderLight {
public:
    explicit CountedLight(const std::string& name, std::string snippet_text = "void getLight_$$() {}",
                          int priority = 0)
        : ShaderLight(name, priority, {}), text(std::move(snippet_text)) {
        enableRequestProcessing();
    }

    std::string lightSnippet() const override {
        ++snippets_fetched;
        return text;
    }
    void fillUniforms(Qelt::RenderNamespace::UniformMap& uniforms, Qelt::VRenderContext&) const override {
        ++fills;
        Qelt::RenderNamespace::writeUniform(uniforms, "Strength$$", strength);
    }

    std::string text;
    float strength = 1;
    mutable int snippets_fetched = 0, fills = 0;
};

} // namespace korl::test
