#include "shell/cli/program.hpp"
#include "shell/cli/scene_options.hpp"

#include "shell/scene_file/lighting_rig.hpp"

#include <memory>

namespace korl::cli {

namespace {

struct LoadRigOptions {
    std::string scene, rig, output;
    bool replace = false;
    ModelOptions models;
};

} // namespace

void addLoadRigCommand(CLI::App& app, Program& program) {
    CLI::App* const command =
        app.add_subcommand("load-rig", "Put the lights of one scene file into another scene");
    const auto options = std::make_shared<LoadRigOptions>();
    command->add_option("SCENE.json", options->scene, "The scene file that gets the lights")->required();
    command->add_option("RIG.json", options->rig, "The file with the lights")->required();
    command->add_option("-o,--output", options->output, "The scene file to write")
        ->required()
        ->check(aFile());
    addModelOptions(*command, options->models);
    command->add_flag("--replace", options->replace, "Take the scene's own lights out first");
    command->callback([&program, options] {
        program.command = [&program, options] {
            withShell(program, [&](Shell& shell) {
                readSceneFile(options->scene, shell.scene(), readingWith(options->models));
                loadRig(options->rig, shell.scene(), options->replace, note);
                saveScene(options->output, shell.scene(), note);
            });
        };
    });
}

} // namespace korl::cli
