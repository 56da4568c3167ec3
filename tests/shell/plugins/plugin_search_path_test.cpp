#include "shell/plugins/plugin_search_path.hpp"

#include "plugin_files.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>

namespace korl {
namespace {

using plugin_files::TemporaryDirectory;
using testing::ElementsAre;

TEST(PluginSearchPathTest, SplitsTheVariableAtColonsAndIgnoresEmptyElements) {
    EXPECT_THAT(pluginSearchPath("/b:/a", "/usr/bin/korl"), ElementsAre("/b", "/a"));
    EXPECT_THAT(pluginSearchPath("::/b::relative dir:", "/usr/bin/korl"), ElementsAre("/b", "relative dir"));
}

TEST(PluginSearchPathTest, SearchesNowhereWhereTheVariableIsEmpty) {
    const TemporaryDirectory root;
    std::filesystem::create_directories(root.path() / "lib/korl/modules");
    EXPECT_THAT(pluginSearchPath("", root.path() / "bin/korl"), ElementsAre());
    EXPECT_THAT(pluginSearchPath(":", root.path() / "bin/korl"), ElementsAre());
}

TEST(PluginSearchPathTest, DefaultsToTheModulesBesideTheProgram) {
    const TemporaryDirectory root;
    EXPECT_THAT(pluginSearchPath(nullptr, root.path() / "bin/korl"), ElementsAre());
    std::filesystem::create_directories(root.path() / "lib/korl/modules");
    EXPECT_THAT(pluginSearchPath(nullptr, root.path() / "bin/korl"),
                ElementsAre(root.path() / "lib/korl/modules"));
}

TEST(PluginSearchPathTest, ReadsTheEnvironmentAndThePathOfThisProgram) {
    const auto program = std::filesystem::read_symlink("/proc/self/exe");
    ASSERT_EQ(unsetenv("KORL_PLUGIN_PATH"), 0);
    EXPECT_EQ(pluginSearchPath(), pluginSearchPath(nullptr, program));
    ASSERT_EQ(setenv("KORL_PLUGIN_PATH", "/one:/two", 1), 0);
    EXPECT_THAT(pluginSearchPath(), ElementsAre("/one", "/two"));
    ASSERT_EQ(unsetenv("KORL_PLUGIN_PATH"), 0);
}

} // namespace
} // namespace korl
