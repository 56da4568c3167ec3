#include "shell/image/image.hpp"

#include "shell/base/error.hpp"

#include <algorithm>
#include <fmt/core.h>
#include <string>

namespace korl {

namespace {

constexpr std::size_t bytes_per_pixel = 4;

std::string sizeText(const Image& image) {
    return fmt::format("{} x {}", image.width, image.height);
}

std::size_t bytesPerRow(const Image& image) {
    return static_cast<std::size_t>(image.width) * bytes_per_pixel;
}

void copyInto(Image& whole, const Image& part, std::size_t first_column) {
    for (std::size_t row = 0; row < static_cast<std::size_t>(part.height); ++row)
        std::copy_n(part.pixels.data() + row * bytesPerRow(part), bytesPerRow(part),
                    whole.pixels.data() + row * bytesPerRow(whole) + first_column * bytes_per_pixel);
}

} // namespace

void validate(const Image& image) {
    if (image.width < 1 || image.height < 1)
        throw Error(
            fmt::format("a picture of {} pixels has no content; its width and height must be 1 or more",
                        sizeText(image)));
    const std::size_t expected = bytesPerRow(image) * static_cast<std::size_t>(image.height);
    if (image.pixels.size() != expected)
        throw Error(fmt::format("a picture of {} pixels must have {} bytes, but this one has {}",
                                sizeText(image), expected, image.pixels.size()));
}

void makeAlphaStraight(Image& image) {
    for (std::size_t at = 0; at + 3 < image.pixels.size(); at += bytes_per_pixel) {
        const int alpha = image.pixels[at + 3];
        for (std::size_t i = at; i < at + 3 && alpha < 255; ++i)
            image.pixels[i] = alpha == 0 ? std::uint8_t{0}
                                         : static_cast<std::uint8_t>(std::min(
                                               255, (image.pixels[i] * 255 + alpha / 2) / alpha)); // rounded
    }
}

Image sideBySide(const Image& left, const Image& right) {
    validate(left);
    validate(right);
    if (left.height != right.height)
        throw Error(
            fmt::format("a picture of {} pixels can't stand beside one of {}: their heights must be equal",
                        sizeText(left), sizeText(right)));
    Image both{left.width + right.width, left.height,
               std::vector<std::uint8_t>(left.pixels.size() + right.pixels.size())};
    copyInto(both, left, 0);
    copyInto(both, right, static_cast<std::size_t>(left.width));
    return both;
}

} // namespace korl
