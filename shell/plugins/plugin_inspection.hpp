#pragma once

#include <filesystem>
#include <string>

namespace korl {

/// What a plug-in library says about itself before any of its code has run.
struct PluginInspection {
    std::filesystem::path file; ///< Absolute; symbolic links in it are not followed.
    std::string module_name;    ///< Such as "tovek_light": the entry point's name after the prefix.
    std::string entry_point; ///< The one function to call, `VInitialization::entryPointPrefix` + module name.
};

/// Reads the headers and the symbol table of a library and runs nothing of it.
///
/// A plug-in is a complete ELF shared library for this process's architecture that defines exactly one global
/// function of this interface version's prefix. Entry points of other versions beside that one don't count,
/// so one library may serve several shells.
///
/// Throws Error for everything else, whatever the file's bytes are; the text names the file, what was
/// expected, what was found and what to do.
PluginInspection inspectPlugin(const std::filesystem::path& file);

} // namespace korl
