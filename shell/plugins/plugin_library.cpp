#include "shell/plugins/plugin_library.hpp"

#include "shell/base/module_call.hpp"
#include "shell/base/own_programs.hpp"
#include "shell/plugins/plugin_error.hpp"
#include "shell/plugins/plugin_trial.hpp"

#include <sorvik/initialization.hpp>
#include <sorvik/vprintf.hpp>

#include <algorithm>
#include <dlfcn.h>
#include <fmt/core.h>
#include <system_error>
#include <utility>

namespace korl {

namespace {

/// Whether this very library is loaded in the process, by whomever and under whatever name.
bool isLoaded(const std::filesystem::path& file) {
    void* const handle = ::dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NOLOAD);
    if (handle)
        ::dlclose(handle);
    return handle != nullptr;
}

} // namespace

bool isOwnModule(const std::filesystem::path& file) {
    std::error_code missing;
    return std::filesystem::equivalent(file.parent_path(), ownFolder() / "modules", missing);
}

PluginLibrary PluginLibrary::load(const std::filesystem::path& file) {
    return load(inspectPlugin(file));
}

PluginLibrary PluginLibrary::load(PluginInspection inspection) {
    if (!isOwnModule(inspection.file))
        tryPlugin(inspection);
    reportExitsOfModules();
    return PluginLibrary(std::move(inspection));
}

PluginLibrary::PluginLibrary(PluginInspection inspection) : my_inspection(std::move(inspection)) {
    const ModuleCall loading(my_inspection.module_name, "initialisation");
    my_handle = openPlugin(my_inspection);
}

PluginSet::~PluginSet() {
    while (!my_libraries.empty())
        my_libraries.pop_back();
}

const PluginLibrary& PluginSet::load(const std::filesystem::path& file) {
    return load(inspectPlugin(file));
}

const PluginLibrary& PluginSet::load(PluginInspection inspection) {
    requireNewModule(inspection);
    return my_libraries.emplace_back(PluginLibrary::load(std::move(inspection)));
}

void PluginSet::loadFrom(const std::vector<std::filesystem::path>& directories) {
    for (const auto& directory : directories) {
        std::vector<std::filesystem::path> files;
        try {
            for (const auto& entry : std::filesystem::directory_iterator(directory))
                if (entry.path().extension() == ".so")
                    files.push_back(entry.path());
        } catch (const std::filesystem::filesystem_error& error) {
            throw Error(fmt::format("cannot look for plug-ins in \"{}\": {}.\n"
                                    "Name directories that exist in KORL_PLUGIN_PATH, or unset it.",
                                    directory.string(), error.code().message()));
        }
        std::sort(files.begin(), files.end());
        for (const auto& file : files)
            if (!findFile(file))
                loadUnlessShadowed(inspectPlugin(file));
    }
}

void PluginSet::loadUnlessShadowed(PluginInspection inspection) {
    if (const PluginLibrary* const first = findModule(inspection.module_name))
        Qelt::Vprintf(1, "korl: \"%s\" is passed over, %s is loaded from \"%s\" already\n",
                      inspection.file.c_str(), inspection.module_name.c_str(), first->file().c_str());
    else
        load(std::move(inspection));
}

const PluginLibrary* PluginSet::findModule(const std::string& name) const {
    const auto found =
        std::find_if(my_libraries.begin(), my_libraries.end(),
                     [&](const PluginLibrary& library) { return library.moduleName() == name; });
    return found == my_libraries.end() ? nullptr : &*found;
}

const PluginLibrary* PluginSet::findFile(const std::filesystem::path& file) const {
    const auto found =
        std::find_if(my_libraries.begin(), my_libraries.end(), [&](const PluginLibrary& library) {
            std::error_code gone; // A file that has gone is not equivalent to any other.
            return std::filesystem::equivalent(library.file(), file, gone);
        });
    return found == my_libraries.end() ? nullptr : &*found;
}

void PluginSet::requireNewModule(const PluginInspection& inspection) const {
    if (findFile(inspection.file))
        throw pluginError(inspection.file, "a plug-in that is not loaded yet", "one that is loaded already",
                          "Name each plug-in once.");
    const PluginLibrary* const holder = findModule(inspection.module_name);
    const auto announced = VInitialization::plugins();
    const bool is_announced = std::any_of(announced.begin(), announced.end(), [&](const auto& plugin) {
        return plugin.name == inspection.module_name;
    });
    if (!holder && (!is_announced || isLoaded(inspection.file)))
        return;
    const auto where = holder ? fmt::format(", loaded from \"{}\"", holder->file().string()) : "";
    throw pluginError(inspection.file, "a module that is not loaded yet",
                      fmt::format("another copy of {}{}", inspection.module_name, where),
                      "Leave out one of the two.");
}

} // namespace korl
