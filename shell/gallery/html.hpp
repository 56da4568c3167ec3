#pragma once

#include "shell/image/image.hpp"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace korl {

/// A text as it stands in HTML, between tags or in a quoted attribute.
std::string escapeHtml(std::string_view text);

/// Bytes in base 64 (RFC 4648, section 4), padded.
std::string toBase64(std::span<const std::uint8_t> bytes);

/// An `img` element that holds its picture itself.
/// @param alternative what is told to those who don't see it, not yet escaped.
std::string imageElement(const Image& image, std::string_view alternative);

} // namespace korl
