#pragma once

#include <cstdint>
#include <vector>

namespace korl {

/// A picture of eight bits a channel.
struct Image {
    int width = 0;  ///< pixels
    int height = 0; ///< pixels
    /// Red, green, blue and alpha of each, the rows from top to bottom, left to right. Alpha is straight:
    /// the colours are not multiplied by it.
    std::vector<std::uint8_t> pixels;
};

/// Divides colours that are multiplied by their alpha by it; where alpha is 0, all becomes 0.
void makeAlphaStraight(Image& image);

/// One picture beside the other. Throws Error where their heights differ, or where one hasn't as many bytes
/// as its size tells.
Image sideBySide(const Image& left, const Image& right);

/// Throws Error where the size isn't positive or the picture hasn't as many bytes as its size tells.
void validate(const Image& image);

} // namespace korl
