#include "shell/base/printable.hpp"

#include <cstddef>
#include <fmt/core.h>

namespace korl {

namespace {

/// The length in bytes of the UTF-8 character that `text` begins with; 0 where it begins with none. Overlong
/// forms, surrogates and numbers beyond Unicode are not characters.
std::size_t characterLength(std::string_view text) {
    const auto byte = [&](std::size_t index) { return static_cast<unsigned char>(text[index]); };
    const unsigned char first = byte(0);
    if (first < 0x80)
        return 1;
    const std::size_t length = first < 0xc2 ? 0 : first < 0xe0 ? 2 : first < 0xf0 ? 3 : first < 0xf5 ? 4 : 0;
    if (length == 0 || text.size() < length)
        return 0;
    for (std::size_t index = 1; index < length; ++index)
        if ((byte(index) & 0xc0) != 0x80)
            return 0;
    const unsigned char second = byte(1);
    const bool is_refused = (first == 0xe0 && second < 0xa0) || (first == 0xed && second > 0x9f) ||
                            (first == 0xf0 && second < 0x90) || (first == 0xf4 && second > 0x8f);
    return is_refused ? 0 : length;
}

std::string byteEscape(char byte) {
    return fmt::format("\\x{:02x}", static_cast<unsigned char>(byte));
}

std::string escaped(std::string_view text, bool keeps_line_ends) {
    std::string shown;
    shown.reserve(text.size());
    while (!text.empty()) {
        const std::size_t length = characterLength(text);
        const std::string_view character = text.substr(0, length == 0 ? 1 : length);
        const char first = character.front();
        if (length == 2 && first == '\xc2' && static_cast<unsigned char>(character[1]) < 0xa0)
            shown += "\\u00" + byteEscape(character[1]).substr(2); // C1
        else if (length > 1 || first == '\t' || (first == '\n' && keeps_line_ends))
            shown += character;
        else if (first == '\n')
            shown += "\\n";
        else if (length == 0 || static_cast<unsigned char>(first) < 0x20 || first == '\x7f')
            shown += byteEscape(first);
        else
            shown += first;
        text.remove_prefix(character.size());
    }
    return shown;
}

} // namespace

std::string printable(std::string_view text) {
    return escaped(text, false);
}

std::string inQuotes(std::string_view text) {
    return fmt::format("\"{}\"", printable(text));
}

std::string printableLines(std::string_view text) {
    return escaped(text, true);
}

} // namespace korl
