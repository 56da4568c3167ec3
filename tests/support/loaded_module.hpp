#pragma once

#include <cstdlib>
#include <dlfcn.h>
#include <fstream>
#include <gtest/gtest.h>
#include <link.h>
#include <string>

namespace korl::test {

/// Where another build of the module is to be tested: KORL_TEST_MODULE_FOLDER names a folder that holds it,
/// its list of units, and the tests of the lights that this program does not know. Empty for the build that
/// the program was built for.
inline std::string otherModuleFolder() {
    const char* const folder = std::getenv("KORL_TEST_MODULE_FOLDER");
    return folder ? folder : "";
}

/// The library of the module under test.
inline std::string moduleFile() {
    const std::string folder = otherModuleFolder();
    return folder.empty() ? TOVEK_LIGHT_MODULE : folder + "/libtovek_light.so";
}

/// The module, loaded as a shell loads it, as long as this lives.
class LoadedModule {
public:
    LoadedModule() : my_handle(dlopen(moduleFile().c_str(), RTLD_NOW | RTLD_LOCAL)) {
        EXPECT_NE(my_handle, nullptr) << dlerror();
    }
    ~LoadedModule() { unload(); }
    LoadedModule(const LoadedModule&) = delete;
    LoadedModule& operator=(const LoadedModule&) = delete;

    void* symbol(const char* name) const { return dlsym(my_handle, name); }

    /// The module as the loader lists it.
    const link_map* linkMap() const {
        link_map* map = nullptr;
        EXPECT_EQ(dlinfo(my_handle, RTLD_DI_LINKMAP, &map), 0) << dlerror();
        return map;
    }

    void unload() {
        if (my_handle) {
            EXPECT_EQ(dlclose(my_handle), 0) << dlerror();
        }
        my_handle = nullptr;
    }

    /// Whether any of the module is in the process, as the loader and the process's memory map see it.
    static bool isInProcess() {
        if (void* const handle = dlopen(moduleFile().c_str(), RTLD_NOW | RTLD_NOLOAD)) {
            dlclose(handle);
            return true;
        }
        std::ifstream maps("/proc/self/maps");
        for (std::string line; std::getline(maps, line);)
            if (line.find("libtovek_light") != std::string::npos)
                return true;
        return false;
    }

private:
    void* my_handle;
};

} // namespace korl::test
