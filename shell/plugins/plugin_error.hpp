#pragma once

#include "shell/base/error.hpp"

#include <filesystem>
#include <string_view>

namespace korl {

/// The refusal of a plug-in as text for the user, in two lines: which file, what was expected and found; then
/// what to do. `expected` and `found` are noun phrases, `remedy` is a whole sentence.
Error pluginError(const std::filesystem::path& file, std::string_view expected, std::string_view found,
                  std::string_view remedy);

} // namespace korl
