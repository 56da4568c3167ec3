#pragma once

#include <dlfcn.h>
#include <fstream>
#include <gtest/gtest.h>
#include <link.h>
#include <string>

namespace korl::test {

/// The module, loaded as a shell loads it, as long as this lives.
class LoadedModule {
public:
    LoadedModule() : my_handle(dlopen(TOVEK_LIGHT_MODULE, RTLD_NOW | RTLD_LOCAL)) {
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
        if (void* const handle = dlopen(TOVEK_LIGHT_MODULE, RTLD_NOW | RTLD_NOLOAD)) {
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
