#include "shell/plugins/plugin_error.hpp"

#include "shell/base/printable.hpp"

#include <string>

namespace korl {

Error pluginError(const std::filesystem::path& file, std::string_view expected, std::string_view found,
                  std::string_view remedy) {
    return Error(std::string("cannot load the plug-in ")
                     .append(inQuotes(file.string()))
                     .append(": expected ")
                     .append(expected)
                     .append(", found ")
                     .append(found)
                     .append(".\n")
                     .append(remedy));
}

} // namespace korl
