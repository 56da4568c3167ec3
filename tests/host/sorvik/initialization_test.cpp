#include <sorvik/initialization.hpp>
#include <sorvik/vprintf.hpp>

#include <gmock/gmock.h>
#include <string>

namespace {

std::vector<std::string> announced() {
    std::vector<std::string> names;
    for (const auto& plugin : VInitialization::plugins())
        names.push_back(plugin.name + "@" + plugin.version_key);
    return names;
}

TEST(Initialization, AcceptsExactlyItsOwnKey) {
    const VInitialization shell;
    EXPECT_TRUE(shell.IsCompatible("KORL_API_VERSION"));
    EXPECT_FALSE(shell.IsCompatible("KORL_API_VERSION2"));
    EXPECT_FALSE(shell.IsCompatible("korl_api_version"));
    EXPECT_FALSE(shell.IsCompatible(""));
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

TEST(Initialization, ReportsWhatDoesNotFit) {
    testing::internal::CaptureStdout();
    VInitialization::initPlugin(1, "stranger", "KEY");
    VInitialization::initPlugin(7, "stranger", "KEY");
    std::fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "VInitialization: module stranger goes, but it never came\n"
              "VInitialization: module stranger gave the unknown reason 7\n");
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
    testing::internal::CaptureStdout();
    Qelt::setVerbosity(50);
    Qelt::Vprintf(0, "always %d\n", 1);
    Qelt::Vprintf(50, "at %s\n", "fifty");
    Qelt::Vprintf(51, "never\n");
    Qelt::setVerbosity(0);
    Qelt::Vprintf(1, "never\n");
    std::fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "always 1\nat fifty\n");
}

} // namespace
