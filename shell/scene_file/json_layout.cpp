#include "shell/scene_file/json_layout.hpp"

#include "shell/base/json_text.hpp"

#include <array>
#include <charconv>
#include <fmt/core.h>

namespace korl {

namespace {

constexpr std::size_t line_width = 110;

std::string lineBreak(int indent) {
    return '\n' + std::string(static_cast<std::size_t>(indent), ' ');
}

/// Whether parts fit on one line, brackets, commas and the key before them included.
bool fit(const std::vector<std::string>& parts, int indent) {
    constexpr std::size_t room_for_key = 14;
    std::size_t width = static_cast<std::size_t>(indent) + room_for_key;
    for (const std::string& part : parts) {
        width += part.size() + 2;
        if (width > line_width || part.find('\n') != std::string::npos)
            return false;
    }
    return true;
}

std::string enclosed(char opening, const std::vector<std::string>& parts, char closing, int indent,
                     bool broken) {
    std::string text(1, opening);
    for (const std::string& part : parts) {
        if (text.size() > 1)
            text += broken ? "," : ", ";
        text += (broken ? lineBreak(indent + 2) : "") + part;
    }
    return text + (broken ? lineBreak(indent) : "") + closing;
}

template <class Number>
std::string triples(std::span<const Number> numbers, int indent) {
    std::vector<std::string> lines(1);
    std::array<char, 32> buffer;
    for (std::size_t i = 0; i < numbers.size(); i += 3) {
        std::string triple;
        for (const Number number : numbers.subspan(i, 3)) {
            const auto written = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number);
            triple.append(triple.empty() ? "" : ", ").append(buffer.data(), written.ptr);
        }
        std::string& line = lines.back();
        if (line.empty())
            line = std::move(triple);
        else if (line.size() + triple.size() + static_cast<std::size_t>(indent) + 5 > line_width)
            lines.push_back(std::move(triple));
        else
            line += ",  " + triple;
    }
    if (numbers.empty())
        return "[]";
    return enclosed('[', lines, ']', indent, lines.size() > 1);
}

} // namespace

std::string jsonObject(const std::vector<std::pair<std::string, std::string>>& members, int indent,
                       bool broken) {
    std::vector<std::string> parts;
    for (const auto& [key, value] : members)
        parts.push_back(fmt::format("{}: {}", jsonQuoted(key), value));
    return enclosed('{', parts, '}', indent, broken || !fit(parts, indent));
}

std::string jsonList(const std::vector<std::string>& entries, int indent) {
    return enclosed('[', entries, ']', indent, !fit(entries, indent));
}

std::string jsonLines(const std::vector<std::string>& entries, int indent) {
    return enclosed('[', entries, ']', indent, true);
}

std::string jsonTriples(std::span<const float> numbers, int indent) {
    return triples(numbers, indent);
}

std::string jsonTriples(std::span<const std::uint32_t> numbers, int indent) {
    return triples(numbers, indent);
}

} // namespace korl
