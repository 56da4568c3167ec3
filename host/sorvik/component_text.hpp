#pragma once

#include <sorvik/export.hpp>

#include <span>
#include <string>
#include <string_view>

namespace Qelt {

/// Numbers as text: separated by one blank, each the shortest text that reads back to the same bits.
/// Not-a-number keeps its sign but not its payload.
SORVIK_EXPORT std::string componentsToText(std::span<const double> components);
SORVIK_EXPORT std::string componentsToText(std::span<const float> components);

/// Reads exactly as many numbers as there are `components`, separated by blanks, tabs or line breaks, which
/// may also stand before and after them. A number may begin with a plus sign. Each is rounded to the nearest
/// value of its type.
/// @returns false for any other text, a number beyond the range of the type included; the components then
/// keep
///          their values.
SORVIK_EXPORT bool componentsFromText(std::span<double> components, std::string_view text);
SORVIK_EXPORT bool componentsFromText(std::span<float> components, std::string_view text);

} // namespace Qelt
