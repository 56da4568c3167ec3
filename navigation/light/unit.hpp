#pragma once

#include <palune/geometry_traits.hpp>
#include <sorvik/creator.hpp>
#include <tessan/typename.hpp>

#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>

namespace tovek {

/// What one source file of the module registers with the shell; all of it is withdrawn when the unit is
/// destroyed.
class Unit {
public:
    Unit() = default;
    Unit(const Unit&) = delete;
    Unit& operator=(const Unit&) = delete;
    virtual ~Unit() = default;
};

/// The creators of values and slots of type `T`, which the first unit that has parameters of the type
/// registers with the shell. In every later unit the same member does nothing.
template <class T>
class ValueType {
public:
    ValueType() {
        if (!std::exchange(taken_care_of, true))
            my_registration.emplace();
    }

private:
    /// The shell makes single values by type name of these types only; points and vectors come with their
    /// objects.
    static constexpr bool has_value_creator =
        std::is_same_v<T, double> || std::is_same_v<T, Orvid::rgba_float_t>;

    struct Registration {
        std::string name = Tessan::Typename(typeid(T));
        std::optional<Qelt::VValueCreatorOf<T>> value_creator;
        Qelt::TypedSlotCreatorOf<T> slot_creator;

        Registration() {
            if constexpr (has_value_creator)
                Qelt::VValueCreator::registerCreator(value_creator.emplace(), name);
            Qelt::TypedSlotCreator::registerTypedSlotCreator(typeid(T), slot_creator, name);
            Qelt::slot_creators_registered<T> = true;
        }
        ~Registration() { Qelt::TypedSlotCreator::unregisterTypedSlotCreator(typeid(T), slot_creator, name); }
        Registration(const Registration&) = delete;
        Registration& operator=(const Registration&) = delete;
    };

    static inline bool taken_care_of = false;
    std::optional<Registration> my_registration;
};

} // namespace tovek
