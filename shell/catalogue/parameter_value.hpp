#pragma once

#include <string>
#include <typeinfo>

namespace korl {

/// What users call a type of value: "double", "color", "point" or "vector"; any other type by its own name.
std::string valueKind(const std::type_info& type);

/// How a value of a type is written, such as: a color, four numbers "red green blue alpha".
std::string valueForm(const std::type_info& type);

} // namespace korl
