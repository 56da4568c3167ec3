#pragma once

#include <sorvik/object.hpp>

#include <optional>
#include <string>
#include <vector>

namespace korl {

/// What there is to know of a parameter before it is changed. Values are in their text forms.
struct ParameterInfo {
    std::string name;
    std::string kind; ///< "double", "color", "point", "vector", or the name of another type
    std::string default_text;
    std::optional<std::string> minimum, maximum; ///< where the type declares them; nothing is clamped
    std::optional<std::string> unit;             ///< where it is known, such as "degrees"
    int expert_level;                            ///< 0 is for every user; the higher, the more expert
};

/// A type of objects, as its creator and a sample of it describe it.
struct TypeInfo {
    std::string name;     ///< "TYPE", or "MODULE/TYPE" where it is shadowed
    std::string category; ///< empty where it has none
    std::string description;
    std::vector<ParameterInfo> parameters; ///< in the order of their making
};

/// The parameters of an object, in the order of their making.
std::vector<ParameterInfo> parametersOf(const Qelt::VObject& object);

/// The types of all loaded modules, as the catalogue lists them, by the names that `Scene::create` takes (see
/// `typeName`); of several of one name the first. A sample of each is made and deleted again.
std::vector<TypeInfo> knownTypes();

} // namespace korl
