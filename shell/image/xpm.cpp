#include "shell/image/xpm.hpp"

#include "shell/base/error.hpp"
#include "shell/base/printable.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <fmt/core.h>
#include <map>
#include <sstream>
#include <string>
#include <string_view>

namespace korl {

namespace {

using Color = std::array<std::uint8_t, 4>;

Color parseXpmColor(const std::string& line, const std::string& text) {
    if (text == "None")
        return {0, 0, 0, 0};
    Color color{0, 0, 0, 255};
    bool read = text.size() == 7 && text[0] == '#';
    for (std::size_t i = 0; read && i < 3; ++i) {
        const char* const first = text.data() + 1 + 2 * i;
        read = std::from_chars(first, first + 2, color[i], 16).ptr == first + 2;
    }
    if (!read)
        throw Error(
            fmt::format("the XPM image has the colour line {}, expected \"KEY c #RRGGBB\" or \"KEY c None\"",
                        inQuotes(line)));
    return color;
}

} // namespace

Image decodeXpm(const char* const* lines) {
    std::istringstream header(lines[0]);
    int width = 0, height = 0, color_count = 0;
    std::size_t key_size = 0;
    if (!(header >> width >> height >> color_count >> key_size) || width < 1 || height < 1 ||
        color_count < 1 || key_size < 1)
        throw Error(fmt::format(
            "the XPM image has the header \"{}\", expected \"WIDTH HEIGHT COLORS CHARACTERS\"", lines[0]));
    std::map<std::string, Color, std::less<>> colors;
    for (int i = 1; i <= color_count; ++i) {
        const std::string line = lines[i];
        std::istringstream rest(line.substr(std::min(key_size, line.size())));
        std::string kind, color;
        rest >> kind >> color;
        colors[line.substr(0, key_size)] = parseXpmColor(line, kind == "c" ? color : "");
    }
    Image image{width, height, {}};
    for (int y = 0; y < height; ++y) {
        const std::string_view row = lines[1 + color_count + y];
        if (row.size() != key_size * static_cast<std::size_t>(width))
            throw Error(fmt::format("the XPM image has a row of {} characters, expected {}", row.size(),
                                    key_size * static_cast<std::size_t>(width)));
        for (std::size_t at = 0; at < row.size(); at += key_size) {
            const auto color = colors.find(row.substr(at, key_size));
            if (color == colors.end())
                throw Error(fmt::format("the XPM image uses {}, which is not one of its colours",
                                        inQuotes(row.substr(at, key_size))));
            image.pixels.insert(image.pixels.end(), color->second.begin(), color->second.end());
        }
    }
    return image;
}

} // namespace korl
