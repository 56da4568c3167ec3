// A module whose objects throw an exception of the module's own while they are made, or something else
// entirely.

#include <sorvik/module.hpp>

#include <exception>

namespace {

struct OwnException : std::exception {
    const char* what() const noexcept override { return "the object does not want to be"; }
};

struct Reluctant : Qelt::VObject {
    Reluctant(const std::string& name, const Qelt::VCreationPreferences& preferences)
        : VObject(name, 0, preferences) {
        throw OwnException();
    }
};

struct Odd : Qelt::VObject {
    Odd(const std::string& name, const Qelt::VCreationPreferences& preferences)
        : VObject(name, 0, preferences) {
        throw 5;
    }
};

struct Module {
    Qelt::ModuleAnnouncement announcement{"throwing_objects"};
    Qelt::VCreator<Reluctant, void> reluctant{std::string("Reluctant"), 0};
    Qelt::VCreator<Odd, void> odd{std::string("Odd"), 0};
};

const Module module_of_this_library;

} // namespace

KORL_MODULE_ENTRY(throwing_objects);
