#pragma once

#include <orvid/coordinates.hpp>

namespace Orvid {

/// The space in which scenes are laid out: Cartesian, double precision, z up.
using PhysicalSpace = Coordinates<Cartesian3D, double>;

/// A ball in physical space: what is needed to see all of something.
struct Ball {
    PhysicalSpace::point center;
    double radius = 0;

    friend constexpr bool operator==(const Ball&, const Ball&) = default;
};

} // namespace Orvid
