#include "shell/plugins/plugin_error.hpp"

#include "shell/base/printable.hpp"

#include <fmt/core.h>

namespace korl {

Error pluginError(const std::filesystem::path& file, std::string_view expected, std::string_view found,
                  std::string_view remedy) {
    return Error(fmt::format("cannot load the plug-in {}: expected {}, found {}.\n{}",
                             inQuotes(file.string()), expected, found, remedy));
}

} // namespace korl
