#pragma once

#include <sorvik/export.hpp>

#include <string>
#include <vector>

/// The shell as a module sees it while it is loaded and unloaded.
///
/// The shell hands its `VInitialization` to the entry point of a module, which asks it whether the interface
/// that the module was built against is the shell's own. The two static sides keep the book of announced
/// modules.
class SORVIK_EXPORT VInitialization {
public:
    /// The interface key of this framework. A module that names another one was built for another shell.
    static constexpr const char* interfaceKey = "KORL_API_VERSION";

    /// The prefix of the one function that a module exports; the module's name follows it.
    static constexpr const char* entryPointPrefix = "KORL_API_2026_JAN_22__";

    /// The form of that function: it returns the answer of `IsCompatible` unchanged.
    using EntryPoint = bool (*)(VInitialization*);

    enum Reason : int { loading = 0, unloading = 1 };

    /// A module that has announced itself and has not said yet that it goes.
    struct Plugin {
        std::string name;
        std::string version_key;
    };

    /// @param accepted_key the one key that `IsCompatible` says yes to.
    explicit VInitialization(std::string accepted_key = interfaceKey);
    virtual ~VInitialization();

    /// @returns true for exactly the key that this shell accepts; false for any other, a null pointer
    /// included.
    virtual bool IsCompatible(const char* version_key) const;

    /// A module says that it comes (reason `loading`) or goes (reason `unloading`). Both strings are copied.
    /// A name or a key that is null, an unknown reason, and a module that goes without having come change
    /// nothing and are reported with `Vprintf` at verbosity 0.
    static void initPlugin(int reason, const char* name, const char* version_key);

    /// The modules that have come and not gone, in the order in which they came.
    static std::vector<Plugin> plugins();

private:
    std::string my_accepted_key;
};
