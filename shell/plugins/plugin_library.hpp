#pragma once

#include "shell/plugins/plugin_handle.hpp"

#include <filesystem>
#include <string>
#include <vector>

namespace korl {

/// Whether a library lies where this program has its own modules.
bool isOwnModule(const std::filesystem::path& file);

/// A plug-in library that is loaded while its owner lives. Loading and unloading run the module's code: it
/// announces itself, and registers and withdraws its creators. Not to be loaded or unloaded from two threads
/// at once.
class PluginLibrary {
public:
    /// Inspects a library, tries it in processes of its own (see `tryPlugin`) unless it is the program's own
    /// module, loads it and asks its entry point whether it was built for this shell's interface. Throws
    /// Error where the inspection refuses it (none of its code has run then), it does not survive the trial,
    /// the system's loader refuses it, or its entry point says no.
    static PluginLibrary load(const std::filesystem::path& file);
    static PluginLibrary load(PluginInspection inspection);

    const std::filesystem::path& file() const noexcept { return my_inspection.file; }
    const std::string& moduleName() const noexcept { return my_inspection.module_name; }

private:
    explicit PluginLibrary(PluginInspection inspection);

    PluginInspection my_inspection;
    PluginHandle my_handle;
};

/// The plug-ins of a shell, each module once. They go in the reverse of the order in which they came. Several
/// sets share a library that each of them loads: it comes with the first, and goes with the last.
class PluginSet {
public:
    PluginSet() = default;
    ~PluginSet();
    PluginSet(PluginSet&&) noexcept = default;
    PluginSet& operator=(PluginSet&&) = delete;

    /// Loads one plug-in. Throws Error as PluginLibrary::load does, and where the same file or a module of
    /// the same name is loaded already. The set is unchanged then.
    /// @returns the library; it stays where it is until another one is loaded.
    const PluginLibrary& load(const std::filesystem::path& file);

    /// Loads every *.so of the directories, directory by directory, in each one in alphabetical order. A file
    /// that is loaded already, from a directory listed twice or by a link, is passed over; so is, traced at
    /// verbosity 1, a module that is loaded already: the first one found is the one that counts. Throws Error
    /// at the first directory that can't be read and at the first plug-in that is refused; those before it
    /// stay loaded.
    void loadFrom(const std::vector<std::filesystem::path>& directories);

    /// In the order of loading.
    const std::vector<PluginLibrary>& libraries() const noexcept { return my_libraries; }

private:
    const PluginLibrary& load(PluginInspection inspection);
    void loadUnlessShadowed(PluginInspection inspection);
    const PluginLibrary* findFile(const std::filesystem::path& file) const;
    const PluginLibrary* findModule(const std::string& name) const;
    void requireNewModule(const PluginInspection& inspection) const;

    std::vector<PluginLibrary> my_libraries;
};

} // namespace korl
