// A module with a type of a name that another module has too: Sun, or what KORL_TEST_RIVAL names.

#include <doltra/vlight_source.hpp>
#include <sorvik/module.hpp>

#include <cstdlib>
#include <string>

namespace {

struct RivalSun : Qelt::VLightSource {
    RivalSun(const std::string& name, const Qelt::VCreationPreferences& preferences)
        : VLightSource(name, 0, preferences) {}
    const char* const* xpm_icon() const override {
        static constexpr const char* dot[] = {"1 1 1 1", ". c #ff8000", "."};
        return dot;
    }

    Qelt::TypedSlot<double> warmth{this, "warmth", 1};
};

std::string rivalName() {
    const char* const name = std::getenv("KORL_TEST_RIVAL");
    return name ? name : "Sun";
}

struct Module {
    Qelt::ModuleAnnouncement announcement{"rival_sun"};
    Qelt::ValueType<double> numbers;
    Qelt::VCreator<RivalSun, void> sun{rivalName(), 0};
};

const Module module_of_this_library;

} // namespace

KORL_MODULE_ENTRY(rival_sun);
