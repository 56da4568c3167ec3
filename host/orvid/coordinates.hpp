#pragma once

namespace Orvid {

/// The right-handed Cartesian chart of three-dimensional space: components x, y, z along orthogonal axes.
struct Cartesian3D {};

template <class Chart, class T>
struct Coordinates;

/// Points and vectors in Cartesian coordinates of component type `T`. They are types of their own, since they
/// change differently when space is moved: a point moves along, a vector (a difference of points) does not.
template <class T>
struct Coordinates<Cartesian3D, T> {
    struct vector {
        T x{}, y{}, z{};

        friend constexpr bool operator==(const vector&, const vector&) = default;
    };

    struct point {
        T x{}, y{}, z{};

        friend constexpr bool operator==(const point&, const point&) = default;
        friend constexpr vector operator-(const point& to, const point& from) {
            return {to.x - from.x, to.y - from.y, to.z - from.z};
        }
        friend constexpr point operator+(const point& from, const vector& by) {
            return {from.x + by.x, from.y + by.y, from.z + by.z};
        }
    };
};

} // namespace Orvid
