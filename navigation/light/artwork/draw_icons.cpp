// draw_icons FOLDER draws the module's icons and writes them into the folder, which is that of the module's
// sources: light/Torch.png, Torch.xpm and Headlight.xpm.

#include "files.hpp"
#include "icons.hpp"

#include <exception>
#include <filesystem>
#include <iostream>

int main(int argument_count, char** arguments) {
    if (argument_count != 2) {
        std::cerr << "usage: draw_icons FOLDER\n";
        return 2;
    }
    try {
        const std::filesystem::path folder = arguments[1];
        artwork::writeFile(folder / "light/Torch.png", artwork::torchPng());
        artwork::writeFile(folder / "Torch.xpm", artwork::torchXpm());
        artwork::writeFile(folder / "Headlight.xpm", artwork::headlightXpm());
        return 0;
    } catch (const std::exception& error) {
        std::cerr << "draw_icons: " << error.what() << "\n";
        return 1;
    }
}
