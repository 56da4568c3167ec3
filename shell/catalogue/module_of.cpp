#include "shell/catalogue/module_of.hpp"

#include "shell/base/loaded_modules.hpp"

#include <sorvik/creator.hpp>
#include <sorvik/initialization.hpp>

#include <algorithm>

namespace korl {

std::string moduleOf(const Qelt::VCreatorBase& creator) {
    return std::string(moduleAt(&creator.type()));
}

bool isModuleLoaded(const std::string& name) {
    const auto plugins = VInitialization::plugins();
    return std::any_of(plugins.begin(), plugins.end(),
                       [&](const auto& plugin) { return plugin.name == name; });
}

} // namespace korl
