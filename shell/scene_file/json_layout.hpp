#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace korl {

/// JSON for people: what is short stands on one line, what is long has its parts on lines of their own. The
/// parts are JSON already, made for where they will stand: `indent` is that of the value that they are put
/// together to, in blanks; parts on lines of their own stand two further in.

/// An object.
/// @param members its keys, and its values as JSON.
/// @param broken puts each member on a line of its own, however short they are.
std::string jsonObject(const std::vector<std::pair<std::string, std::string>>& members, int indent,
                       bool broken = false);

/// A list.
std::string jsonList(const std::vector<std::string>& entries, int indent);

/// A list with each entry on a line of its own.
std::string jsonLines(const std::vector<std::string>& entries, int indent);

/// A list of numbers, which come in threes: as many threes on each line as it holds. Floats are the shortest
/// text that reads back to the same bits.
std::string jsonTriples(std::span<const float> numbers, int indent);
std::string jsonTriples(std::span<const std::uint32_t> numbers, int indent);

} // namespace korl
