#pragma once

#include "tests/support/error_of.hpp"
#include "tests/support/temporary_folder.hpp"

#include "shell/base/error.hpp"

#include <filesystem>
#include <string>

/// Files for the plug-in tests.
namespace korl::plugin_files {

inline const std::filesystem::path good = KORL_GOOD_PLUGINS;
inline const std::filesystem::path broken = KORL_BROKEN_PLUGINS;

using TemporaryDirectory = test::TemporaryFolder;
using test::bytesOf;
using test::errorOf;

/// The message of a refusal, after the words that all of them begin with.
inline std::string refusal(const std::filesystem::path& file, const std::string& rest) {
    return "cannot load the plug-in \"" + file.string() + "\": expected " + rest;
}

} // namespace korl::plugin_files
