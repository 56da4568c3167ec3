// How long frames take: the built-in scene at 640x480 under some AmbientLights, on each path, and what it
// takes to make the first one. Run it on a release build; compare figures of one run only.

#include "shell/plugins/plugin_library.hpp"
#include "shell/render/renderer.hpp"
#include "shell/scene/builtin_scene.hpp"

#include <benchmark/benchmark.h>

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
    for (auto _ : state)
        benchmark::DoNotOptimize(renderer.render(scene, view, {640, 480, path}));
}

void firstFrame(benchmark::State& state) {
    Scene scene;
    fill(scene, state.range(0));
    for (auto _ : state) {
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
    for (auto _ : state) {
        view.beginFrame(scene, 0);
        view.endFrame();
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

} // namespace

int main(int argument_count, char** arguments) {
    benchmark::Initialize(&argument_count, arguments);
    korl::PluginSet plugins;
    plugins.load(TOVEK_LIGHT_MODULE);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
