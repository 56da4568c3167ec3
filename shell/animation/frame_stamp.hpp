#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace korl {

class Scene;

/// The keyword of the text in a frame's PNG file that tells the frame from all others: a checksum of the
/// scene, the values, the size and the path that it was made with.
inline constexpr const char* frame_stamp_keyword = "Korl-Frame";

/// The stamp in a frame's file; empty for a file that is missing, has no stamp, or is incomplete.
std::string frameStamp(const std::filesystem::path& png_file);

/// A checksum of 32 bits (CRC-32), the same in every process.
std::uint32_t checksum(std::string_view bytes) noexcept;

/// A checksum of all in a scene that pictures depend on: its text and, since that only names the files of
/// models, the models' arrays.
/// @param text what a scene file has of the scene.
std::uint32_t checksum(const Scene& scene, std::string_view text) noexcept;

} // namespace korl
