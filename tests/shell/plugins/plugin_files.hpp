#pragma once

#include "tests/support/temporary_folder.hpp"

#include <shell/base/error.hpp>

#include <filesystem>
#include <string>

/// Files for the plug-in tests.
namespace korl::plugin_files {

inline const std::filesystem::path good = KORL_GOOD_PLUGINS;
inline const std::filesystem::path broken = KORL_BROKEN_PLUGINS;

using TemporaryDirectory = test::TemporaryFolder;
using test::bytesOf;

/// @returns the text of the Error that a call throws, or a text that says that none came.
template <class Call>
std::string errorOf(Call call) {
    try {
        call();
    } catch (const Error& error) {
        return error.what();
    }
    return "no error";
}

/// The message of a refusal, after the words that all of them begin with.
inline std::string refusal(const std::filesystem::path& file, const std::string& rest) {
    return "cannot load the plug-in \"" + file.string() + "\": expected " + rest;
}

} // namespace korl::plugin_files
