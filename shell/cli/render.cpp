#include "shell/cli/picture_output.hpp"
#include "shell/cli/program.hpp"
#include "shell/cli/scene_options.hpp"

#include "shell/base/printable.hpp"
#include "shell/render/renderer.hpp"

#include <sorvik/vprintf.hpp>

#include <fmt/core.h>
#include <memory>

namespace korl::cli {

namespace {

struct RenderOptions {
    SceneOptions scene;
    std::string path = "shader";
    std::string size = "640x480";
    std::string view;
    std::string output = "korl.png";
    bool uniforms = false;
};

void render(Shell& shell, const RenderOptions& options, std::pair<int, int> size,
            const PictureOutput& output) {
    const auto [width, height] = size;
    fillScene(options.scene, static_cast<double>(width) / height, shell.scene());

    const GLContext::Info& info = shell.context().info();
    Qelt::Vprintf(1, "renderer: %s, OpenGL %s, %s\n", info.renderer.c_str(), info.version.c_str(),
                  info.how.c_str());
    const Image image = shell.render({width, height, renderPaths().at(options.path)}, options.view);
    std::string uniforms;
    if (options.uniforms)
        for (const std::string& line : shell.renderer().listUniforms(shell.scene(), shell.view(options.view)))
            uniforms += line + "\n";
    if (output.isStandardOutput())
        std::fputs(uniforms.c_str(), stderr);
    else
        print(uniforms);
    output.write(image);
    if (!output.isStandardOutput())
        note(fmt::format("wrote {}, {}x{} pixels", printable(options.output), image.width, image.height));
}

} // namespace

void addRenderCommand(CLI::App& app, Program& program) {
    CLI::App* const command =
        app.add_subcommand("render", "Render a scene, or a model under lights, to a PNG file");
    const auto options = std::make_shared<RenderOptions>();
    addSceneOptions(*command, options->scene);
    addPathOption(*command, options->path);
    command->add_option("--size", options->size, "WIDTHxHEIGHT in pixels, of the picture of one path")
        ->capture_default_str();
    command->add_option("--view", options->view, "The scene's view to render");
    command->add_option("-o,--output", options->output, "The PNG file; - for standard output")
        ->capture_default_str();
    command->add_flag("--uniforms", options->uniforms, "Print the lights' uniform values, NAME = components");
    command->callback([&program, options] {
        program.command = [&program, options] {
            const auto size = parseSize(options->size);
            const PictureOutput output(options->output);
            withShell(program, [&](Shell& shell) { render(shell, *options, size, output); });
        };
    });
}

} // namespace korl::cli
