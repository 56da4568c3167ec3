#include "icons.hpp"

#include <algorithm>

namespace artwork {

namespace {

// The drawing is 64 units wide, whatever its size in pixels.
constexpr double middle = 32;
constexpr double rim = 64;        ///< where the basket begins, and the flame comes out of it
constexpr double basket_end = 86; ///< where the basket ends in the collar
constexpr double collar_end = 93; ///< where the collar ends and the shaft begins

/// One tongue of flame: a drop that comes out of a round base and bends to its tip.
struct Tongue {
    Place tip;
    Place base;
    double radius = 0;
    double bend = 0; ///< how far the middle of its axis lies beside the straight line
};

constexpr Tongue tongues[] = {{{36, 2}, {32, 80}, 16.5, -5},
                              {{12, 24}, {28, 74}, 9.5, -3},
                              {{53, 30}, {36, 74}, 9, 4},
                              {{47, 7}, {46, 25}, 2.6, 1.5}}; // a spark of its own

/// How deep in the tongue a place is: 1 on its axis, 0 at its edge, less outside.
double depth(const Tongue& tongue, const Place& place) {
    const double along = (place.y - tongue.tip.y) / (tongue.base.y - tongue.tip.y);
    if (along <= 0 || along >= 1)
        return -1;
    const double axis = mix(tongue.tip.x, tongue.base.x, along) + tongue.bend * 4 * along * (1 - along);
    // The half-width of a drop, s √(1 − s), is widest, 2 / √27, at two thirds.
    const double half_width = tongue.radius * along * std::sqrt(1 - along) * 2.598;
    const double aside = (place.x - axis) / half_width;
    return 1 - (aside < 0 ? -aside : aside);
}

Color flame(const Place& place) {
    double deepest = -1;
    for (const Tongue& tongue : tongues)
        deepest = std::max(deepest, depth(tongue, place));
    // It is hottest low down in the middle, and reddest at the tips.
    const double heat = deepest * mix(0.55, 1.15, ramp(4, 56, place.y));
    Color color = gradient({{0.74, 0.12, 0.02, 1},
                            {0.93, 0.30, 0.03, 1},
                            {0.99, 0.52, 0.06, 1},
                            {1.00, 0.73, 0.14, 1},
                            {1.00, 0.90, 0.38, 1},
                            {1.00, 0.98, 0.78, 1},
                            {1.00, 1.00, 0.94, 1}},
                           heat);
    color.cover = ramp(0, 0.16, deepest);
    return color;
}

Color glow(const Place& place) {
    const double x = (place.x - middle) / 32, y = (place.y - 45) / 44;
    const double near = clamp01(1 - x * x - y * y);
    return {1, 0.62, 0.16, 0.42 * near * near};
}

/// How a round bar that is lit from the left looks across its width. @param aside from -1 to 1.
double roundness(double aside) {
    return 0.62 + 0.75 * bump(-0.35, 0.9, aside) + 0.28 * bump(1, 0.35, aside);
}

/// Whether a place lies in a body of the given half-width around the middle; soft at the edge.
double inside(const Place& place, double half_width) {
    const double aside = place.x - middle;
    return ramp(-0.5, 0.5, half_width - (aside < 0 ? -aside : aside));
}

Color shaft(const Place& place, double end) {
    const double along = (place.y - collar_end) / (end - collar_end);
    if (along < -0.1 || along > 1)
        return {};
    const double rounding = std::sqrt(clamp01((end - place.y) / 4)); // the end is cut round
    const double half_width = mix(6.6, 4.9, along) * mix(0.45, 1, rounding);
    const double aside = (place.x - middle) / half_width;
    const double grain = waver(place.x * 1.1 + waver(place.y / 9, 1) * 2, 2) * 0.7 +
                         waver(place.x * 3.1 + waver(place.y / 5, 3), 4) * 0.3;
    Color wood = mix({0.42, 0.24, 0.11, 1}, {0.66, 0.41, 0.20, 1}, grain);
    // A strap of leather is wound around the grip.
    const double turn = (place.y + 0.55 * (place.x - middle)) / 7;
    const double on_strap =
        bump(0.5, 0.36, turn - std::floor(turn)) * ramp(0.34, 0.36, along) * ramp(0.84, 0.82, along);
    wood = mix(wood, {0.30, 0.13, 0.07, 1}, ramp(0.2, 0.5, on_strap));
    wood = lit(wood, roundness(aside) * mix(1.15, 0.92, along));
    wood.cover = inside(place, half_width);
    return wood;
}

/// Iron that is lit by the fire. @param aside across its width, from -1 to 1. @param fire from 0 to 1.
Color iron(double aside, double fire) {
    return mix(lit({0.34, 0.36, 0.41, 1}, roundness(aside)), {0.98, 0.60, 0.24, 1}, fire);
}

/// The basket's body with its slits, through which the embers glow.
Color basket(const Place& place) {
    const double along = (place.y - rim) / (basket_end - rim);
    if (along < 0 || along > 1)
        return {};
    const double half_width = 7.5 + 10.5 * std::sqrt(1 - along * along * 0.98);
    const double aside = (place.x - middle) / half_width;
    // The bars stand evenly around the basket; seen from the side they crowd at its edges.
    const double around = 2.6 * aside * (1 + 0.25 * aside * aside);
    const double slit = ramp(0.55, 0.75, bump(0.5, 0.42, around - std::floor(around))) *
                        ramp(0.20, 0.28, along) * ramp(0.80, 0.70, along) *
                        ramp(0.97, 0.90, aside < 0 ? -aside : aside);
    const Color embers = gradient({{1, 0.85, 0.35, 1}, {1, 0.55, 0.10, 1}, {0.72, 0.16, 0.03, 1}}, along);
    Color color = mix(iron(aside, 0.25 * ramp(0.5, 0, along)), embers, slit);
    color.cover = inside(place, half_width);
    return color;
}

/// A ring around the torch, from `top` to `bottom`, bulging.
Color ring(const Place& place, double top, double bottom, double half_width, double fire) {
    const double along = (place.y - top) / (bottom - top);
    if (along < 0 || along > 1)
        return {};
    const double bulge = 4 * along * (1 - along);
    const double aside = (place.x - middle) / half_width;
    Color color = lit(iron(aside, fire), 0.75 + 0.5 * bump(0.3, 0.5, along));
    color.cover = inside(place, half_width - 1.2 * (1 - bulge)) * ramp(0, 0.12, along) * ramp(1, 0.88, along);
    return color;
}

} // namespace

Picture drawTorch(int width, int height) {
    const double scale = 64.0 / width;
    const double end = height * scale - 1.5;
    return draw(width, height, scale, [end](const Place& place) {
        Color color = over(flame(place), glow(place));
        color = over(shaft(place, end), color);
        color = over(basket(place), color);
        color = over(ring(place, basket_end - 1.5, collar_end + 1, 9.2, 0), color);
        return over(ring(place, rim - 2.5, rim + 4, 19.6, 0.3), color);
    });
}

} // namespace artwork
