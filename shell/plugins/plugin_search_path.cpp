#include <shell/plugins/plugin_search_path.hpp>

#include <cstdlib>
#include <sstream>
#include <string>

namespace korl {

std::vector<std::filesystem::path> pluginSearchPath() {
    return pluginSearchPath(std::getenv("KORL_PLUGIN_PATH"), std::filesystem::read_symlink("/proc/self/exe"));
}

std::vector<std::filesystem::path> pluginSearchPath(const char* listed,
                                                    const std::filesystem::path& program) {
    std::vector<std::filesystem::path> directories;
    if (listed) {
        std::istringstream elements(listed);
        for (std::string element; std::getline(elements, element, ':');)
            if (!element.empty())
                directories.emplace_back(element);
        return directories;
    }
    const auto beside_program = program.parent_path().parent_path() / KORL_MODULE_DIR;
    if (std::filesystem::is_directory(beside_program))
        directories.push_back(beside_program);
    return directories;
}

} // namespace korl
