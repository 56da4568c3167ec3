#include "shell/cli/program.hpp"
#include "shell/cli/scene_options.hpp"

#include "shell/scene_file/scene_file.hpp"

#include <memory>

namespace korl::cli {

namespace {

struct SaveOptions {
    SceneOptions scene;
    std::string output;
};

} // namespace

void addSaveCommand(CLI::App& app, Program& program) {
    CLI::App* const command = app.add_subcommand("save", "Build a scene and write it to a scene file");
    const auto options = std::make_shared<SaveOptions>();
    addSceneOptions(*command, options->scene);
    command->add_option("-o,--output", options->output, "The scene file, such as scene.json")
        ->required()
        ->check(aFile());
    command->callback([&program, options] {
        program.command = [&program, options] {
            withShell(program, [&](Shell& shell) {
                constexpr double aspect = 4.0 / 3;
                fillScene(options->scene, aspect, shell.scene(), ScenePurpose::keep);
                saveScene(options->output, shell.scene(), note);
            });
        };
    });
}

} // namespace korl::cli
