#include "shell/catalogue/module_of.hpp"

#include <sorvik/creator.hpp>
#include <sorvik/initialization.hpp>

#include <algorithm>
#include <dlfcn.h>
#include <memory>

namespace korl {

namespace {

struct Close {
    void operator()(void* handle) const noexcept { ::dlclose(handle); }
};

} // namespace

std::string moduleOf(const Qelt::VCreatorBase& creator) {
    Dl_info found{};
    if (::dladdr(&creator.type(), &found) == 0)
        return {};
    const std::unique_ptr<void, Close> library(::dlopen(found.dli_fname, RTLD_NOLOAD | RTLD_LAZY));
    if (!library)
        return {};
    for (const VInitialization::Plugin& plugin : VInitialization::plugins())
        if (::dlsym(library.get(), (VInitialization::entryPointPrefix + plugin.name).c_str()))
            return plugin.name;
    return {};
}

bool isModuleLoaded(const std::string& name) {
    const auto plugins = VInitialization::plugins();
    return std::any_of(plugins.begin(), plugins.end(),
                       [&](const auto& plugin) { return plugin.name == name; });
}

} // namespace korl
