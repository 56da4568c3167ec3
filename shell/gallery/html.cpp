#include "shell/gallery/html.hpp"

#include "shell/image/png.hpp"

#include <fmt/core.h>

namespace korl {

std::string escapeHtml(std::string_view text) {
    std::string result;
    for (const char c : text)
        switch (c) {
        case '&':
            result += "&amp;";
            break;
        case '<':
            result += "&lt;";
            break;
        case '>':
            result += "&gt;";
            break;
        case '"':
            result += "&quot;";
            break;
        case '\'':
            result += "&#39;";
            break;
        default:
            result += c;
        }
    return result;
}

std::string toBase64(std::span<const std::uint8_t> bytes) {
    constexpr std::string_view digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string result;
    result.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        std::uint32_t group = 0; // three bytes, zeros behind the last one
        for (std::size_t k = 0; k < 3; ++k)
            group = group << 8 | (i + k < bytes.size() ? bytes[i + k] : 0u);
        for (std::size_t k = 0; k < 4; ++k)
            result += i + k > bytes.size() ? '=' : digits[group >> (18 - 6 * k) & 63u];
    }
    return result;
}

std::string imageElement(const Image& image, std::string_view alternative) {
    return fmt::format(R"(<img src="data:image/png;base64,{}" width="{}" height="{}" alt="{}">)",
                       toBase64(encodePng(image)), image.width, image.height, escapeHtml(alternative));
}

} // namespace korl
