#include "icons.hpp"

namespace artwork {

namespace {

// The drawing is 64 units wide and high. The lamp's front is an ellipse: a circle seen from the side.
constexpr Place front{27, 31};
constexpr double front_width = 14.5;  ///< half of it
constexpr double front_height = 23;   ///< half of it
constexpr double housing_length = 23; ///< from the front backwards, to the left

double square(double value) {
    return value * value;
}

/// The distance from the middle of the front, 1 at its outer edge.
double fromFront(const Place& place) {
    return std::sqrt(square((place.x - front.x) / front_width) + square((place.y - front.y) / front_height));
}

/// The bowl behind the front, enamelled, lit from above.
Color housing(const Place& place) {
    const double back = (front.x - place.x) / housing_length;
    if (back < 0 || back > 1)
        return {};
    const double half_height = front_height * std::sqrt(1 - back * back);
    const double aside = (place.y - front.y) / (half_height + 0.01);
    Color enamel = gradient({{0.45, 0.60, 0.74, 1},
                             {0.80, 0.90, 0.97, 1},
                             {0.36, 0.54, 0.72, 1},
                             {0.20, 0.36, 0.55, 1},
                             {0.13, 0.24, 0.41, 1},
                             {0.26, 0.36, 0.50, 1}},
                            (aside + 1) / 2);
    enamel = lit(enamel, mix(1.1, 0.75, back));
    enamel.cover = ramp(-0.5, 0.5, half_height - (aside < 0 ? -aside : aside) * half_height);
    return enamel;
}

/// The foot under the housing.
Color foot(const Place& place) {
    const double down = (place.y - 48) / 13;
    if (down < 0 || down > 1)
        return {};
    const double half_width = mix(3.2, 7.5, ramp(0.55, 0.95, down));
    const double aside = (place.x - 16) / half_width;
    Color iron = lit({0.40, 0.44, 0.52, 1}, 0.65 + 0.8 * bump(-0.3, 0.8, aside));
    iron.cover = ramp(-0.5, 0.5, half_width - (aside < 0 ? -aside : aside) * half_width);
    return iron;
}

/// The ring that holds the glass: chrome, which shows the sky above and the ground below.
Color chrome(const Place& place, double distance) {
    const double down = (place.y - front.y + front_height) / (2 * front_height);
    Color metal = gradient({{0.98, 0.99, 1.00, 1},
                            {0.72, 0.81, 0.90, 1},
                            {0.95, 0.98, 1.00, 1},
                            {0.30, 0.34, 0.40, 1},
                            {0.60, 0.58, 0.56, 1},
                            {0.92, 0.88, 0.80, 1},
                            {0.48, 0.47, 0.48, 1}},
                           down);
    metal = lit(metal, mix(0.45, 1.1, bump(0.87, 0.19, distance)));
    metal.cover = ramp(1.02, 0.98, distance);
    return metal;
}

/// The glass: blinding in the middle, the reflector's gold around it, upright flutes all over.
Color glass(const Place& place, double distance) {
    const double flute = (place.x - front.x) / 3.2;
    const double light = clamp01(distance / 0.74) + 0.07 * (waver(flute * 2, 5) - 0.5);
    Color shine = gradient({{1.00, 1.00, 1.00, 1},
                            {1.00, 1.00, 0.93, 1},
                            {1.00, 0.97, 0.72, 1},
                            {1.00, 0.89, 0.44, 1},
                            {0.98, 0.76, 0.24, 1},
                            {0.80, 0.56, 0.16, 1}},
                           light);
    shine.cover = ramp(0.76, 0.72, distance);
    return shine;
}

/// Rays that fan out from the front to the right, a little apart from each other, the middle one the longest.
Color rays(const Place& place) {
    const double x = place.x + 2, y = place.y - front.y; // they seem to come from far behind the lamp
    if (place.x < front.x)
        return {};
    const double turn = y / x / 0.235 + 0.5;
    const double ray = std::floor(turn);
    if (ray < -2 || ray > 2)
        return {};
    const double length = std::sqrt(x * x + y * y);
    const double across = turn - ray - 0.5, aside = across < 0 ? -across : across;
    Color light =
        gradient({{1.00, 0.97, 0.66, 1}, {1.00, 0.88, 0.34, 1}, {1.00, 0.75, 0.12, 1}, {0.98, 0.60, 0.04, 1}},
                 (length - 38) / 26);
    light = lit(light, 1 - 0.25 * ramp(0.1, 0.4, aside));
    light.cover = ramp(0.40, 0.34, aside) * ramp(64.5, 63, length + 30 * square(aside));
    return light;
}

} // namespace

Picture drawHeadlight(int size) {
    return draw(size, size, 64.0 / size, [](const Place& place) {
        const double distance = fromFront(place);
        Color color = rays(place);
        color = over(foot(place), color);
        color = over(housing(place), color);
        color = over(chrome(place, distance), color);
        return over(glass(place, distance), color);
    });
}

} // namespace artwork
