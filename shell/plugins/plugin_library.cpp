#include <shell/plugins/plugin_library.hpp>

#include <shell/plugins/plugin_error.hpp>

#include <sorvik/initialization.hpp>
#include <sorvik/vprintf.hpp>

#include <algorithm>
#include <dlfcn.h>
#include <exception>
#include <optional>
#include <system_error>
#include <utility>

namespace korl {

namespace {

/// The shell as an entry point sees it; it remembers what the module asked for, so that a refusal can say it.
class ListeningInitialization : public VInitialization {
public:
    bool IsCompatible(const char* version_key) const override {
        my_asked_key = version_key ? version_key : "";
        return VInitialization::IsCompatible(version_key);
    }

    std::string question() const {
        return my_asked_key ? "one that asks for \"" + *my_asked_key + "\""
                            : "one that refuses without asking";
    }

private:
    mutable std::optional<std::string> my_asked_key;
};

/// Loads a library, or returns null with the reason in `dlerror`. An exception that leaves one of its static
/// initialisers ends the process here: the system's loader is in the middle of its work then and can't be
/// used again.
void* openLibrary(const std::filesystem::path& file) noexcept {
    // dlopen is declared not to throw, and some compilers then let an exception pass unseen even here. They
    // can't see through a volatile pointer.
    void* (*volatile open)(const char*, int) = ::dlopen;
    return open(file.c_str(), RTLD_NOW | RTLD_LOCAL);
}

/// Whether this very library is loaded in the process, by whomever and under whatever name.
bool isLoaded(const std::filesystem::path& file) {
    void* const handle = ::dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL | RTLD_NOLOAD);
    if (handle)
        ::dlclose(handle);
    return handle != nullptr;
}

Error refusedByLoader(const std::filesystem::path& file) {
    const char* reason = ::dlerror();
    return pluginError(file, "a library that the system's loader accepts",
                       std::string("its complaint \"") + (reason ? reason : "no reason given") + "\"",
                       "Install what the plug-in needs, or link the plug-in with it.");
}

/// @returns the entry point's answer. What it throws becomes an Error here, while the library with the
/// exception's type is still loaded.
bool ask(VInitialization::EntryPoint entry_point, VInitialization& shell, const std::filesystem::path& file) {
    std::string thrown;
    try {
        return entry_point(&shell);
    } catch (const std::exception& exception) {
        thrown = std::string("the exception \"") + exception.what() + "\"";
    } catch (...) {
        thrown = "an exception";
    }
    throw pluginError(file, "an answer from its entry point", thrown, "Mend the plug-in's entry point.");
}

} // namespace

void PluginLibrary::Close::operator()(void* handle) const noexcept {
    if (::dlclose(handle) != 0)
        Qelt::Vprintf(0, "korl: a plug-in can't be unloaded: %s\n", ::dlerror());
}

PluginLibrary PluginLibrary::load(const std::filesystem::path& file) {
    return load(inspectPlugin(file));
}

PluginLibrary PluginLibrary::load(PluginInspection inspection) {
    PluginLibrary library(std::move(inspection));
    library.requireConsent();
    return library;
}

PluginLibrary::PluginLibrary(PluginInspection inspection)
    : my_inspection(std::move(inspection)), my_handle(openLibrary(file())) {
    if (!my_handle)
        throw refusedByLoader(file());
}

void PluginLibrary::requireConsent() const {
    void* symbol = ::dlsym(my_handle.get(), my_inspection.entry_point.c_str());
    if (!symbol)
        throw refusedByLoader(file());
    ListeningInitialization shell;
    if (!ask(reinterpret_cast<VInitialization::EntryPoint>(symbol), shell, file()))
        throw pluginError(file(),
                          std::string("a module for the interface \"") + VInitialization::interfaceKey + "\"",
                          shell.question(), "Build the plug-in against this program's headers.");
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
            throw Error("cannot look for plug-ins in \"" + directory.string() +
                        "\": " + error.code().message() +
                        ".\nName directories that exist in KORL_PLUGIN_PATH, or unset it.");
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
            std::error_code gone; // A file that is gone is no other file's equal.
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
    const auto where = holder ? ", loaded from \"" + holder->file().string() + "\"" : std::string();
    throw pluginError(inspection.file, "a module that is not loaded yet",
                      "another copy of " + inspection.module_name + where, "Leave out one of the two.");
}

} // namespace korl
