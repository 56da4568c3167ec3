#pragma once

#include <sorvik/parameter.hpp>

#include <span>
#include <string>
#include <typeinfo>
#include <vector>

namespace korl {

/// What users call a type of value: "double", "color", "point" or "vector"; any other type by its own name.
std::string valueKind(const std::type_info& type);

/// How a value of a type is written, such as: a colour, four numbers "red green blue alpha".
std::string valueForm(const std::type_info& type);

/// How many numbers a value of a type consists of: 1, 3 or 4; 0 for a type that has a text form alone.
std::size_t numberCount(const std::type_info& type);

/// The numbers of a value, those of a colour as they are written: 0.7 for the float 0.7f. Empty for a type
/// that has a text form alone, and for a value that cannot be read since what it follows is gone.
std::vector<double> numbersOf(const Qelt::VValueBase& value);

/// Whether none of a value's numbers is infinite or not a number.
bool isFinite(const Qelt::VValueBase& value);

/// A new value of a type. Null where the type takes another count of numbers.
Tessan::StrongPtr<Qelt::VValueBase> makeValue(const std::type_info& type, std::span<const double> numbers);

} // namespace korl
