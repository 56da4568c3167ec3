// A module with one light, whose snippet no driver takes.

#include <doltra/shader_light_source.hpp>
#include <sorvik/creator.hpp>

#include <string>

namespace {

class FaultyLight : public Qelt::ShaderLightSource {
public:
    FaultyLight(const std::string& name, const Qelt::VCreationPreferences& preferences)
        : ShaderLightSource(name, 0, preferences) {}

    void illuminate(const Qelt::VRenderContext& context) const override {
        context.enableLightSource(
            static_cast<const LightState&>(*myState(context.pool()).get()).lightSource());
    }
    std::string lightSnippet() const override {
        return "void getLight_$$(in vec3 vertex, out vec3 incidence, out vec3 intensity, out vec3 specular)\n"
               "{\n"
               "\tintensity = vec3(unheard_of);\n"
               "}\n";
    }
    void fillUniforms(Qelt::RenderNamespace::UniformMap&, Qelt::VRenderContext&) const override {}
};

struct Module {
    Module() { VInitialization::initPlugin(0, "faulty_light", VInitialization::interfaceKey); }
    ~Module() { VInitialization::initPlugin(1, "faulty_light", VInitialization::interfaceKey); }
    Module(const Module&) = delete;
    Module& operator=(const Module&) = delete;

    Qelt::VCreator<FaultyLight, void> creator{std::string("FaultyLight"), 0};
};

const Module module_of_this_library;

} // namespace

extern "C" __attribute__((visibility("default"))) bool
KORL_API_2026_JAN_22__faulty_light(VInitialization* shell) {
    return shell->IsCompatible(VInitialization::interfaceKey);
}
