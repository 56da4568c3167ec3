#include "shell/base/color_text.hpp"

#include "shell/base/error.hpp"
#include "shell/base/printable.hpp"

#include <sorvik/component_text.hpp>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <fmt/core.h>
#include <span>

namespace korl {

namespace {

bool readHexadecimal(const std::string& text, std::array<float, 4>& color) {
    if (text.size() != 7 && text.size() != 9)
        return false;
    for (std::size_t i = 0; 2 * i + 1 < text.size(); ++i) {
        std::uint8_t byte = 0;
        const char* const first = text.data() + 1 + 2 * i;
        const auto result = std::from_chars(first, first + 2, byte, 16);
        if (result.ec != std::errc() || result.ptr != first + 2)
            return false;
        color[i] = static_cast<float>(byte) / 255.0f;
    }
    return true;
}

} // namespace

Orvid::rgba_float_t parseColor(const std::string& text) {
    std::array<float, 4> color{0, 0, 0, 1};
    const bool hexadecimal = text.starts_with('#');
    const bool read = hexadecimal ? readHexadecimal(text, color)
                                  : Qelt::componentsFromText(std::span(color).first<3>(), text) ||
                                        Qelt::componentsFromText(color, text);
    const bool in_range = std::all_of(color.begin(), color.end(),
                                      [](float component) { return component >= 0 && component <= 1; });
    if (!read || !in_range)
        throw Error(fmt::format("{} is not a colour; write \"#rrggbb\", \"#rrggbbaa\", or three or four "
                                "numbers from 0 to 1 such as \"0.1 0.1 0.12\"",
                                inQuotes(text)));
    return {color[0], color[1], color[2], color[3]};
}

} // namespace korl
