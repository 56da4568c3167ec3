// write_resource PNG SOURCE writes the Qt resource ":/light/Torch.png" with the given picture as a C++
// source.
//
// Qt's own resource compiler does not serve: what it writes registers by itself, outside the module's order,
// and its time stamp follows the environment.

#include "files.hpp"
#include "resource_format.hpp"

#include <exception>
#include <iostream>

/// When the picture last changed, in milliseconds since 1970: given, so that every build is the same.
constexpr std::uint64_t changed = 1764071729232;

int main(int argument_count, char** arguments) {
    if (argument_count != 3) {
        std::cerr << "usage: write_resource PNG SOURCE\n";
        return 2;
    }
    try {
        const auto picture = artwork::readFile(arguments[1]);
        const auto resource = artwork::singleFile("light", "Torch.png", picture, changed);
        artwork::writeFile(arguments[2], artwork::sourceOf(resource));
        return 0;
    } catch (const std::exception& error) {
        std::cerr << "write_resource: " << error.what() << "\n";
        return 1;
    }
}
