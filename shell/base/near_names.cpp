#include "shell/base/near_names.hpp"

#include "shell/base/printable.hpp"

#include <algorithm>
#include <cctype>
#include <fmt/core.h>

namespace korl {

namespace {

bool sameLetter(char a, char b) {
    return std::tolower(static_cast<unsigned char>(a)) == std::tolower(static_cast<unsigned char>(b));
}

} // namespace

std::size_t editDistance(std::string_view from, std::string_view to) {
    const std::size_t width = to.size() + 1;
    std::vector<std::size_t> two_above(width), above(width), row(width);
    for (std::size_t j = 0; j < width; ++j)
        row[j] = j;
    for (std::size_t i = 1; i <= from.size(); ++i) {
        two_above.swap(above);
        above.swap(row);
        row[0] = i;
        for (std::size_t j = 1; j < width; ++j) {
            const std::size_t changed = sameLetter(from[i - 1], to[j - 1]) ? 0 : 1;
            row[j] = std::min({above[j] + 1, row[j - 1] + 1, above[j - 1] + changed});
            if (i > 1 && j > 1 && sameLetter(from[i - 1], to[j - 2]) && sameLetter(from[i - 2], to[j - 1]))
                row[j] = std::min(row[j], two_above[j - 2] + 1);
        }
    }
    return row.back();
}

std::string nearNames(std::string_view asked, const std::vector<std::string>& known, std::string_view none) {
    if (known.empty())
        return std::string(none);
    constexpr std::size_t max_listed = 20;
    std::string list = "here are: ";
    const std::string* nearest = nullptr;
    // Nobody types such a long word; guessing what was meant would take too long.
    constexpr std::size_t max_word = 100;
    std::size_t nearest_distance =
        asked.size() > max_word ? 0 : std::max<std::size_t>(1, asked.size() / 3) + 1;
    for (std::size_t i = 0; i < known.size(); ++i) {
        if (i < max_listed)
            list += (i == 0 ? "" : ", ") + printable(known[i]);
        if (known[i].size() >= asked.size() + nearest_distance ||
            asked.size() >= known[i].size() + nearest_distance)
            continue;
        if (const std::size_t distance = editDistance(asked, known[i]); distance < nearest_distance) {
            nearest_distance = distance;
            nearest = &known[i];
        }
    }
    list += known.size() > max_listed ? fmt::format(", and {} more.", known.size() - max_listed) : ".";
    return nearest ? fmt::format("did you mean {}? T{}", inQuotes(*nearest), list) : "t" + list;
}

} // namespace korl
