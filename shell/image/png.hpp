#pragma once

#include "shell/image/image.hpp"

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace korl {

/// A picture as a PNG file: eight bits a channel, red, green, blue and alpha, marked as sRGB.
/// @param text keywords of 1 to 79 Latin-1 characters, and what they say in UTF-8, kept in the file in this
/// order. Throws Error for an image that `validate` refuses, and for a keyword that PNG does not allow.
std::vector<std::uint8_t> encodePng(const Image& image,
                                    std::span<const std::pair<std::string, std::string>> text = {});

/// The ASCII text that a PNG file keeps under a keyword, the last one of several. Empty where it has none,
/// and where the file is not whole: each chunk's checksum must be right, and the end chunk must be there.
std::string textOfPng(std::span<const std::uint8_t> png, std::string_view keyword);

/// Throws InvalidValue for a file's name with another suffix than that of PNG, which would say of the bytes
/// what they are not. A name without a suffix is taken.
void requirePngName(const std::filesystem::path& file);

/// Reads a PNG file of any kind as eight bits a channel, red, green, blue and alpha.
/// Throws Error for bytes that are not a PNG file, or a damaged or truncated one.
Image decodePng(std::span<const std::uint8_t> png);

} // namespace korl
