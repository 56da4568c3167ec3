// A module with one light, whose snippet no driver takes.

#include <doltra/shader_light.hpp>
#include <sorvik/module.hpp>

#include <string>

namespace {

class FaultyLight : public Qelt::ShaderLight {
public:
    FaultyLight(const std::string& name, const Qelt::VCreationPreferences& preferences)
        : ShaderLight(name, 0, preferences) {}

    std::string lightSnippet() const override {
        return "void getLight_$$(in vec3 vertex, out vec3 incidence, out vec3 intensity, out vec3 specular)\n"
               "{\n"
               "\tintensity = vec3(unheard_of);\n"
               "}\n";
    }
    void fillUniforms(Qelt::RenderNamespace::UniformMap&, Qelt::VRenderContext&) const override {}
};

struct Module {
    Qelt::ModuleAnnouncement announcement{"faulty_light"};
    Qelt::VCreator<FaultyLight, void> creator{std::string("FaultyLight"), 0};
};

const Module module_of_this_library;

} // namespace

KORL_MODULE_ENTRY(faulty_light);
