#pragma once

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace korl::ply {

enum class Format { text, little_endian, big_endian };

struct Type {
    std::string_view name, other_name;
    std::size_t size; ///< bytes in a binary file
    enum { is_signed, is_unsigned, is_float } kind;
};

struct Property {
    std::string_view name;
    const Type* type;
    const Type* count_type; ///< of a list's length; null for a single value

    bool isCornerList() const { return count_type && (name == "vertex_indices" || name == "vertex_index"); }
};

struct Element {
    std::string_view name;
    std::uint64_t count;
    std::vector<Property> properties{};
    bool is_open = true; ///< no other line came after its properties so far
};

struct Header {
    Format format = Format::text;
    std::vector<Element> elements;
};

[[noreturn]] void fail(const std::string& reason);

/// A word of the file in quotes, for messages.
std::string quoted(std::string_view word);

/// The file, as far as it was not read, and which line was read last.
struct Bytes {
    std::string_view rest;
    std::size_t line = 0;

    /// Cuts the next line off, without its end.
    std::optional<std::string_view> takeLine() {
        const std::size_t end = rest.find('\n');
        if (end == std::string_view::npos && rest.empty())
            return std::nullopt;
        std::string_view taken = rest.substr(0, end);
        rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
        if (taken.ends_with('\r'))
            taken.remove_suffix(1);
        ++line;
        return taken;
    }

    [[noreturn]] void failInLine(const std::string& reason) const {
        fail("line " + std::to_string(line) + ": " + reason);
    }
};

/// Cuts the next word off; empty at the end of the line.
std::string_view takeWord(std::string_view& line);

/// The whole of a word as a number; nothing where it is none or beyond the type.
template <class Number>
std::optional<Number> numberOf(std::string_view word) {
    if (word.starts_with('+'))
        word.remove_prefix(1);
    Number number{};
    const auto [end, problem] = std::from_chars(word.data(), word.data() + word.size(), number);
    return problem == std::errc() && end == word.data() + word.size() ? std::optional(number) : std::nullopt;
}

/// Cuts the header off. Throws Error for one that is incomplete or makes no sense, and for what crashes the
/// importer: elements and properties that come twice, lists where it takes none.
Header takeHeader(Bytes& bytes);

} // namespace korl::ply
