// The module as it would be with one unit only, UNIT_NAME. The units are the module's own object files.

#include <navigation/light/unit.hpp>

#include <sorvik/module.hpp>

#include <memory>

namespace tovek {

#define REGISTER_NAME(NAME) register##NAME
#define REGISTER(NAME) REGISTER_NAME(NAME)

std::unique_ptr<Unit> REGISTER(UNIT_NAME)();

namespace {

struct LoadedModule {
    Qelt::ModuleAnnouncement announcement{"one_unit"};
    std::unique_ptr<Unit> unit = REGISTER(UNIT_NAME)();
};

LoadedModule loaded_module;

} // namespace

} // namespace tovek
