#include "shell/cli/program.hpp"
#include "shell/cli/scene_options.hpp"

#include "shell/render/renderer.hpp"

#include <memory>

namespace korl::cli {

namespace {

struct ShaderOptions {
    SceneOptions scene;
    bool uniforms = false;
};

void printShader(Shell& shell, const ShaderOptions& options) {
    fillScene(options.scene, 1, shell.scene());
    if (options.uniforms) {
        // Some lights write their uniforms while they set up their fixed-function light: that takes a
        // renderer, and a context.
        for (const std::string& line : shell.renderer().listUniforms(shell.scene(), shell.view()))
            print(line + "\n");
        return;
    }
    const Frame frame(shell.view(), shell.scene(), 0);
    print(assembleFrame(shell.view()).fragment);
}

} // namespace

void addShaderCommand(CLI::App& app, Program& program) {
    CLI::App* const command =
        app.add_subcommand("shader", "Print the fragment shader that the lights of a scene make up");
    const auto options = std::make_shared<ShaderOptions>();
    addSceneOptions(*command, options->scene);
    command->add_flag("--uniforms", options->uniforms,
                      "Print the lights' uniform values instead, NAME = components");
    command->callback([&program, options] {
        program.command = [&program, options] {
            withShell(program, [&](Shell& shell) { printShader(shell, *options); });
        };
    });
}

} // namespace korl::cli
