#include "shell/plugins/plugin_search_path.hpp"

#include <cstdlib>
#include <sstream>
#include <string>

namespace korl {

namespace {

/// @param listed the value of the variable; null where it is not set.
std::vector<std::filesystem::path> searchPath(const char* listed, const std::filesystem::path& prefix) {
    std::vector<std::filesystem::path> directories;
    if (listed) {
        std::istringstream elements(listed);
        for (std::string element; std::getline(elements, element, ':');)
            if (!element.empty())
                directories.emplace_back(element);
        return directories;
    }
    const auto modules = prefix / KORL_MODULE_DIR;
    if (std::filesystem::is_directory(modules))
        directories.push_back(modules);
    return directories;
}

} // namespace

std::vector<std::filesystem::path> pluginSearchPath() {
    return pluginSearchPath(std::getenv("KORL_PLUGIN_PATH"), std::filesystem::read_symlink("/proc/self/exe"));
}

std::vector<std::filesystem::path> pluginSearchPath(const char* listed,
                                                    const std::filesystem::path& program) {
    return searchPath(listed, program.parent_path().parent_path());
}

std::vector<std::filesystem::path> pluginSearchPathBelow(const std::filesystem::path& prefix) {
    return searchPath(std::getenv("KORL_PLUGIN_PATH"), prefix);
}

} // namespace korl
