// The module as the shell meets it: one exported function, and an object whose life is that of the loaded
// library.

#include "unit.hpp"

#include <sorvik/module.hpp>

#include <cstdlib>
#include <memory>

namespace tovek {

// Each unit is defined in the source file of its name.
#define UNIT(NAME) std::unique_ptr<Unit> register##NAME();
#include "load_order.inc"
#undef UNIT

namespace {

/// Gives the library's list of at-unload hooks a first entry, which does nothing.
struct EmptyHook {
    EmptyHook() {
        std::atexit([] {});
    }
};

/// Everything that the module is while it is loaded. The members are made in this order when the library is
/// loaded and destroyed in reverse when it is unloaded; nothing else in the module runs at either time.
struct LoadedModule {
    EmptyHook empty_hook;
    Qelt::ModuleAnnouncement announcement{"tovek_light"};
#define UNIT(NAME) std::unique_ptr<Unit> NAME = register##NAME();
#include "load_order.inc"
#undef UNIT
};

LoadedModule loaded_module;

} // namespace

} // namespace tovek

KORL_MODULE_ENTRY(tovek_light);
