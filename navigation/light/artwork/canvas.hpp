#pragma once

// A picture drawn by formula, and what such formulas are made of. Everything is computed by additions,
// multiplications, divisions, square roots and floors, which IEEE 754 rounds the same everywhere, and
// compiled without contraction: the same bits come out of every compiler at every level of optimisation.

#include <cmath>
#include <cstdint>
#include <vector>

namespace artwork {

/// Red, green, blue as they are stored (not linear), from 0 to 1, and how much the colour covers what is
/// behind.
struct Color {
    double red = 0;
    double green = 0;
    double blue = 0;
    double cover = 0;
};

/// A place in a drawing: `x` to the right, `y` down.
struct Place {
    double x = 0;
    double y = 0;
};

/// A picture of 16 bits a channel, rows from top to bottom, four values a pixel: red, green, blue, alpha.
/// The colours are not multiplied by alpha; where alpha is 0 they are 0 too.
struct Picture {
    int width = 0;
    int height = 0;
    std::vector<std::uint16_t> samples;
};

inline double clamp01(double value) {
    return value < 0 ? 0 : value > 1 ? 1 : value;
}

inline double mix(double from, double to, double share) {
    return from + (to - from) * share;
}

inline Color mix(const Color& from, const Color& to, double share) {
    return {mix(from.red, to.red, share), mix(from.green, to.green, share), mix(from.blue, to.blue, share),
            mix(from.cover, to.cover, share)};
}

/// 0 below `low`, 1 above `high`, a cubic without corners between.
inline double ramp(double low, double high, double value) {
    const double share = clamp01((value - low) / (high - low));
    return share * share * (3 - 2 * share);
}

/// 1 at `middle`, 0 from `reach` away on, a bell between.
inline double bump(double middle, double reach, double value) {
    const double share = (value - middle) / reach;
    const double rest = clamp01(1 - share * share);
    return rest * rest;
}

/// The colour scaled in brightness; the cover stays.
inline Color lit(const Color& color, double light) {
    return {clamp01(color.red * light), clamp01(color.green * light), clamp01(color.blue * light),
            color.cover};
}

/// `front` laid over `back`.
Color over(const Color& front, const Color& back);

/// A colour between the stops that stand at 0, 1/n, ... 1; outside of them the outer ones.
Color gradient(const std::vector<Color>& stops, double share);

/// A number from 0 to 1 that changes smoothly along `x` and differs from one `seed` to the next.
double waver(double x, std::uint32_t seed);

/// Appends one pixel, from the sum of the colours, each multiplied by its cover, of `count` points.
void store(Picture& picture, const Color& sum, int count);

/// Draws a picture: the average of `drawing(Place)` over a grid of points in each pixel.
/// @param scale units of the drawing per pixel.
template <class Drawing>
Picture draw(int width, int height, double scale, const Drawing& drawing) {
    constexpr int grid = 8; // 64 points a pixel: edges without steps
    Picture picture{width, height, {}};
    for (int row = 0; row < height; ++row)
        for (int column = 0; column < width; ++column) {
            Color sum;
            for (int point = 0; point < grid * grid; ++point) {
                const int point_row = point / grid, point_column = point % grid;
                const Color color = drawing(Place{scale * (column + (point_column + 0.5) / grid),
                                                  scale * (row + (point_row + 0.5) / grid)});
                sum.red += color.red * color.cover;
                sum.green += color.green * color.cover;
                sum.blue += color.blue * color.cover;
                sum.cover += color.cover;
            }
            store(picture, sum, grid * grid);
        }
    return picture;
}

} // namespace artwork
