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
    std::string unit;                            ///< such as "degrees"; empty where it has or names none
    int expert_level;                            ///< 0 is for every user; the higher, the more expert
    std::string description;                     ///< what it does, in a few words; may be empty
};

/// The range that a parameter declares, in words, such as "-90 to 90" or "up to 24"; empty where it declares
/// none.
std::string rangeText(const ParameterInfo& parameter);

/// A type of objects, as its creator and a sample of it describe it.
struct TypeInfo {
    std::string name;     ///< "TYPE", or "MODULE/TYPE" where it is shadowed
    std::string category; ///< empty where it has none
    std::string description;
    std::vector<ParameterInfo> parameters; ///< in the order of their making
};

/// The parameters of an object, in the order of their making. The unit and the description are the
/// parameter's properties "unit" and "description" where it has them; the parameters of the program's own
/// lights have notes instead.
std::vector<ParameterInfo> parametersOf(const Qelt::VObject& object);

/// The types of all loaded modules, as the catalogue lists them, by the names that `Scene::create` takes (see
/// `typeName`); of several of one name the first. A sample of each is made and deleted again.
std::vector<TypeInfo> knownTypes();

} // namespace korl
