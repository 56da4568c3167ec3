#pragma once

#include "tests/support/loaded_module.hpp"

#include <doltra/render_context.hpp>
#include <doltra/renderable.hpp>
#include <doltra/shader_light_source.hpp>
#include <sorvik/creator.hpp>
#include <sorvik/value_pool.hpp>

#include <string>

namespace korl::test {

/// One light of the loaded module, and two render contexts to look at it in.
class ModuleLight {
public:
    using LightSource = Qelt::RenderNamespace::LightSource;

    explicit ModuleLight(const std::string& its_type)
        : type(its_type), my_object(Qelt::VCreatorBase::find(type)->create("light")),
          light(dynamic_cast<Qelt::RenderAble&>(*my_object)) {}

    /// The light source of the first or the other context after a frame in it, its uniforms filled.
    LightSource& source() { return sourceAfterFrame(context, pool); }
    LightSource& otherSource() { return sourceAfterFrame(other_context, other_pool); }

    /// A uniform of the light in its first context, as the alternative that it is expected to be.
    template <class Alternative>
    Alternative uniform(const std::string& name) {
        return std::get<Alternative>(source().uniforms().at(name));
    }

    Qelt::VParameter& parameter(const std::string& name) { return *light.findParameter(name); }

    const std::string type;

private:
    LightSource& sourceAfterFrame(Qelt::VRenderContext& in,
                                  const Tessan::StrongPtr<Qelt::ValuePool>& values) {
        Qelt::VRequest request(values);
        in.beginRendering();
        EXPECT_TRUE(light.request(request, 0));
        light.illuminate(in);
        EXPECT_EQ(in.enabledLightSources().size(), 1u);
        auto& found = *in.enabledLightSources()[0].get();
        if (const auto* const shader_light = dynamic_cast<Qelt::ShaderLightSource*>(&light))
            shader_light->updateLightAtRendering(found.uniforms(), in);
        return found;
    }

    LoadedModule my_module;
    Tessan::StrongPtr<Qelt::VObject> my_object;

public:
    Qelt::RenderAble& light;
    const Tessan::StrongPtr<Qelt::ValuePool> pool{new Qelt::ValuePool}, other_pool{new Qelt::ValuePool};
    Qelt::VRenderContext context{pool}, other_context{other_pool};
};

} // namespace korl::test
