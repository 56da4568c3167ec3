#pragma once

#include <orvid/coordinates.hpp>
#include <orvid/fixed_array.hpp>
#include <orvid/physical_space.hpp>
#include <orvid/quadratic.hpp>
#include <orvid/rgba_float.hpp>

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

namespace Qelt::RenderNamespace {

/// The value of a shader uniform. The order of the alternatives is part of the interface; colours are stored
/// as four floats, red, green, blue, alpha.
using UniformValue = std::variant<int,                                                              //  0
                                  float,                                                            //  1
                                  double,                                                           //  2
                                  unsigned int,                                                     //  3
                                  Orvid::FixedArray<int, 2>,                                        //  4
                                  Orvid::FixedArray<float, 2>,                                      //  5
                                  Orvid::FixedArray<double, 2>,                                     //  6
                                  Orvid::FixedArray<int, 3>,                                        //  7
                                  Orvid::Coordinates<Orvid::Cartesian3D, float>::point,             //  8
                                  Orvid::FixedArray<float, 3>,                                      //  9
                                  Orvid::PhysicalSpace::point,                                      // 10
                                  Orvid::FixedArray<double, 3>,                                     // 11
                                  Orvid::FixedArray<int, 4>,                                        // 12
                                  Orvid::FixedArray<float, 4>,                                      // 13
                                  Orvid::FixedArray<double, 4>,                                     // 14
                                  Orvid::Quadratic<2, float>,                                       // 15
                                  Orvid::Quadratic<3, float>,                                       // 16
                                  Orvid::Quadratic<4, float>,                                       // 17
                                  std::vector<Orvid::FixedArray<float, 3>>,                         // 18
                                  std::vector<Orvid::Coordinates<Orvid::Cartesian3D, float>::point> // 19
                                  >;

/// Uniform values by name. Names are ordered byte by byte, the shorter one first on a common prefix; they
/// keep their literal "$$", which the renderer replaces.
using UniformMap = std::map<std::string, UniformValue, std::less<>>;

/// A colour as the map holds it: red, green, blue, alpha.
using FloatColor = Orvid::FixedArray<float, 4>;

/// A value as the map takes it: colours and vectors turn into the arrays that stand for them.
template <class Value>
decltype(auto) asUniform(Value&& value) {
    using Given = std::remove_cvref_t<Value>;
    if constexpr (std::is_same_v<Given, Orvid::rgba_float_t>)
        return FloatColor{value.r, value.g, value.b, value.a};
    else if constexpr (std::is_same_v<Given, Orvid::PhysicalSpace::vector>)
        return Orvid::FixedArray<double, 3>{value.x, value.y, value.z};
    else
        return std::forward<Value>(value);
}

/// Sets an entry of the map. One that is missing is inserted; one of another alternative is replaced.
template <class Value>
void writeUniform(UniformMap& map, std::string_view name, Value&& value) {
    using Given = decltype(asUniform(std::forward<Value>(value)));
    constexpr bool takes = std::is_constructible_v<UniformValue, Given>;
    static_assert(takes, "writeUniform takes the types of UniformValue, colours (Orvid::rgba_float_t) and "
                         "vectors (Orvid::PhysicalSpace::vector), nothing else");
    if constexpr (takes) {
        const auto entry = map.lower_bound(name);
        if (entry != map.end() && entry->first == name)
            entry->second = asUniform(std::forward<Value>(value));
        else
            map.emplace_hint(entry, name, asUniform(std::forward<Value>(value)));
    }
}

} // namespace Qelt::RenderNamespace
