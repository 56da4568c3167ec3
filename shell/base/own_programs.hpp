#pragma once

#include <filesystem>
#include <string_view>

namespace korl {

/// A program that the shell comes with and starts itself: `lib/korl/NAME` beside the shell's libraries,
/// whoever has loaded those, the program korl, a test or Python. Throws Error where it is not there.
std::filesystem::path ownProgram(std::string_view name);

} // namespace korl
