#include "shell/catalogue/parameter_value.hpp"

#include <orvid/physical_space.hpp>
#include <orvid/rgba_float.hpp>
#include <palune/geometry_traits.hpp>
#include <sorvik/component_text.hpp>
#include <tessan/typename.hpp>

#include <algorithm>
#include <cmath>
#include <fmt/core.h>

namespace korl {

using Orvid::PhysicalSpace;
using Orvid::rgba_float_t;
using Qelt::VValueBase;
using Tessan::StrongPtr;

namespace {

/// Reads a value of type `T`. @returns false for a value of another type, and for one that cannot be read.
template <class T>
bool read(const VValueBase& value, T& into) {
    const auto* const typed = dynamic_cast<const Qelt::VTypedValueBase<T>*>(&value);
    return typed && typed->getValue(into);
}

template <class T>
StrongPtr<VValueBase> make(const T& value) {
    return StrongPtr<VValueBase>(new Qelt::VValue<T>(value));
}

/// The double that has the shortest text of a float.
double asWritten(float number) {
    double written = number;
    Qelt::componentsFromText(std::span(&written, 1),
                             Qelt::componentsToText(std::span<const float>(&number, 1)));
    return written;
}

} // namespace

std::string valueKind(const std::type_info& type) {
    if (type == typeid(rgba_float_t))
        return "color";
    if (type == typeid(PhysicalSpace::point))
        return "point";
    if (type == typeid(PhysicalSpace::vector))
        return "vector";
    return Tessan::Typename(type);
}

std::string valueForm(const std::type_info& type) {
    if (type == typeid(double))
        return "a double, one number";
    if (type == typeid(rgba_float_t))
        return "a colour, four numbers \"red green blue alpha\"";
    if (type == typeid(PhysicalSpace::point) || type == typeid(PhysicalSpace::vector))
        return fmt::format("a {}, three numbers \"x y z\"", valueKind(type));
    return "a value of type " + valueKind(type);
}

std::size_t numberCount(const std::type_info& type) {
    if (type == typeid(double))
        return 1;
    if (type == typeid(PhysicalSpace::point) || type == typeid(PhysicalSpace::vector))
        return 3;
    return type == typeid(rgba_float_t) ? 4 : 0;
}

std::vector<double> numbersOf(const VValueBase& value) {
    double number = 0;
    if (read(value, number))
        return {number};
    rgba_float_t color;
    if (read(value, color))
        return {asWritten(color.r), asWritten(color.g), asWritten(color.b), asWritten(color.a)};
    PhysicalSpace::point point;
    if (read(value, point))
        return {point.x, point.y, point.z};
    PhysicalSpace::vector vector;
    if (read(value, vector))
        return {vector.x, vector.y, vector.z};
    return {};
}

bool isFinite(const VValueBase& value) {
    const std::vector<double> numbers = numbersOf(value);
    return std::all_of(numbers.begin(), numbers.end(), [](double number) { return std::isfinite(number); });
}

StrongPtr<VValueBase> makeValue(const std::type_info& type, std::span<const double> numbers) {
    if (numbers.size() != numberCount(type))
        return {};
    if (type == typeid(double))
        return make(numbers[0]);
    if (type == typeid(PhysicalSpace::point))
        return make(PhysicalSpace::point{numbers[0], numbers[1], numbers[2]});
    if (type == typeid(PhysicalSpace::vector))
        return make(PhysicalSpace::vector{numbers[0], numbers[1], numbers[2]});
    if (type == typeid(rgba_float_t))
        return make(rgba_float_t{static_cast<float>(numbers[0]), static_cast<float>(numbers[1]),
                                 static_cast<float>(numbers[2]), static_cast<float>(numbers[3])});
    return {};
}

} // namespace korl
