#include "shell/importer/ply_header.hpp"

#include "shell/base/error.hpp"
#include "shell/base/printable.hpp"

#include <algorithm>
#include <array>
#include <fmt/core.h>

namespace korl::ply {

namespace {

constexpr std::array types{
    Type{"char", "int8", 1, Type::is_signed},    Type{"uchar", "uint8", 1, Type::is_unsigned},
    Type{"short", "int16", 2, Type::is_signed},  Type{"ushort", "uint16", 2, Type::is_unsigned},
    Type{"int", "int32", 4, Type::is_signed},    Type{"uint", "uint32", 4, Type::is_unsigned},
    Type{"float", "float32", 4, Type::is_float}, Type{"double", "float64", 8, Type::is_float},
};

const Type* typeOf(std::string_view name) {
    const auto type = std::find_if(types.begin(), types.end(), [&](const Type& candidate) {
        return name == candidate.name || name == candidate.other_name;
    });
    if (type == types.end())
        fail("its header has the unknown type " + quoted(name));
    return &*type;
}

Format formatOf(std::string_view name) {
    if (name == "ascii")
        return Format::text;
    if (name == "binary_little_endian")
        return Format::little_endian;
    if (name == "binary_big_endian")
        return Format::big_endian;
    fail("its header has the unknown format " + quoted(name));
}

void addElement(Header& header, std::string_view line, const Bytes& bytes) {
    const std::string_view name = takeWord(line), word = takeWord(line);
    constexpr std::size_t max_digits = 10; // of what 32 bits hold
    const bool is_number = !word.empty() && word.find_first_not_of("0123456789") == std::string_view::npos;
    const auto count = numberOf<std::uint32_t>(word);
    if (!is_number)
        fail(fmt::format("its header does not tell how many elements {} there are", quoted(name)));
    if (!count || word.size() > max_digits)
        bytes.failInLine("expected a number of elements up to 4294967295, found " + quoted(word));
    if (std::any_of(header.elements.begin(), header.elements.end(),
                    [&](const Element& element) { return element.name == name; }))
        bytes.failInLine(fmt::format("the element {} stands twice in the header", quoted(name)));
    if (name == "tristrips")
        bytes.failInLine("triangle strips are not read; write it with faces");
    header.elements.push_back({name, *count});
}

/// Lists that the importer takes for single values, or for corners where it expects none, crash it.
bool mayHaveList(std::string_view element, std::string_view property) {
    constexpr std::array corners{"vertex_indices", "vertex_index"};
    const bool is_corners = std::find(corners.begin(), corners.end(), property) != corners.end();
    if (element == "face")
        return is_corners || property == "texcoord";
    return element != "vertex" && element != "material" && element != "edge" && !is_corners;
}

void addProperty(Header& header, std::string_view line, const Bytes& bytes) {
    if (header.elements.empty())
        fail("its header has a property before the first element");
    Element& element = header.elements.back();
    if (!element.is_open) // the importer would take it for none of the element's
        bytes.failInLine(fmt::format("a property of the element {} comes after another line; "
                                     "put that line before the element",
                                     quoted(element.name)));
    std::string_view type = takeWord(line);
    const Type* count_type = nullptr;
    if (type == "list") {
        count_type = typeOf(takeWord(line));
        type = takeWord(line);
    }
    const Property property{takeWord(line), typeOf(type), count_type};
    if (count_type && count_type->kind == Type::is_float)
        bytes.failInLine("the length of a list cannot be of the type " + quoted(count_type->name));
    if (count_type && !mayHaveList(element.name, property.name))
        bytes.failInLine(fmt::format("the element {} cannot have the list {}; "
                                     "corners are \"vertex_indices\" of a \"face\"",
                                     quoted(element.name), quoted(property.name)));
    if (std::any_of(element.properties.begin(), element.properties.end(), [&](const Property& other) {
            return other.name == property.name || (other.isCornerList() && property.isCornerList());
        }))
        bytes.failInLine(
            fmt::format("the element {} has {} twice", quoted(element.name), quoted(property.name)));
    element.properties.push_back(property);
}

/// Faces that have other lists, but no corners, crash the importer.
void requireCorners(const Header& header) {
    for (const Element& element : header.elements)
        if (element.name == "face" && element.count > 0 &&
            std::none_of(element.properties.begin(), element.properties.end(),
                         [](const Property& property) { return property.isCornerList(); }))
            fail("its faces have no list \"vertex_indices\"");
}

} // namespace

void fail(const std::string& reason) {
    throw Error("it is damaged or truncated: " + reason);
}

std::string quoted(std::string_view word) {
    constexpr std::size_t max_length = 40;
    return fmt::format("\"{}{}\"", printable(word.substr(0, max_length)),
                       word.size() > max_length ? "..." : "");
}

std::string_view takeWord(std::string_view& line) {
    constexpr std::string_view blanks = " \t\r\v\f";
    line.remove_prefix(std::min(line.find_first_not_of(blanks), line.size()));
    const std::string_view word = line.substr(0, line.find_first_of(blanks));
    line.remove_prefix(word.size());
    return word;
}

Header takeHeader(Bytes& bytes) {
    if (bytes.takeLine() != "ply")
        fail("it does not begin with a line \"ply\"");
    Header header;
    bool has_format = false;
    while (bytes.rest.find('\n') != std::string_view::npos) {
        std::string_view line = *bytes.takeLine();
        if (std::any_of(line.begin(), line.end(), [](char c) { return c >= 0 && c < ' ' && c != '\t'; }))
            fail("its header has bytes that are not text");
        const std::string_view keyword = takeWord(line);
        if (keyword != "property" && !header.elements.empty())
            header.elements.back().is_open = false;
        if (keyword == "format") {
            header.format = formatOf(takeWord(line));
            has_format = true;
        } else if (keyword == "element") {
            addElement(header, line, bytes);
        } else if (keyword == "property") {
            addProperty(header, line, bytes);
        } else if (keyword == "end_header" && has_format) {
            requireCorners(header);
            return header;
        }
    }
    fail("its header is incomplete");
}

} // namespace korl::ply
