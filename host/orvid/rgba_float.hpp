#pragma once

namespace Orvid {

/// A colour: red, green, blue and alpha, nominally 0 to 1 and not clamped. Pictures take the numbers as
/// they are, without a transfer curve.
struct rgba_float_t {
    float r = 0, g = 0, b = 0, a = 0;

    friend constexpr bool operator==(const rgba_float_t&, const rgba_float_t&) = default;
};

} // namespace Orvid
