#include "tests/support/captured_trace.hpp"

#include <sorvik/initialization.hpp>

#include <gmock/gmock.h>
#include <string>

namespace {

using korl::test::traceOf;

TEST(Vprintf, VerbosityStartsAtZero) {
    EXPECT_EQ(Qelt::verbosity(), 0); // the first test of its process: the others leave it at 0 themselves
}

std::vector<std::string> announced() {
    std::vector<std::string> names;
    for (const auto& plugin : VInitialization::plugins())
        names.push_back(plugin.name + "@" + plugin.version_key);
    return names;
}

TEST(Initialization, AcceptsExactlyItsOwnKey) {
    const VInitialization shell;
    EXPECT_TRUE(shell.IsCompatible("KORL_API_VERSION"));
    for (const char* const other :
         {"KORL_API_VERSION2", "KORL_API_VERSIO", " KORL_API_VERSION", "korl_api_version", "OTHER", ""})
        EXPECT_FALSE(shell.IsCompatible(other)) << other;
    EXPECT_FALSE(shell.IsCompatible(nullptr));
    const VInitialization other("OTHER");
    EXPECT_TRUE(other.IsCompatible("OTHER"));
    EXPECT_FALSE(other.IsCompatible("KORL_API_VERSION"));
}

TEST(Initialization, KeepsTheBookOfModules) {
    {
        std::string passing = "first"; // what the module hands over is copied
        VInitialization::initPlugin(0, passing.c_str(), "KEY");
        passing = "gone!";
    }
    VInitialization::initPlugin(0, "second", "KEY2");
    EXPECT_THAT(announced(), testing::ElementsAre("first@KEY", "second@KEY2"));
    VInitialization::initPlugin(1, "first", "KEY");
    EXPECT_THAT(announced(), testing::ElementsAre("second@KEY2"));
    VInitialization::initPlugin(1, "second", "KEY2");
    EXPECT_THAT(announced(), testing::IsEmpty());
}

TEST(Initialization, LetsTheLatestOfOneNameGoFirst) {
    for (const char* const key : {"KEY1", "KEY2", "KEY3"})
        VInitialization::initPlugin(0, key == std::string("KEY2") ? "other" : "twin", key);
    EXPECT_THAT(announced(), testing::ElementsAre("twin@KEY1", "other@KEY2", "twin@KEY3"));
    VInitialization::initPlugin(1, "twin", "KEY1");
    EXPECT_THAT(announced(), testing::ElementsAre("twin@KEY1", "other@KEY2"));
    VInitialization::initPlugin(1, "twin", "KEY1");
    EXPECT_THAT(announced(), testing::ElementsAre("other@KEY2"));
    VInitialization::initPlugin(1, "other", "KEY2");
    EXPECT_THAT(announced(), testing::IsEmpty());
}

TEST(Initialization, ReportsWhatDoesNotFitAndChangesNothing) {
    VInitialization::initPlugin(0, "known", "KEY");
    EXPECT_EQ(traceOf(0,
                      [] {
                          VInitialization::initPlugin(1, "stranger", "KEY");
                          VInitialization::initPlugin(7, "stranger", "KEY");
                          VInitialization::initPlugin(-1, "known", "KEY");
                      }),
              "VInitialization: module stranger goes, but it never came\n"
              "VInitialization: module stranger gave the unknown reason 7\n"
              "VInitialization: module known gave the unknown reason -1\n");
    EXPECT_THAT(announced(), testing::ElementsAre("known@KEY"));
    VInitialization::initPlugin(1, "known", "KEY");
}

TEST(Initialization, RefusesNullNamesAndKeys) {
    VInitialization::initPlugin(0, "module", "KEY");
    testing::internal::CaptureStdout();
    VInitialization::initPlugin(0, nullptr, "KEY");
    VInitialization::initPlugin(0, "other", nullptr);
    VInitialization::initPlugin(0, nullptr, nullptr);
    VInitialization::initPlugin(1, nullptr, "KEY");
    VInitialization::initPlugin(1, "module", nullptr);
    std::fflush(stdout);
    EXPECT_EQ(
        testing::internal::GetCapturedStdout(),
        "VInitialization: module (unknown) gave no name, so its call with the reason 0 is ignored\n"
        "VInitialization: module other gave no interface key, so its call with the reason 0 is ignored\n"
        "VInitialization: module (unknown) gave no name, so its call with the reason 0 is ignored\n"
        "VInitialization: module (unknown) gave no name, so its call with the reason 1 is ignored\n"
        "VInitialization: module module gave no interface key, so its call with the reason 1 is ignored\n");
    EXPECT_THAT(announced(), testing::ElementsAre("module@KEY"));
    VInitialization::initPlugin(1, "module", "KEY");
    EXPECT_THAT(announced(), testing::IsEmpty());
}

TEST(Vprintf, ShowsWhatTheVerbosityAllows) {
    const auto printAtAllLevels = [] {
        for (const int level : {0, 1, 49, 50, 51, 100})
            Qelt::Vprintf(level, "%d %s\n", level, "shown");
    };
    EXPECT_EQ(traceOf(0, printAtAllLevels), "0 shown\n");
    EXPECT_EQ(traceOf(49, printAtAllLevels), "0 shown\n1 shown\n49 shown\n");
    EXPECT_EQ(traceOf(50, printAtAllLevels), "0 shown\n1 shown\n49 shown\n50 shown\n");
    EXPECT_EQ(traceOf(-1, printAtAllLevels), "");
    Qelt::setVerbosity(7);
    EXPECT_EQ(Qelt::verbosity(), 7);
    Qelt::setVerbosity(0);
}

} // namespace
