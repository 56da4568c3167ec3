#include "shell/cli/program.hpp"
#include "shell/cli/scene_options.hpp"

#include "shell/scene_file/scene_script.hpp"

#include <memory>

namespace korl::cli {

void addScriptCommand(CLI::App& app, Program& program) {
    CLI::App* const command = app.add_subcommand("script", "Print the Python script that builds a scene");
    const auto options = std::make_shared<SceneOptions>();
    addSceneOptions(*command, *options);
    command->callback([&program, options] {
        program.command = [&program, options] {
            withShell(program, [&](Shell& shell) {
                constexpr double aspect = 4.0 / 3; // of the picture that the script makes
                fillScene(*options, aspect, shell.scene(), ScenePurpose::keep);
                print(sceneScript(shell.scene(), program.plugins));
            });
        };
    });
}

} // namespace korl::cli
