#pragma once

#include "shell/plugins/plugin_inspection.hpp"

#include <chrono>

namespace korl {

/// Loads a module in short-lived processes of its own, asks its entry point and unloads it again, before any
/// of its code runs here: an exception that leaves a static initialiser, `exit`, a signal or an endless loop
/// ends such a process, and here is an Error that names the file and what happened. What the module prints
/// meanwhile is dropped. A file that has passed is not tried again by this process until it changes.
///
/// The first two processes run a small program. The last one is a copy of this process, where the module
/// meets what it will meet here, so that damaged code cannot do well by chance in one and not in the other.
/// It is left out where this process has more than one thread: the copy would have their locks without them.
///
/// Throws Error where the module does not pass, or is not done within the limit.
void tryPlugin(const PluginInspection& plugin, std::chrono::milliseconds limit = std::chrono::seconds(10));

/// What the heap of a program that tries a module is like. A module whose code is damaged may take what
/// malloc happens to return, or leave in a register, for its own and come to no harm with one of them.
inline constexpr const char* trial_heaps[]{"new", "used"};

} // namespace korl
