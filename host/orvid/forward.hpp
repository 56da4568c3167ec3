#pragma once

#include <cstddef>

namespace Orvid {

struct Ball;
struct Cartesian3D;
struct rgba_float_t;
template <class Chart, class T>
struct Coordinates;
template <class T, std::size_t N>
struct FixedArray;
template <std::size_t N, class T>
struct Quadratic;

} // namespace Orvid
