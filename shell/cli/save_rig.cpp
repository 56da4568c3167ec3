#include "shell/cli/program.hpp"
#include "shell/cli/scene_options.hpp"

#include "shell/scene_file/lighting_rig.hpp"

#include <memory>

namespace korl::cli {

namespace {

struct SaveRigOptions {
    std::string scene, output;
    ModelOptions models;
};

} // namespace

void addSaveRigCommand(CLI::App& app, Program& program) {
    CLI::App* const command =
        app.add_subcommand("save-rig", "Write the lights of a scene alone, to be put into other scenes");
    const auto options = std::make_shared<SaveRigOptions>();
    command->add_option("SCENE.json", options->scene, "The scene file")->required();
    command->add_option("-o,--output", options->output, "The file of the lights, such as rig.json")
        ->required()
        ->check(aFile());
    addModelOptions(*command, options->models);
    command->callback([&program, options] {
        program.command = [&program, options] {
            withShell(program, [&](Shell& shell) {
                readSceneFile(options->scene, shell.scene(), readingWith(options->models));
                saveRig(options->output, shell.scene(), note);
            });
        };
    });
}

} // namespace korl::cli
