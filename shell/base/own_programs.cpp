#include "shell/base/own_programs.hpp"

#include "shell/base/error.hpp"

#include <sorvik/initialization.hpp>

#include <dlfcn.h>
#include <fmt/core.h>

namespace korl {

std::filesystem::path ownFolder() {
    // The file that a function of a host library was loaded from tells where the installation is.
    Dl_info library{};
    if (::dladdr(reinterpret_cast<const void*>(&VInitialization::initPlugin), &library) == 0)
        throw Error("cannot find out where the program's own libraries are");
    return std::filesystem::absolute(library.dli_fname).parent_path() / "korl";
}

std::filesystem::path ownProgram(std::string_view name) {
    std::filesystem::path program = ownFolder() / name;
    if (!std::filesystem::exists(program))
        throw Error(fmt::format("a program that belongs to korl is missing: {}\n"
                                "Install korl once more, or build all of it.",
                                program.string()));
    return program;
}

} // namespace korl
