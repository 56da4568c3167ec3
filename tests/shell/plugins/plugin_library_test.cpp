#include "shell/plugins/plugin_library.hpp"

#include "plugin_files.hpp"

#include <sorvik/initialization.hpp>

#include <gtest/gtest.h>

#include <dlfcn.h>
#include <type_traits>
#include <utility>

namespace korl {
namespace {

using namespace plugin_files;

static_assert(std::is_nothrow_move_constructible_v<PluginLibrary>);
static_assert(!std::is_copy_constructible_v<PluginLibrary>);

std::string loadError(const std::filesystem::path& file) {
    return errorOf([&] { PluginLibrary::load(file); });
}

bool isMapped(const std::filesystem::path& file) {
    return bytesOf("/proc/self/maps").find(file.string()) != std::string::npos;
}

bool isKnownToLoader(const std::filesystem::path& file) {
    void* handle = dlopen(file.c_str(), RTLD_NOLOAD | RTLD_LAZY);
    if (handle)
        dlclose(handle);
    return handle != nullptr;
}

void expectGone(const std::filesystem::path& file) {
    EXPECT_FALSE(isKnownToLoader(file)) << file;
    EXPECT_FALSE(isMapped(file)) << file;
    EXPECT_TRUE(VInitialization::plugins().empty());
}

TEST(PluginLibraryTest, LoadsAndReallyUnloads) {
    const auto file = good / "alder.so";
    expectGone(file);
    for (int round = 0; round < 3; ++round) {
        {
            const auto library = PluginLibrary::load(file);
            EXPECT_EQ(library.file(), file);
            EXPECT_EQ(library.moduleName(), "alder");
            EXPECT_TRUE(isKnownToLoader(file));
            EXPECT_TRUE(isMapped(file));
            ASSERT_EQ(VInitialization::plugins().size(), 1u);
            EXPECT_EQ(VInitialization::plugins()[0].name, "alder");
            EXPECT_EQ(VInitialization::plugins()[0].version_key, "KORL_API_VERSION");
        }
        expectGone(file);
    }
}

TEST(PluginLibraryTest, MovesWithoutUnloading) {
    const auto file = good / "alder.so";
    {
        auto first = PluginLibrary::load(file);
        const auto second = std::move(first);
        EXPECT_EQ(second.moduleName(), "alder");
        EXPECT_TRUE(isMapped(file));
    }
    expectGone(file);
}

TEST(PluginLibraryTest, KeepsItsSymbolsToItself) {
    const auto library = PluginLibrary::load(good / "alder.so");
    EXPECT_EQ(dlsym(RTLD_DEFAULT, "KORL_API_2026_JAN_22__alder"), nullptr);
}

TEST(PluginLibraryTest, FindsALibraryWithoutADirectoryInItsName) {
    // The system's loader would look for a bare name in its own directories.
    const auto before = std::filesystem::current_path();
    std::filesystem::current_path(good);
    const auto name = PluginLibrary::load("alder.so").moduleName();
    std::filesystem::current_path(before);
    EXPECT_EQ(name, "alder");
}

TEST(PluginLibraryTest, RunsNothingOfALibraryThatInspectionRefuses) {
    const auto file = broken / "no_entry_point.so";
    EXPECT_TRUE(loadError(file).starts_with(refusal(file, "a function named ")));
    expectGone(file);
}

TEST(PluginLibraryTest, SaysWhatTheLoaderSays) {
    const auto file = broken / "undefined_symbol.so";
    EXPECT_EQ(
        loadError(file),
        refusal(file,
                "a library that the system's loader accepts, found its complaint \"" + file.string() +
                    ": undefined symbol: functionOfNoLibrary\".\nInstall what the plug-in needs, or link "
                    "the plug-in with it."));
    expectGone(file);
}

TEST(PluginLibraryTest, UnloadsAModuleThatAsksForAnotherInterface) {
    const auto file = broken / "other_key.so";
    EXPECT_EQ(loadError(file),
              refusal(file, "a module for the interface \"KORL_API_VERSION\", found one that asks for "
                            "\"STRANGE_KEY\".\nBuild the plug-in against this program's headers."));
    expectGone(file);
}

TEST(PluginLibraryTest, UnloadsAModuleThatRefusesWithoutAsking) {
    const auto file = broken / "refusing_without_asking.so";
    EXPECT_EQ(loadError(file),
              refusal(file, "a module for the interface \"KORL_API_VERSION\", found one that refuses "
                            "without asking.\nBuild the plug-in against this program's headers."));
    expectGone(file);
}

TEST(PluginLibraryTest, TurnsAnEntryPointsExceptionIntoAnError) {
    const auto file = broken / "throwing_entry_point.so";
    EXPECT_EQ(loadError(file),
              refusal(file, "an answer from its entry point, found the exception \"no answer today\"."
                            "\nFix the plug-in's entry point."));
    expectGone(file);
}

} // namespace
} // namespace korl
