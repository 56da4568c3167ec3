#include "shell/catalogue/value_kind.hpp"

#include <orvid/physical_space.hpp>
#include <orvid/rgba_float.hpp>
#include <tessan/typename.hpp>

namespace korl {

using Orvid::PhysicalSpace;

std::string valueKind(const std::type_info& type) {
    if (type == typeid(Orvid::rgba_float_t))
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
    if (type == typeid(Orvid::rgba_float_t))
        return "a color, four numbers \"red green blue alpha\"";
    if (type == typeid(PhysicalSpace::point) || type == typeid(PhysicalSpace::vector))
        return "a " + valueKind(type) + ", three numbers \"x y z\"";
    return "a value of type " + valueKind(type);
}

} // namespace korl
