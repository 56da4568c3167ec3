#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace artwork {

/// Throws std::runtime_error where the file can't be read to its end.
std::vector<std::uint8_t> readFile(const std::filesystem::path& file);

/// Writes beside the file, then renames: there is never half a file under the name. Makes the folders that it
/// lies in. Throws std::runtime_error where that doesn't work out.
void writeFile(const std::filesystem::path& file, const std::vector<std::uint8_t>& content);
void writeFile(const std::filesystem::path& file, const std::string& content);

} // namespace artwork
