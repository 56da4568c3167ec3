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

void printShader(Session& session, const ShaderOptions& options) {
    fillScene(options.scene, 1, session.scene);
    View view;
    if (options.uniforms) {
        // Some lights write their uniforms while they set up their fixed-function light: that takes a
        // context.
        GLContext context;
        Renderer renderer(context, note);
        for (const std::string& line : renderer.listUniforms(session.scene, view))
            std::printf("%s\n", line.c_str());
        return;
    }
    const Frame frame(view, session.scene, 0);
    std::fputs(assembleFrame(view).fragment.c_str(), stdout);
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
            withSession(program, [&](Session& session) { printShader(session, *options); });
        };
    });
}

} // namespace korl::cli
