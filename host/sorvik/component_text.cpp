#include <sorvik/component_text.hpp>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>

namespace Qelt {

namespace {

constexpr std::string_view blanks = " \t\n\r";
constexpr std::size_t max_components = 4;

template <class Number>
std::string toText(std::span<const Number> components) {
    std::string text;
    std::array<char, 32> buffer{};
    for (const Number component : components) {
        if (!text.empty())
            text += ' ';
        const auto written = std::to_chars(buffer.data(), buffer.data() + buffer.size(), component);
        text.append(buffer.data(), written.ptr);
    }
    return text;
}

template <class Number>
bool readNumber(Number& number, std::string_view word) {
    if (word.starts_with('+') && !word.starts_with("+-"))
        word.remove_prefix(1); // std::from_chars knows no plus sign
    const char* const end = word.data() + word.size();
    const auto result = std::from_chars(word.data(), end, number);
    return result.ec == std::errc() && result.ptr == end;
}

template <class Number>
bool fromText(std::span<Number> components, std::string_view text) {
    std::array<Number, max_components> read{};
    if (components.size() > max_components)
        return false;
    for (std::size_t i = 0; i < components.size(); ++i) {
        text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
        const std::string_view word = text.substr(0, text.find_first_of(blanks));
        if (!readNumber(read[i], word))
            return false;
        text.remove_prefix(word.size());
    }
    if (text.find_first_not_of(blanks) != std::string_view::npos)
        return false;
    std::copy_n(read.begin(), components.size(), components.begin());
    return true;
}

} // namespace

std::string componentsToText(std::span<const double> components) {
    return toText(components);
}

std::string componentsToText(std::span<const float> components) {
    return toText(components);
}

bool componentsFromText(std::span<double> components, std::string_view text) {
    return fromText(components, text);
}

bool componentsFromText(std::span<float> components, std::string_view text) {
    return fromText(components, text);
}

} // namespace Qelt
