// A module that writes to standard output while it is loaded, and whose texts are full of control characters.

#include <doltra/renderable.hpp>
#include <sorvik/creator.hpp>
#include <sorvik/typed_slot.hpp>

#include <cstdio>
#include <stdexcept>
#include <string>

namespace {

/// Escape, bell, line feed, delete and a C1 character, as they follow a letter.
std::string rude(const std::string& word) {
    return word + "\x1b[31m\a\nkorl is fine\x7f\xc2\x9b";
}

struct Rude : Qelt::RenderAble {
    Rude(const std::string& name, const Qelt::VCreationPreferences& preferences)
        : RenderAble(name, 0, preferences) {
        Qelt::slot_creators_registered<double> = true;
        enableRequestProcessing();
    }
    std::string help() const override { return rude("help"); }

    bool update(Qelt::VRequest&, double) override { throw std::runtime_error(rude("thrown")); }

    Qelt::TypedSlot<double> slot{this, rude("slot"), 1};
};

using Property = Qelt::VCreatorPropertyBase;

struct Module {
    Module() {
        VInitialization::initPlugin(0, "rude_texts", VInitialization::interfaceKey);
        std::printf("printed while loading\n");
    }
    ~Module() { VInitialization::initPlugin(1, "rude_texts", VInitialization::interfaceKey); }
    Module(const Module&) = delete;
    Module& operator=(const Module&) = delete;

    Qelt::VCreator<Rude, void> rude_type{
        Qelt::VCreatorProperties(Property(Property::Kind::name, rude("Type"))) +
            Property(Property::Kind::category, rude("Category")) +
            Property(Property::Kind::description, rude("Description")),
        1};
};

const Module module_of_this_library;

} // namespace

extern "C" __attribute__((visibility("default"))) bool
KORL_API_2026_JAN_22__rude_texts(VInitialization* shell) {
    return shell->IsCompatible(VInitialization::interfaceKey);
}
