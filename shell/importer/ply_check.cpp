#include "shell/importer/ply_check.hpp"

#include "shell/base/printable.hpp"
#include "shell/importer/model_limits.hpp"
#include "shell/importer/ply_header.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <fmt/core.h>
#include <limits>
#include <optional>
#include <string>
#include <utility>

namespace korl {

namespace {

using namespace ply;

/// The same for a real number, where one that is too small is 0 and one that is too large infinite.
std::optional<double> realNumberOf(std::string_view word) {
    if (const auto number = numberOf<double>(word))
        return number;
    const std::string text(word);
    char* end = nullptr;
    errno = 0;
    const double number = std::strtod(text.c_str(), &end);
    const bool is_number = !text.empty() && errno == ERANGE && end == text.c_str() + text.size();
    return is_number ? std::optional(number) : std::nullopt;
}

/// The smallest and the largest number of a type.
std::pair<double, double> rangeOf(const Type& type) {
    if (type.kind == Type::is_float) {
        const double largest =
            type.size == 4 ? double{std::numeric_limits<float>::max()} : std::numeric_limits<double>::max();
        return {-largest, largest};
    }
    const auto bits = static_cast<int>(8 * type.size);
    return type.kind == Type::is_signed ? std::pair(-std::ldexp(1, bits - 1), std::ldexp(1, bits - 1) - 1)
                                        : std::pair(0.0, std::ldexp(1, bits) - 1);
}

/// The values after the header, one after the other.
class Values {
public:
    Values(Format format, Bytes body) : my_format(format), my_bytes(body) {}

    /// In a text file each item has a line of its own.
    bool beginItem() {
        if (my_format != Format::text)
            return true;
        const auto line = my_bytes.takeLine();
        my_line = line.value_or("");
        if (line && my_line.find_first_not_of(" \t\r") == std::string_view::npos)
            my_bytes.failInLine("it is blank, but numbers are expected");
        return line.has_value();
    }

    /// Nothing where there is no number.
    std::optional<double> next(const Type& type) {
        if (my_format == Format::text)
            return nextWord(type);
        if (my_bytes.rest.size() < type.size)
            return std::nullopt;
        std::array<char, 8> bytes{};
        std::copy_n(my_bytes.rest.begin(), type.size, bytes.begin());
        my_bytes.rest.remove_prefix(type.size);
        if ((my_format == Format::big_endian) != (std::endian::native == std::endian::big))
            std::reverse(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(type.size));
        return valueOf(type, bytes);
    }

    /// Passes over the items of an element without lists in a binary file.
    bool skip(std::uint64_t count, std::size_t item_size) {
        if (item_size != 0 && my_bytes.rest.size() / item_size < count)
            return false;
        my_bytes.rest.remove_prefix(static_cast<std::size_t>(count) * item_size);
        return true;
    }

    bool isText() const { return my_format == Format::text; }

    /// Where the values are, for messages.
    std::string place() const { return isText() ? fmt::format("line {}: ", my_bytes.line) : ""; }

private:
    std::optional<double> nextWord(const Type& type) {
        const std::string_view word = takeWord(my_line);
        const auto number = realNumberOf(word);
        if (!number)
            return std::nullopt;
        const auto [lowest, highest] = rangeOf(type);
        const bool is_whole = word.find_first_not_of("+-0123456789") == std::string_view::npos;
        if (type.kind != Type::is_float && !is_whole)
            my_bytes.failInLine(
                fmt::format("{} is not a whole number, as the type \"{}\" takes", quoted(word), type.name));
        const bool is_finite_word = word.find_first_of("0123456789") != std::string_view::npos;
        if (is_finite_word && (*number < lowest || *number > highest))
            my_bytes.failInLine(fmt::format("{} is beyond the type \"{}\"", quoted(word), type.name));
        return number;
    }

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
    Bytes my_bytes;
    std::string_view my_line; ///< what of it was not read
};

/// Walks through the values of one element.
class ElementCheck {
public:
    ElementCheck(const Element& element, std::uint64_t vertex_count)
        : my_element(element), my_vertex_count(vertex_count) {}

    void walk(Values& values) {
        const auto& properties = my_element.properties;
        if (properties.empty())
            fail("its header has no properties for the element " + quoted(my_element.name));
        const bool has_lists = std::any_of(properties.begin(), properties.end(),
                                           [](const Property& property) { return property.count_type; });
        if (!values.isText() && !has_lists) {
            std::size_t item_size = 0;
            for (const Property& property : properties)
                item_size += property.type->size;
            if (!values.skip(my_element.count, item_size))
                fail("it ends before the last " + printable(my_element.name));
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
    [[noreturn]] void failHere(const std::string& what, const std::string& place = "") const {
        fail(fmt::format("{}{} {} of {} {}", place, printable(my_element.name), my_item, my_element.count,
                         what));
    }

    double next(const Type& type, Values& values) const {
        if (const auto value = values.next(type))
            return *value;
        failHere("is incomplete", values.place());
    }

    void walkProperty(const Property& property, Values& values) const {
        if (!property.count_type) {
            next(*property.type, values);
            return;
        }
        const double stated_length = next(*property.count_type, values);
        constexpr double max_length = std::numeric_limits<std::uint32_t>::max();
        if (!(stated_length >= 0 && stated_length <= max_length))
            failHere("has a list without a length", values.place());
        const auto length = static_cast<std::uint32_t>(stated_length);
        const bool is_face = my_element.name == "face" && property.isCornerList();
        if (is_face && length > max_corners)
            failHere(fmt::format("has {} corners, more than the {} that are read; cut it into smaller ones",
                                 length, max_corners),
                     values.place());
        if (is_face && length < 3)
            failHere("has fewer than 3 corners", values.place());
        for (std::uint32_t i = 0; i < length; ++i) {
            const double index = next(*property.type, values);
            if (is_face && !(index >= 0 && index < static_cast<double>(my_vertex_count)))
                failHere("leads to a vertex that does not exist", values.place());
        }
    }

    const Element& my_element;
    std::uint64_t my_vertex_count;
    std::uint64_t my_item = 0;
};

} // namespace

void requireSoundPly(std::string_view file) {
    Bytes bytes{file};
    const Header header = takeHeader(bytes);
    std::uint64_t vertex_count = 0;
    for (const Element& element : header.elements)
        vertex_count = element.name == "vertex" ? element.count : vertex_count;
    Values values(header.format, bytes);
    for (const Element& element : header.elements)
        ElementCheck(element, vertex_count).walk(values);
}

} // namespace korl
