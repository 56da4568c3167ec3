#pragma once

#include "shell/plugins/plugin_inspection.hpp"

#include <chrono>

namespace korl {

/// Loads a module in short-lived processes of its own, asks its entry point and unloads it again, before any
/// of its code runs here: an exception that leaves a static initialiser, `exit`, a signal or an endless loop
/// ends such a process, and here is an Error that names the file and what happened. What the module prints
/// meanwhile is dropped. A file that has passed is not tried again by this process until it changes.
///
/// Throws Error where the module does not pass, or is not done within the limit.
void tryPlugin(const PluginInspection& plugin, std::chrono::milliseconds limit = std::chrono::seconds(10));

/// What the heap of a process that tries a module is like. Damaged code may use what malloc happens to
/// return, or to leave in a register, and work by chance with one of them.
inline constexpr const char* trial_heaps[]{"new", "used"};

/// What the process that tries a module tells of it, each word as it comes to it, with a zero byte behind it.
namespace trial_words {
inline constexpr const char* loading = "loading";     ///< the module is about to be loaded
inline constexpr const char* unloading = "unloading"; ///< it was loaded and is about to be unloaded
inline constexpr const char* passed = "passed";       ///< it was unloaded
inline constexpr const char* refused = "refused: ";   ///< and the text of the Error, in the same word
inline constexpr const char* threw = "threw: ";       ///< and what, in the same word
} // namespace trial_words

} // namespace korl
