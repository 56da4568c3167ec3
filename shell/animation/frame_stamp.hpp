#pragma once

#include <filesystem>
#include <string>

namespace korl {

/// The keyword of the text in a frame's PNG file that tells the frame from all others: a fingerprint of the
/// scene, the values, the size and the path that it was made with.
inline constexpr const char* frame_stamp_keyword = "Korl-Frame";

/// The stamp in a frame's file. Empty where there is no such file, where it has none, and where it is not
/// whole: the checksum of each chunk is looked at, and the last one must be there.
std::string frameStamp(const std::filesystem::path& png_file);

} // namespace korl
