#include "shell/scene/ply_check.hpp"

#include "shell/error.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <limits>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace korl {

namespace {

enum class Format { text, little_endian, big_endian };

struct Type {
    std::string_view name, other_name;
    std::size_t size; ///< bytes in a binary file
    enum { is_signed, is_unsigned, is_float } kind;
};

constexpr std::array types{
    Type{"char", "int8", 1, Type::is_signed},    Type{"uchar", "uint8", 1, Type::is_unsigned},
    Type{"short", "int16", 2, Type::is_signed},  Type{"ushort", "uint16", 2, Type::is_unsigned},
    Type{"int", "int32", 4, Type::is_signed},    Type{"uint", "uint32", 4, Type::is_unsigned},
    Type{"float", "float32", 4, Type::is_float}, Type{"double", "float64", 8, Type::is_float},
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
    std::vector<Property> properties;
};

[[noreturn]] void fail(const std::string& reason) {
    throw Error("it is damaged or truncated: " + reason);
}

/// Cuts the next line off, without its end.
std::optional<std::string_view> takeLine(std::string_view& bytes) {
    const std::size_t end = bytes.find('\n');
    if (end == std::string_view::npos && bytes.empty())
        return std::nullopt;
    std::string_view line = bytes.substr(0, end);
    bytes.remove_prefix(end == std::string_view::npos ? bytes.size() : end + 1);
    if (line.ends_with('\r'))
        line.remove_suffix(1);
    return line;
}

/// Cuts the next word off; empty at the end of the line.
std::string_view takeWord(std::string_view& line) {
    constexpr std::string_view blanks = " \t\r\v\f";
    line.remove_prefix(std::min(line.find_first_not_of(blanks), line.size()));
    const std::string_view word = line.substr(0, line.find_first_of(blanks));
    line.remove_prefix(word.size());
    return word;
}

template <class Number>
std::optional<Number> numberOf(std::string_view word) {
    if (word.starts_with('+'))
        word.remove_prefix(1);
    Number number{};
    const auto [end, problem] = std::from_chars(word.data(), word.data() + word.size(), number);
    // A number beyond the type's range is a number nonetheless.
    const bool is_number = problem == std::errc() || problem == std::errc::result_out_of_range;
    return is_number && !word.empty() && end == word.data() + word.size() ? std::optional(number)
                                                                          : std::nullopt;
}

const Type* typeOf(std::string_view name) {
    const auto type = std::find_if(types.begin(), types.end(), [&](const Type& candidate) {
        return name == candidate.name || name == candidate.other_name;
    });
    if (type == types.end())
        fail("its header has the unknown type \"" + std::string(name) + "\"");
    return &*type;
}

struct Header {
    Format format = Format::text;
    std::vector<Element> elements;
};

Format formatOf(std::string_view name) {
    if (name == "ascii")
        return Format::text;
    if (name == "binary_little_endian")
        return Format::little_endian;
    if (name == "binary_big_endian")
        return Format::big_endian;
    fail("its header has the unknown format \"" + std::string(name) + "\"");
}

void addElement(Header& header, std::string_view line) {
    const std::string_view name = takeWord(line);
    const auto count = numberOf<std::uint64_t>(takeWord(line));
    if (!count)
        fail("its header does not tell how many elements \"" + std::string(name) + "\" there are");
    header.elements.push_back({name, *count, {}});
}

void addProperty(Header& header, std::string_view line) {
    if (header.elements.empty())
        fail("its header has a property before the first element");
    std::string_view type = takeWord(line);
    const Type* count_type = nullptr;
    if (type == "list") {
        count_type = typeOf(takeWord(line));
        type = takeWord(line);
    }
    header.elements.back().properties.push_back({takeWord(line), typeOf(type), count_type});
}

/// Cuts the header off.
Header takeHeader(std::string_view& bytes) {
    if (takeLine(bytes) != "ply")
        fail("it does not begin with a line \"ply\"");
    Header header;
    bool has_format = false;
    while (bytes.find('\n') != std::string_view::npos) {
        std::string_view line = *takeLine(bytes);
        if (std::any_of(line.begin(), line.end(), [](char c) { return c >= 0 && c < ' ' && c != '\t'; }))
            fail("its header has bytes that are no text");
        const std::string_view keyword = takeWord(line);
        if (keyword == "format") {
            header.format = formatOf(takeWord(line));
            has_format = true;
        } else if (keyword == "element") {
            addElement(header, line);
        } else if (keyword == "property") {
            addProperty(header, line);
        } else if (keyword == "end_header" && has_format) {
            return header;
        }
    }
    fail("its header is incomplete");
}

/// The values after the header, one after the other.
class Values {
public:
    Values(Format format, std::string_view body) : my_format(format), my_rest(body) {}

    /// In a text file each item has a line of its own.
    bool beginItem() {
        if (my_format != Format::text)
            return true;
        do {
            const auto line = takeLine(my_rest);
            if (!line)
                return false;
            my_line = *line;
        } while (my_line.find_first_not_of(" \t\r") == std::string_view::npos);
        return true;
    }

    std::optional<double> next(const Type& type) {
        if (my_format == Format::text)
            return numberOf<double>(takeWord(my_line));
        if (my_rest.size() < type.size)
            return std::nullopt;
        std::array<char, 8> bytes{};
        std::copy_n(my_rest.begin(), type.size, bytes.begin());
        my_rest.remove_prefix(type.size);
        if ((my_format == Format::big_endian) != (std::endian::native == std::endian::big))
            std::reverse(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(type.size));
        return valueOf(type, bytes);
    }

    /// Passes over the items of an element without lists in a binary file.
    bool skip(std::uint64_t count, std::size_t item_size) {
        if (item_size != 0 && my_rest.size() / item_size < count)
            return false;
        my_rest.remove_prefix(static_cast<std::size_t>(count) * item_size);
        return true;
    }

    bool isText() const { return my_format == Format::text; }

private:
    template <class Number>
    static double read(const std::array<char, 8>& bytes) {
        Number number{};
        std::memcpy(&number, bytes.data(), sizeof number);
        return static_cast<double>(number);
    }

    static double valueOf(const Type& type, const std::array<char, 8>& bytes) {
        if (type.kind == Type::is_float)
            return type.size == 4 ? read<float>(bytes) : read<double>(bytes);
        const bool has_sign = type.kind == Type::is_signed;
        if (type.size == 1)
            return has_sign ? read<std::int8_t>(bytes) : read<std::uint8_t>(bytes);
        if (type.size == 2)
            return has_sign ? read<std::int16_t>(bytes) : read<std::uint16_t>(bytes);
        return has_sign ? read<std::int32_t>(bytes) : read<std::uint32_t>(bytes);
    }

    Format my_format;
    std::string_view my_rest;
    std::string_view my_line;
};

/// Walks through the values of one element.
class ElementCheck {
public:
    ElementCheck(const Element& element, std::uint64_t vertex_count)
        : my_element(element), my_vertex_count(vertex_count) {}

    void walk(Values& values) {
        const auto& properties = my_element.properties;
        if (properties.empty())
            fail("its header has no properties for the element \"" + std::string(my_element.name) + "\"");
        const bool has_lists = std::any_of(properties.begin(), properties.end(),
                                           [](const Property& property) { return property.count_type; });
        if (!values.isText() && !has_lists) {
            std::size_t item_size = 0;
            for (const Property& property : properties)
                item_size += property.type->size;
            if (!values.skip(my_element.count, item_size))
                fail("it ends before the last " + std::string(my_element.name));
            return;
        }
        for (my_item = 0; my_item < my_element.count; ++my_item) {
            if (!values.beginItem())
                failHere("is missing");
            for (const Property& property : properties)
                walkProperty(property, values);
        }
    }

private:
    [[noreturn]] void failHere(const std::string& what) const {
        fail(std::string(my_element.name) + " " + std::to_string(my_item) + " of " +
             std::to_string(my_element.count) + " " + what);
    }

    double next(const Type& type, Values& values) const {
        if (const auto value = values.next(type))
            return *value;
        failHere("is incomplete");
    }

    void walkProperty(const Property& property, Values& values) const {
        if (!property.count_type) {
            next(*property.type, values);
            return;
        }
        const double stated_length = next(*property.count_type, values);
        constexpr double longest = std::numeric_limits<std::uint32_t>::max();
        if (!(stated_length >= 0 && stated_length <= longest))
            failHere("has a list without a length");
        const auto length = static_cast<std::uint32_t>(stated_length);
        const bool is_face = my_element.name == "face" && property.isCornerList();
        if (is_face && length < 3)
            failHere("has fewer than 3 corners");
        for (std::uint32_t i = 0; i < length; ++i) {
            const double index = next(*property.type, values);
            if (is_face && !(index >= 0 && index < static_cast<double>(my_vertex_count)))
                failHere("leads to a vertex that does not exist");
        }
    }

    const Element& my_element;
    std::uint64_t my_vertex_count;
    std::uint64_t my_item = 0;
};

} // namespace

void requireSoundPly(std::string_view bytes) {
    const Header header = takeHeader(bytes);
    std::uint64_t vertex_count = 0;
    for (const Element& element : header.elements)
        vertex_count = element.name == "vertex" ? element.count : vertex_count;
    Values values(header.format, bytes);
    for (const Element& element : header.elements)
        ElementCheck(element, vertex_count).walk(values);
}

} // namespace korl
