#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace korl {

/// How korl-import ends where a model takes more memory than it may have.
inline constexpr int import_exit_code_no_memory = 3;

/// How it ends where what it has read cannot be handed over.
inline constexpr int import_exit_code_not_handed_over = 4;

/// Throws Error that doesn't name the file, for one that is not there, whose name is a URI, that is not a
/// regular file, and whose name tells of no format of models that can be read. Opens nothing.
void requireModelFile(const std::filesystem::path& file);

/// What a file is instead of a regular one, such as "a FIFO"; empty for a regular file.
std::string otherKind(std::filesystem::file_type type);

/// The scheme of a URI, such as "http"; empty for the path of a file.
std::string_view uriScheme(std::string_view text);

} // namespace korl
