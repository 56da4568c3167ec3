#pragma once

#include "shell/plugins/plugin_inspection.hpp"

#include <functional>

namespace korl {

/// What a process that tries a module tells of it, each word as it comes to it, with a zero byte behind it.
namespace trial_words {
inline constexpr const char* loading = "loading";     ///< the module is about to be loaded
inline constexpr const char* unloading = "unloading"; ///< it was loaded and is about to be unloaded
inline constexpr const char* passed = "passed";       ///< it was unloaded
inline constexpr const char* refused = "refused: ";   ///< and the text of the Error, in the same word
inline constexpr const char* threw = "threw: ";       ///< and what, in the same word
} // namespace trial_words

/// Loads a module, asks its entry point, unloads it and ends the process, which is there for nothing else.
///
/// @param answers the descriptor of a file that gets the words.
/// @param isUnharmed asked at the end: whether the module has left alone what is not its own.
[[noreturn]] void runTrial(
    const PluginInspection& plugin, int answers,
    const std::function<bool()>& isUnharmed = [] { return true; });

} // namespace korl
