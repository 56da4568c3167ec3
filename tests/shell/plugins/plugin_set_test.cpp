#include "shell/plugins/plugin_library.hpp"
#include <sorvik/vprintf.hpp>

#include "plugin_files.hpp"

#include <sorvik/initialization.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <utility>

namespace korl {
namespace {

using namespace plugin_files;
using testing::ElementsAre;

std::vector<std::string> announcedNames() {
    std::vector<std::string> names;
    for (const auto& plugin : VInitialization::plugins())
        names.push_back(plugin.name);
    return names;
}

std::vector<std::string> moduleNames(const PluginSet& set) {
    std::vector<std::string> names;
    for (const auto& library : set.libraries())
        names.push_back(library.moduleName());
    return names;
}

TEST(PluginSetTest, LoadsADirectoryInAlphabeticalOrderAndUnloadsInReverse) {
    testing::internal::CaptureStdout();
    {
        PluginSet set;
        set.loadFrom({good});
        EXPECT_THAT(moduleNames(set), ElementsAre("alder", "birch", "cedar"));
        EXPECT_THAT(announcedNames(), ElementsAre("alder", "birch", "cedar"));
    }
    fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "cedar goes\nbirch goes\nalder goes\n");
    EXPECT_THAT(announcedNames(), ElementsAre());
}

TEST(PluginSetTest, TakesDirectoriesInTheirOwnOrderAndOnlyLibrariesFromThem) {
    const TemporaryDirectory first;
    const TemporaryDirectory second;
    const TemporaryDirectory empty;
    std::filesystem::copy_file(good / "cedar.so", first.path() / "z.so");
    std::filesystem::copy_file(good / "alder.so", second.path() / "a.so");
    first.write("readme.txt", "not a library");
    PluginSet set;
    set.loadFrom({first.path(), empty.path(), second.path()});
    EXPECT_THAT(moduleNames(set), ElementsAre("cedar", "alder"));
}

TEST(PluginSetTest, GivesTheLibraryThatItLoaded) {
    PluginSet set;
    EXPECT_EQ(set.load(good / "birch.so").moduleName(), "birch");
    EXPECT_EQ(set.load(good / "alder.so").file(), good / "alder.so");
    EXPECT_THAT(moduleNames(set), ElementsAre("birch", "alder"));
}

TEST(PluginSetTest, KeepsItsPluginsWhenItMoves) {
    PluginSet first;
    first.load(good / "alder.so");
    const PluginSet second = std::move(first);
    EXPECT_THAT(announcedNames(), ElementsAre("alder"));
    EXPECT_THAT(moduleNames(second), ElementsAre("alder"));
}

TEST(PluginSetTest, RefusesTheSameFileUnderAnyName) {
    const TemporaryDirectory directory;
    const auto link = directory.path() / "link.so";
    std::filesystem::create_symlink(good / "alder.so", link);
    PluginSet set;
    set.load(good / "alder.so");
    for (const auto& file : {good / "alder.so", link})
        EXPECT_EQ(
            errorOf([&] { set.load(file); }),
            refusal(file,
                    "a plug-in that is not loaded yet, found one that is loaded already.\nName each plug-in "
                    "once."));
    EXPECT_THAT(announcedNames(), ElementsAre("alder"));
    EXPECT_THAT(moduleNames(set), ElementsAre("alder"));
}

TEST(PluginSetTest, PassesOverAFileThatIsLoadedAlreadyInASearch) {
    const TemporaryDirectory directory;
    std::filesystem::create_symlink(good / "birch.so", directory.path() / "link.so");
    PluginSet set;
    set.load(good / "birch.so");
    set.loadFrom({good, directory.path(), good});
    EXPECT_THAT(moduleNames(set), ElementsAre("birch", "alder", "cedar"));
}

TEST(PluginSetTest, RefusesAnotherCopyOfALoadedModule) {
    const TemporaryDirectory directory;
    const auto copy = directory.path() / "copy.so";
    std::filesystem::copy_file(good / "alder.so", copy);
    PluginSet set;
    set.load(good / "alder.so");
    const auto expected =
        refusal(copy, "a module that is not loaded yet, found another copy of alder, loaded from \"" +
                          (good / "alder.so").string() + "\".\nLeave out one of the two.");
    EXPECT_EQ(errorOf([&] { set.load(copy); }), expected);
    EXPECT_THAT(announcedNames(), ElementsAre("alder"));
}

TEST(PluginSetTest, PassesOverOtherCopiesOnTheSearchPath) {
    const TemporaryDirectory directory;
    const auto copy = directory.path() / "copy.so";
    std::filesystem::copy_file(good / "alder.so", copy);
    PluginSet set;
    set.load(copy); // such as a build of one's own, named with --plugin
    testing::internal::CaptureStdout();
    Qelt::setVerbosity(1);
    set.loadFrom({good});
    Qelt::setVerbosity(0);
    fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "korl: \"" + (good / "alder.so").string() +
                                                          "\" is passed over, alder is loaded from \"" +
                                                          copy.string() + "\" already\n");
    EXPECT_THAT(moduleNames(set), ElementsAre("alder", "birch", "cedar"));
    EXPECT_EQ(set.libraries().front().file(), copy);
}

TEST(PluginSetTest, SharesALibraryWithAnotherSetUntilBothHaveGone) {
    const TemporaryDirectory directory;
    const auto link = directory.path() / "link.so";
    std::filesystem::create_symlink(good / "alder.so", link);
    std::optional<PluginSet> first(std::in_place), second(std::in_place);
    first->load(good / "alder.so");
    second->load(link);
    EXPECT_THAT(moduleNames(*second), ElementsAre("alder"));
    EXPECT_THAT(announcedNames(), ElementsAre("alder"));
    testing::internal::CaptureStdout();
    first.reset();
    EXPECT_THAT(announcedNames(), ElementsAre("alder"));
    fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    second.reset();
    EXPECT_THAT(announcedNames(), ElementsAre());
}

TEST(PluginSetTest, RefusesAnotherCopyOfAModuleThatIsLoadedOutsideTheSet) {
    const TemporaryDirectory directory;
    const auto copy = directory.path() / "copy.so";
    std::filesystem::copy_file(good / "alder.so", copy);
    const auto elsewhere = PluginLibrary::load(good / "alder.so");
    PluginSet set;
    EXPECT_EQ(
        errorOf([&] { set.load(copy); }),
        refusal(copy,
                "a module that is not loaded yet, found another copy of alder.\nLeave out one of the two."));
}

TEST(PluginSetTest, RefusesADirectoryThatIsMissing) {
    PluginSet set;
    EXPECT_EQ(
        errorOf([&] {
            set.loadFrom({good, good / "nowhere"});
        }),
        "cannot look for plug-ins in \"" + (good / "nowhere").string() +
            "\": No such file or directory.\nName directories that exist in KORL_PLUGIN_PATH, or unset it.");
    EXPECT_THAT(moduleNames(set), ElementsAre("alder", "birch", "cedar"));
}

TEST(PluginSetTest, StopsAtTheFirstRefusedPluginAndKeepsThoseBeforeIt) {
    const TemporaryDirectory directory;
    std::filesystem::copy_file(good / "cedar.so", directory.path() / "a.so");
    const auto empty = directory.write("b.so", "");
    std::filesystem::copy_file(good / "alder.so", directory.path() / "c.so");
    PluginSet set;
    EXPECT_TRUE(
        errorOf([&] { set.loadFrom({directory.path()}); }).starts_with(refusal(empty, "a plug-in library")));
    EXPECT_THAT(moduleNames(set), ElementsAre("cedar"));
}

} // namespace
} // namespace korl
