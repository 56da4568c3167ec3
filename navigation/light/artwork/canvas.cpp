#include "canvas.hpp"

#include <algorithm>

namespace artwork {

namespace {

/// A number from 0 to 1 for each whole number and seed, without visible order.
double scattered(std::int64_t number, std::uint32_t seed) {
    auto bits = static_cast<std::uint32_t>(number) * 0x9e3779b1u + seed * 0x85ebca6bu;
    bits = (bits ^ (bits >> 15)) * 0x2c1b3c6du;
    bits = (bits ^ (bits >> 12)) * 0x297a2d39u;
    return static_cast<double>((bits ^ (bits >> 15)) >> 8) / 0xffffff;
}

std::uint16_t sample(double value) {
    return static_cast<std::uint16_t>(std::floor(clamp01(value) * 65535 + 0.5));
}

} // namespace

Color over(const Color& front, const Color& back) {
    const double cover = front.cover + back.cover * (1 - front.cover);
    if (cover <= 0)
        return {};
    Color both = mix(back, front, front.cover / cover);
    both.cover = cover;
    return both;
}

Color gradient(const std::vector<Color>& stops, double share) {
    const double position = clamp01(share) * static_cast<double>(stops.size() - 1);
    const auto stop = std::min(static_cast<std::size_t>(position), stops.size() - 2);
    return mix(stops[stop], stops[stop + 1], position - static_cast<double>(stop));
}

double waver(double x, std::uint32_t seed) {
    const double whole = std::floor(x);
    const auto number = static_cast<std::int64_t>(whole);
    return mix(scattered(number, seed), scattered(number + 1, seed), ramp(0, 1, x - whole));
}

void store(Picture& picture, const Color& sum, int count) {
    const std::uint16_t alpha = sample(sum.cover / count);
    if (alpha == 0)
        picture.samples.insert(picture.samples.end(), 4, 0);
    else
        picture.samples.insert(picture.samples.end(),
                               {sample(sum.red / sum.cover), sample(sum.green / sum.cover),
                                sample(sum.blue / sum.cover), alpha});
}

} // namespace artwork
