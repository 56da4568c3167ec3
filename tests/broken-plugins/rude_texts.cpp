// A module that writes to standard output while it is loaded, and whose texts are full of control characters.

#include <doltra/renderable.hpp>
#include <sorvik/module.hpp>

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
        enableRequestProcessing();
    }
    std::string help() const override { return rude("help"); }

    bool update(Qelt::VRequest&, double) override { throw std::runtime_error(rude("thrown")); }

    Qelt::TypedSlot<double> slot{this, rude("slot"), 1};
};

using Property = Qelt::VCreatorPropertyBase;

struct Module {
    Module() { std::printf("printed while loading\n"); }

    Qelt::ModuleAnnouncement announcement{"rude_texts"};
    Qelt::ValueType<double> numbers;
    Qelt::VCreator<Rude, void> rude_type{
        Qelt::VCreatorProperties(Property(Property::Kind::name, rude("Type"))) +
            Property(Property::Kind::category, rude("Category")) +
            Property(Property::Kind::description, rude("Description")),
        1};
};

const Module module_of_this_library;

} // namespace

KORL_MODULE_ENTRY(rude_texts);
