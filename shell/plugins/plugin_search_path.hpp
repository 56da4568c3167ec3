#pragma once

#include <filesystem>
#include <vector>

namespace korl {

/// The directories in which this program looks for plug-ins: those that the environment variable
/// KORL_PLUGIN_PATH lists, separated by colons, in that order and whether they exist or not; where it is not
/// set, the modules' directory beside the program's own, if there is one. Build tree and install tree have
/// the same layout, so that directory serves both. An empty variable means that no directory is searched.
std::vector<std::filesystem::path> pluginSearchPath();

/// The same for a given value of the variable (null: not set) and a given program file, such as
/// "/usr/bin/korl".
std::vector<std::filesystem::path> pluginSearchPath(const char* listed, const std::filesystem::path& program);

/// The same for code that lies elsewhere: without the variable, the modules' directory below a folder that
/// holds a whole build or installation.
std::vector<std::filesystem::path> pluginSearchPathBelow(const std::filesystem::path& prefix);

} // namespace korl
