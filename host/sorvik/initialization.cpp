#include <sorvik/initialization.hpp>

#include <sorvik/vprintf.hpp>

#include <algorithm>
#include <utility>

namespace {

/// Never destroyed: modules that are still loaded when the program ends say that they go after `main`.
std::vector<VInitialization::Plugin>& announcedPlugins() {
    static auto& announced = *new std::vector<VInitialization::Plugin>;
    return announced;
}

} // namespace

VInitialization::VInitialization(std::string accepted_key) : my_accepted_key(std::move(accepted_key)) {}

VInitialization::~VInitialization() = default;

bool VInitialization::IsCompatible(const char* version_key) const {
    return version_key && my_accepted_key == version_key;
}

void VInitialization::initPlugin(int reason, const char* name, const char* version_key) {
    if (!name || !version_key) {
        Qelt::Vprintf(0, "VInitialization: module %s gave no %s, so its call with the reason %d is ignored\n",
                      name ? name : "(unknown)", name ? "interface key" : "name", reason);
        return;
    }
    auto& announced = announcedPlugins();
    if (reason == loading) {
        announced.push_back({name, version_key});
        return;
    }
    // The same name may have come more than once: the one that came last goes first.
    const auto found = std::find_if(announced.rbegin(), announced.rend(),
                                    [&](const Plugin& plugin) { return plugin.name == name; });
    if (reason != unloading)
        Qelt::Vprintf(0, "VInitialization: module %s gave the unknown reason %d\n", name, reason);
    else if (found == announced.rend())
        Qelt::Vprintf(0, "VInitialization: module %s goes, but it never came\n", name);
    else
        announced.erase(std::next(found).base());
}

std::vector<VInitialization::Plugin> VInitialization::plugins() {
    return announcedPlugins();
}
