// How long frames take: the built-in scene at 640x480 under some AmbientLights, on each path, and what it
// takes to make the first one and to load large scene files. Run it on a release build; compare figures of
// one run only.

#include "shell/mesh/builtin_scene.hpp"
#include "shell/plugins/plugin_library.hpp"
#include "shell/render/renderer.hpp"
#include "shell/scene_file/scene_file.hpp"

#include <benchmark/benchmark.h>

#include <memory>
#include <string>

namespace {

using korl::Renderer;
using korl::RenderPath;
using korl::Scene;
using korl::View;

korl::GLContext& context() {
    static korl::GLContext& made = *new korl::GLContext;
    return made;
}

void fill(Scene& scene, std::int64_t lights) {
    for (korl::Mesh& mesh : korl::builtinScene())
        scene.addMesh(std::move(mesh));
    for (std::int64_t i = 0; i < lights; ++i)
        scene.create("AmbientLight");
}

void steadyFrame(benchmark::State& state, RenderPath path) {
    Scene scene;
    fill(scene, state.range(0));
    View view;
    Renderer renderer(context());
    while (state.KeepRunning())
        benchmark::DoNotOptimize(renderer.render(scene, view, {640, 480, path}));
}

void firstFrame(benchmark::State& state) {
    Scene scene;
    fill(scene, state.range(0));
    while (state.KeepRunning()) {
        View view;
        Renderer renderer(context()); // compiles its programs anew
        benchmark::DoNotOptimize(renderer.render(scene, view, {640, 480, RenderPath::shader}));
    }
}

/// The host's and the module's share of a frame alone: update, illuminate, nothing drawn.
void collectLights(benchmark::State& state) {
    Scene scene;
    fill(scene, state.range(0));
    View view;
    while (state.KeepRunning()) {
        view.beginFrame(scene, 0);
        view.endFrame();
    }
}

/// A scene file of so many suns, each with a value of its own and one that follows the first.
void loadScene(benchmark::State& state) {
    std::string text = R"({"korl": 1, "objects": [{"type": "Sun", "name": "sun0"})";
    for (std::int64_t i = 1; i < state.range(0); ++i)
        text += R"(,{"type": "Sun", "name": "sun)" + std::to_string(i) +
                R"(", "parameters": {"latitude": "2"}, )" +
                R"("connections": {"timeofday": {"object": "sun0", "parameter": "timeofday"}}})";
    text += "]}";
    while (state.KeepRunning()) {
        auto scene = std::make_unique<Scene>();
        korl::readSceneText(text, "scene.json", *scene);
        state.PauseTiming();
        scene.reset();
        state.ResumeTiming();
    }
}

BENCHMARK_CAPTURE(steadyFrame, shader, RenderPath::shader)
    ->Arg(1)
    ->Arg(8)
    ->Arg(32)
    ->Arg(128)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(steadyFrame, fixed, RenderPath::fixed)->Arg(1)->Arg(8)->Unit(benchmark::kMillisecond);
BENCHMARK(firstFrame)->Arg(1)->Arg(8)->Arg(32)->Arg(128)->Unit(benchmark::kMillisecond);
BENCHMARK(collectLights)->Arg(1)->Arg(8)->Arg(1000);
BENCHMARK(loadScene)->Arg(1000)->Arg(100000)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argument_count, char** arguments) {
    benchmark::Initialize(&argument_count, arguments);
    korl::PluginSet plugins;
    plugins.load(TOVEK_LIGHT_MODULE);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
