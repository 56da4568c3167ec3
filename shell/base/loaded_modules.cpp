#include "shell/base/loaded_modules.hpp"

#include <algorithm>
#include <dlfcn.h>
#include <utility>
#include <vector>

namespace korl {

namespace {

struct LoadedModule {
    std::string name;
    const void* handle;
    const void *begin, *end; ///< where the library lies
};

/// Never destroyed: it is asked as late as while the process ends.
std::vector<LoadedModule>& loadedModules() {
    static auto& loaded = *new std::vector<LoadedModule>;
    return loaded;
}

} // namespace

void enterModule(std::string name, const void* handle, const void* address) {
    dl_find_object found{};
    if (::_dl_find_object(const_cast<void*>(address), &found) == 0)
        loadedModules().push_back({std::move(name), handle, found.dlfo_map_start, found.dlfo_map_end});
}

void leaveModule(const void* handle) {
    auto& loaded = loadedModules();
    const auto found = std::find_if(loaded.begin(), loaded.end(),
                                    [&](const LoadedModule& module) { return module.handle == handle; });
    if (found != loaded.end())
        loaded.erase(found);
}

std::string_view moduleAt(const void* address) noexcept {
    for (const LoadedModule& module : loadedModules())
        if (address >= module.begin && address < module.end)
            return module.name;
    return {};
}

} // namespace korl
