// The module as the shell meets it: one exported function, and an object whose life is that of the loaded
// library.

#include "unit.hpp"

#include <sorvik/initialization.hpp>

#include <cstdlib>
#include <memory>

namespace tovek {

// Each unit is defined in the source file of its name.
#define UNIT(NAME) std::unique_ptr<Unit> register##NAME();
#include "load_order.inc"
#undef UNIT

namespace {

constexpr const char* module_name = "tovek_light";

/// Gives the library's list of at-unload hooks a first entry, which does nothing.
struct EmptyHook {
    EmptyHook() {
        std::atexit([] {});
    }
};

/// Tells the shell that the module comes and goes. An exception on the way out ends the process.
struct Announcement {
    Announcement() {
        VInitialization::initPlugin(VInitialization::loading, module_name, VInitialization::interfaceKey);
    }
    ~Announcement() noexcept {
        VInitialization::initPlugin(VInitialization::unloading, module_name, VInitialization::interfaceKey);
    }
    Announcement(const Announcement&) = delete;
    Announcement& operator=(const Announcement&) = delete;
};

/// Everything that the module is while it is loaded. The members are made in this order when the library is
/// loaded and destroyed in reverse when it is unloaded; nothing else in the module runs at either time.
struct LoadedModule {
    EmptyHook empty_hook;
    Announcement announcement;
#define UNIT(NAME) std::unique_ptr<Unit> NAME = register##NAME();
#include "load_order.inc"
#undef UNIT
};

LoadedModule loaded_module;

} // namespace

} // namespace tovek

/// The version check. @returns whether `shell` accepts the interface that the module was built against.
extern "C" __attribute__((visibility("default"))) bool
KORL_API_2026_JAN_22__tovek_light(VInitialization* shell) {
    return shell->IsCompatible(VInitialization::interfaceKey);
}
