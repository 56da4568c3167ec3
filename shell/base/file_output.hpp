#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>

namespace korl {

/// Writes a whole file or leaves what was there: the bytes go to a temporary file beside the target, which is
/// synced to the disk and then renamed, and the rename is synced, too: killed at any time, by a power cut
/// included, it leaves the old or the new file whole. A replaced file's permissions are kept; a new file gets
/// those that the process's umask leaves. A symbolic link to a file stays, and that file is replaced; one
/// that leads nowhere is refused. A device or pipe, which can't be replaced, is written to directly. Throws
/// Error that names the target and the reason; no temporary file is left then. Those that killed processes of
/// the same user left in the folder are removed.
void writeFileAtomically(const std::filesystem::path& target, std::span<const std::uint8_t> bytes);
void writeFileAtomically(const std::filesystem::path& target, std::string_view text);

/// The suffix of a file's name in lower case, such as ".png"; empty where it has none.
std::string suffixOf(const std::filesystem::path& file);

/// The file that is replaced when a file of this name is written: itself or, where it is a symbolic link, the
/// one that it leads to. Throws Error for what cannot be written so, devices and pipes among it.
std::filesystem::path regularTarget(const std::filesystem::path& target);

/// Gives a file that was written, on the same disk, the target's name. Its content is synced before that, and
/// its name afterwards. Throws Error that names the target.
void moveIntoPlace(const std::filesystem::path& written, const std::filesystem::path& target);

/// Writes all bytes to an open file descriptor. @returns false where the system refuses; errno says why.
bool writeAll(int descriptor, std::span<const std::uint8_t> bytes);

} // namespace korl
