#pragma once

#include "shell/plugins/plugin_inspection.hpp"

#include <memory>
#include <string>

namespace korl {

struct ClosePlugin {
    std::string module_name{}; ///< to be told where its code ends the process
    void operator()(void* handle) const noexcept;
};

/// The library of a module in this process, as the system's loader knows it. It goes with its last handle.
using PluginHandle = std::unique_ptr<void, ClosePlugin>;

/// Loads a library, which runs the module's static initialisers, and asks its entry point whether it was
/// built for this shell's interface. Throws Error where the system's loader refuses it or the entry point
/// says no; it is unloaded again in the last case. An exception that leaves a static initialiser ends the
/// process by `std::terminate`: the system's loader is in the middle of its work then and cannot be used
/// again.
PluginHandle openPlugin(const PluginInspection& plugin);

} // namespace korl
