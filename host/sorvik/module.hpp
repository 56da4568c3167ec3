#pragma once

// What every module needs besides its objects. A module is one object, made when its library is loaded and
// destroyed when it is unloaded, its members in reverse, and one function:
//
//     struct LoadedModule {
//         Qelt::ModuleAnnouncement announcement{"lamp"};
//         Qelt::ValueType<double> numbers;
//         Qelt::VCreator<Lamp, void> lamp{std::string("Lamp"), 0};
//     };
//     const LoadedModule loaded_module;
//
//     KORL_MODULE_ENTRY(lamp);

#include <orvid/rgba_float.hpp>
#include <sorvik/creator.hpp>
#include <sorvik/initialization.hpp>
#include <sorvik/slot_creator.hpp>
#include <sorvik/typed_slot.hpp>
#include <sorvik/value_creator.hpp>
#include <tessan/typename.hpp>

#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

namespace Qelt {

/// Announces a module to the shell as long as it lives. It comes before everything that the module registers.
class ModuleAnnouncement {
public:
    /// @param name the module's name, a string literal.
    explicit ModuleAnnouncement(const char* name) : my_name(name) {
        VInitialization::initPlugin(VInitialization::loading, my_name, VInitialization::interfaceKey);
    }
    /// An exception of the shell ends the process.
    ~ModuleAnnouncement() noexcept {
        VInitialization::initPlugin(VInitialization::unloading, my_name, VInitialization::interfaceKey);
    }
    ModuleAnnouncement(const ModuleAnnouncement&) = delete;
    ModuleAnnouncement& operator=(const ModuleAnnouncement&) = delete;

private:
    const char* my_name;
};

/// Registers the creators of values and slots of type `T`, which every type of parameter in a module needs,
/// and withdraws them when it is destroyed. A module may hold several for one type, one for each of its
/// objects that have such parameters: the first one registers, the others do nothing.
template <class T>
class ValueType {
public:
    ValueType() {
        if (!slot_creators_registered<T>)
            my_registration.emplace();
    }

private:
    /// Single values are made by the name of their type for these types only; points and vectors come with
    /// their objects.
    static constexpr bool has_value_creator =
        std::is_same_v<T, double> || std::is_same_v<T, Orvid::rgba_float_t>;

    struct Registration {
        std::string name = Tessan::Typename(typeid(T));
        std::optional<VValueCreatorOf<T>> value_creator;
        TypedSlotCreatorOf<T> slot_creator;

        Registration() {
            if constexpr (has_value_creator)
                VValueCreator::registerCreator(value_creator.emplace(), name);
            TypedSlotCreator::registerTypedSlotCreator(typeid(T), slot_creator, name);
            slot_creators_registered<T> = true;
        }
        ~Registration() { TypedSlotCreator::unregisterTypedSlotCreator(typeid(T), slot_creator, name); }
        Registration(const Registration&) = delete;
        Registration& operator=(const Registration&) = delete;
    };

    std::optional<Registration> my_registration;
};

} // namespace Qelt

/// Defines the one function that a module shows to the outside, with which the shell asks whether the module
/// was built against its interface. NAME is the module's name, without quotes.
#define KORL_MODULE_ENTRY(NAME) KORL_MODULE_ENTRY_NAMED(NAME) // so that NAME may be a macro
#define KORL_MODULE_ENTRY_NAMED(NAME)                                                                        \
    extern "C"                                                                                               \
        __attribute__((visibility("default"))) bool KORL_API_2026_JAN_22__##NAME(VInitialization* shell) {   \
        return shell->IsCompatible(VInitialization::interfaceKey);                                           \
    }                                                                                                        \
    static_assert(                                                                                           \
        std::string_view("KORL_API_2026_JAN_22__" #NAME).starts_with(VInitialization::entryPointPrefix))
