// What the module asks of other libraries, as its file says it.

#include "tests/support/loaded_module.hpp"

#include "shell/plugins/elf_file.hpp"

#include <elf.h>
#include <filesystem>
#include <gmock/gmock.h>
#include <link.h>
#include <map>
#include <set>
#include <string>

namespace {

using korl::ElfFile;
using korl::test::LoadedModule;
using testing::ElementsAre;
using Names = std::set<std::string>;

/// A library without its version: "libQt5Core".
std::string plainName(const std::string& library) {
    const std::string file = std::filesystem::path(library).filename();
    return file.substr(0, file.find(".so"));
}

/// The libraries that the loaded module names as those it needs, each by its plain name, with its path.
std::map<std::string, std::string> neededLibraries(const LoadedModule& module) {
    std::map<std::string, std::string> needed;
    const link_map* const map = module.linkMap();
    const char* strings = nullptr;
    for (const ElfW(Dyn)* entry = map->l_ld; entry->d_tag != DT_NULL; ++entry)
        if (entry->d_tag == DT_STRTAB)
            strings = reinterpret_cast<const char*>(entry->d_un.d_ptr);
    for (const ElfW(Dyn)* entry = map->l_ld; entry->d_tag != DT_NULL; ++entry)
        if (entry->d_tag == DT_NEEDED) {
            const std::string name = strings + entry->d_un.d_val;
            for (const link_map* other = map; other; other = other->l_next)
                if (std::filesystem::path(other->l_name).filename() == name)
                    needed[plainName(name)] = other->l_name;
            for (const link_map* other = map; other; other = other->l_prev)
                if (std::filesystem::path(other->l_name).filename() == name)
                    needed[plainName(name)] = other->l_name;
            EXPECT_TRUE(needed.contains(plainName(name))) << name << " is not loaded";
        }
    return needed;
}

bool isOfTheLanguage(const std::string& library) {
    static const Names runtime{"libstdc++", "libm", "libgcc_s", "libc", "libasan", "libubsan", "libtsan"};
    return runtime.contains(library) || library.starts_with("ld-linux");
}

TEST(Links, AreTheHostLibrariesOpenGLAndQt) {
    const LoadedModule module;
    Names libraries;
    for (const auto& [name, path] : neededLibraries(module))
        if (!isOfTheLanguage(name))
            libraries.insert(name);
    EXPECT_THAT(libraries,
                ElementsAre("libOpenGL", "libQt5Core", "libdoltra", "libpalune", "libsorvik", "libtessan"));
}

TEST(Links, TakeSevenFunctionsOfOpenGLAndTwoOfQt) {
    const LoadedModule module;
    const auto libraries = neededLibraries(module);
    std::map<std::string, Names> taken; // by library
    for (const auto& symbol : ElfFile(korl::test::moduleFile()).dynamicSymbols())
        if (!symbol.defined && symbol.global) // a weak one may stay undefined
            taken["none"].insert(symbol.name);
    for (const auto& [name, path] : libraries)
        for (const auto& symbol : ElfFile(path).dynamicSymbols())
            if (symbol.defined && taken["none"].erase(symbol.name) != 0)
                taken[name].insert(symbol.name);
    EXPECT_THAT(taken["libOpenGL"], ElementsAre("glEnable", "glLightf", "glLightfv", "glLoadIdentity",
                                                "glMatrixMode", "glPopMatrix", "glPushMatrix"));
    EXPECT_THAT(taken["libQt5Core"],
                ElementsAre("_Z21qRegisterResourceDataiPKhS0_S0_", "_Z23qUnregisterResourceDataiPKhS0_S0_"));
    for (const char* const host : {"libdoltra", "libpalune", "libsorvik", "libtessan"})
        EXPECT_FALSE(taken[host].empty()) << host;
#ifndef KORL_SANITIZED // whose functions may be in the program
    EXPECT_THAT(taken["none"], testing::IsEmpty());
#endif
}

} // namespace
