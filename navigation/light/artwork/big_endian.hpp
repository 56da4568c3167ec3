#pragma once

#include <cstdint>
#include <vector>

namespace artwork {

/// Appends the lowest `count` bytes of a number, the highest of them first.
template <int count>
void appendNumber(std::vector<std::uint8_t>& bytes, std::uint64_t number) {
    for (int byte = count - 1; byte >= 0; --byte)
        bytes.push_back(static_cast<std::uint8_t>(number >> (8 * byte)));
}

} // namespace artwork
