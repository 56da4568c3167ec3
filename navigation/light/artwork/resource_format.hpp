#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace artwork {

/// The three arrays that Qt's resource system reads, in format version 3, all numbers big-endian.
///
/// Tree, 22 bytes a node: offset of its name (4), flags (2, here 2 for a folder, 0 for a file as it is). A
/// folder goes on with the number of its children (4) and the first child's node (4), a file with territory
/// (2), language (2) and the offset of its data (4). Last comes the time of the last change (8), in
/// milliseconds since 1970, 0 for a folder. Names, each: length (2), hash (4), characters in UTF-16. Data,
/// each: length (4), bytes.
struct Resource {
    std::vector<std::uint8_t> tree;
    std::vector<std::uint8_t> names;
    std::vector<std::uint8_t> data;
};

/// The hash by which Qt orders and finds the names in a folder. @param name ASCII.
std::uint32_t hashOfName(std::string_view name);

/// One file in one folder below the root: ":/folder/name".
/// @param changed its last change, in milliseconds since 1970.
Resource singleFile(std::string_view folder, std::string_view name, const std::vector<std::uint8_t>& content,
                    std::uint64_t changed);

/// The source text that defines the arrays which resource_arrays.hpp declares.
std::string sourceOf(const Resource& resource);

} // namespace artwork
