#include "shell/cli/program.hpp"

#include "shell/gallery/gallery.hpp"

#include <memory>

namespace korl::cli {

void addGalleryCommand(CLI::App& app, Program& program) {
    CLI::App* const command = app.add_subcommand(
        "gallery", "Write a web page of all types: pictures, parameters, GLSL and uniforms");
    const auto folder = std::make_shared<std::string>();
    command->add_option("-o,--output", *folder, "The folder for its index.html")->required();
    command->callback([&program, folder] {
        program.command = [&program, folder] {
            withShell(program, [&](Shell& shell) { note("wrote " + writeGallery(shell, *folder).string()); });
        };
    });
}

} // namespace korl::cli
