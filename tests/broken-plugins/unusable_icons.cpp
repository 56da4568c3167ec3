// A module of types whose icons cannot be used, and one whose icon can.

#include <sorvik/module.hpp>

#include <string>

namespace {

constexpr const char* misshapen[] = {"one by one"};
constexpr const char* dot[] = {"1 1 1 1", ". c #ff8000", "."};

struct Plain : Qelt::VObject {
    Plain(const std::string& name, const Qelt::VCreationPreferences& preferences)
        : VObject(name, 0, preferences) {}
    const char* const* xpm_icon() const override { return dot; }
};

struct Misshapen : Plain {
    using Plain::Plain;
    const char* const* xpm_icon() const override { return misshapen; }
};

struct NoPicture : Plain {
    using Plain::Plain;
    std::string qt_icon() const override { return NO_PICTURE; }
};

struct Missing : Plain {
    using Plain::Plain;
    std::string qt_icon() const override { return ":/nowhere.png"; }
};

struct Module {
    Qelt::ModuleAnnouncement announcement{"unusable_icons"};
    Qelt::VCreator<Misshapen, void> misshapen{std::string("Misshapen"), 1};
    Qelt::VCreator<NoPicture, void> no_picture{std::string("NoPicture"), 2};
    Qelt::VCreator<Missing, void> missing{std::string("Missing"), 3};
    Qelt::VCreator<Plain, void> no_file_name{std::string("no/file"), 4};
    Qelt::VCreator<Plain, void> plain{std::string("Plain"), 5};
};

const Module module_of_this_library;

} // namespace

KORL_MODULE_ENTRY(unusable_icons);
