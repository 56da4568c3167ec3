#include "shell/plugins/plugin_handle.hpp"

#include "shell/base/caught_exception.hpp"
#include "shell/base/loaded_modules.hpp"
#include "shell/base/module_call.hpp"
#include "shell/base/printable.hpp"
#include "shell/plugins/plugin_error.hpp"

#include <sorvik/initialization.hpp>
#include <sorvik/vprintf.hpp>

#include <dlfcn.h>
#include <fmt/core.h>
#include <optional>
#include <string>

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
        return my_asked_key ? "one that asks for " + inQuotes(*my_asked_key)
                            : "one that refuses without asking";
    }

private:
    mutable std::optional<std::string> my_asked_key;
};

/// Part of the stack, filled with what cannot be a pointer.
///
/// Damaged code may read below its own frame what others left there, or above it what they hold. Around the
/// loader it is to find the same in the process that tries a module as in the one that loads it. It begins on
/// a page, because what the loader itself leaves where depends on how its frame is aligned.
class LevelStack {
public:
    LevelStack() noexcept { // NOLINT(cppcoreguidelines-pro-type-member-init): the loop does it
        for (volatile unsigned char& byte : my_bytes)
            byte = 0xa5;
    }

private:
    alignas(4096) volatile unsigned char my_bytes[64 * 1024];
};

[[gnu::noinline]] void levelStackBelow() noexcept {
    const LevelStack level;
}

/// Loads a library, or returns null with the reason in `dlerror`.
[[gnu::noinline]] void* openLibrary(const std::filesystem::path& file) noexcept {
    const LevelStack above;
    levelStackBelow();
    // dlopen is declared not to throw, and some compilers then let an exception pass unseen even here. They
    // can't see through a volatile pointer.
    void* (*volatile open)(const char*, int) = ::dlopen;
    return open(file.c_str(), RTLD_NOW | RTLD_LOCAL);
}

Error refusedByLoader(const std::filesystem::path& file) {
    const char* reason = ::dlerror();
    return pluginError(file, "a library that the system's loader accepts",
                       fmt::format("its complaint \"{}\"", reason ? reason : "no reason given"),
                       "Install what the plug-in needs, or link the plug-in with it.");
}

/// @returns the entry point's answer. What it throws becomes an Error here, while the library with the
/// exception's type is still loaded.
bool ask(VInitialization::EntryPoint entry_point, VInitialization& shell, const std::filesystem::path& file) {
    std::string thrown;
    try {
        return entry_point(&shell);
    } catch (...) {
        thrown = nameOfCaughtException();
    }
    throw pluginError(file, "an answer from its entry point", thrown, "Fix the plug-in's entry point.");
}

} // namespace

void ClosePlugin::operator()(void* handle) const noexcept {
    const ModuleCall call(module_name, "unloading");
    if (::dlclose(handle) != 0)
        Qelt::Vprintf(0, "korl: a plug-in can't be unloaded: %s\n", ::dlerror());
    leaveModule(handle);
}

PluginHandle openPlugin(const PluginInspection& plugin) {
    PluginHandle handle(openLibrary(plugin.file), {plugin.module_name});
    if (!handle)
        throw refusedByLoader(plugin.file);
    void* const symbol = ::dlsym(handle.get(), plugin.entry_point.c_str());
    if (!symbol)
        throw refusedByLoader(plugin.file);
    enterModule(plugin.module_name, handle.get(), symbol);
    ListeningInitialization shell;
    if (!ask(reinterpret_cast<VInitialization::EntryPoint>(symbol), shell, plugin.file))
        throw pluginError(plugin.file,
                          fmt::format("a module for the interface \"{}\"", VInitialization::interfaceKey),
                          shell.question(), "Build the plug-in against this program's headers.");
    return handle;
}

} // namespace korl
