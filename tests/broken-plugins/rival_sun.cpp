// A module with a type of a name that another module has too: Sun, or what KORL_TEST_RIVAL names.

#include <doltra/vlight_source.hpp>
#include <sorvik/creator.hpp>
#include <sorvik/typed_slot.hpp>

#include <cstdlib>
#include <string>

namespace {

struct RivalSun : Qelt::VLightSource {
    RivalSun(const std::string& name, const Qelt::VCreationPreferences& preferences)
        : VLightSource(name, 0, preferences) {
        Qelt::slot_creators_registered<double> = true;
    }
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
    Module() { VInitialization::initPlugin(0, "rival_sun", VInitialization::interfaceKey); }
    ~Module() { VInitialization::initPlugin(1, "rival_sun", VInitialization::interfaceKey); }
    Module(const Module&) = delete;
    Module& operator=(const Module&) = delete;

    Qelt::VCreator<RivalSun, void> sun{rivalName(), 0};
};

const Module module_of_this_library;

} // namespace

extern "C" __attribute__((visibility("default"))) bool
KORL_API_2026_JAN_22__rival_sun(VInitialization* shell) {
    return shell->IsCompatible(VInitialization::interfaceKey);
}
