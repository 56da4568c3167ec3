// A module with lights that end badly: in the operation that the environment variable KORL_TEST_OPERATION
// names, in the way that KORL_TEST_END tells.

#include <doltra/shader_light.hpp>
#include <sorvik/module.hpp>

#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <string>

namespace {

using namespace Qelt;

int callMyself(int depth) {
    volatile char space[4096] = {};
    return depth == 0 ? space[0] : callMyself(depth + 1) + space[depth % 4096];
}

std::string wanted(const char* variable) {
    const char* const value = std::getenv(variable);
    return value ? value : "";
}

void during(const std::string& operation) {
    if (wanted("KORL_TEST_OPERATION") != operation)
        return;
    const std::string end = wanted("KORL_TEST_END");
    if (end == "throw")
        throw std::runtime_error("this light\nis odd");
    if (end == "throw a number")
        throw 5;
    if (end == "exit")
        std::exit(0);
    if (end == "abort")
        std::abort();
    if (end == "segmentation fault")
        std::raise(SIGSEGV);
    if (end == "stack overflow")
        std::exit(callMyself(1));
}

constexpr const char* text =
    "void getLight_$$(in vec3 vertex, out vec3 incidence, out vec3 intensity, out vec3 specular)\n"
    "{ incidence = vec3(0); intensity = vec3(0.5, 0, 0); specular = vec3(0); }\n";

/// Lights from everywhere, by a snippet.
struct OddLight : ShaderLight {
    OddLight(const std::string& name, const VCreationPreferences& preferences)
        : ShaderLight(name, 0, preferences) {
        during("creation");
        enableRequestProcessing();
    }
    ~OddLight() override { during("destruction"); }
    bool update(VRequest&, double) override {
        during("update");
        return true;
    }
    void illuminate(const VRenderContext& context) const override {
        during("illuminate");
        ShaderLight::illuminate(context);
    }
    std::string lightSnippet() const override { return text; }
    void fillUniforms(RenderNamespace::UniformMap&, VRenderContext&) const override {
        during("fillUniforms");
    }
};

/// The same with a light source of its own.
struct OddDirectLight : VLightSource {
    struct Source : RenderNamespace::LightSource {
        std::string snippet() const override {
            during("snippet");
            return text;
        }
    };
    OddDirectLight(const std::string& name, const VCreationPreferences& preferences)
        : VLightSource(name, 0, preferences) {}
    void illuminate(const VRenderContext& context) const override { context.enableLightSource(source); }
    bool environment_render(VRenderContext&) const override {
        during("environment_render");
        return true;
    }

    Tessan::StrongPtr<RenderNamespace::LightSource> source{new Source};
};

struct Module {
    ModuleAnnouncement announcement{"odd_lights"};
    VCreator<OddLight, void> odd{std::string("OddLight"), 0};
    VCreator<OddDirectLight, void> direct{std::string("OddDirectLight"), 0};
};

const Module module_of_this_library;

} // namespace

KORL_MODULE_ENTRY(odd_lights);
