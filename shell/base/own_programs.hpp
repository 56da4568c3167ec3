#pragma once

#include <filesystem>
#include <string_view>

namespace korl {

/// The folder `lib/korl` beside the shell's libraries, whoever has loaded those, the program korl, a test or
/// Python. It holds what belongs to the shell: its modules, its programs.
std::filesystem::path ownFolder();

/// A program that the shell comes with and starts itself: `lib/korl/NAME`. Throws Error where it is not
/// there.
std::filesystem::path ownProgram(std::string_view name);

} // namespace korl
