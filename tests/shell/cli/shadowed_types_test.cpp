// Two modules that bring the same type name: rival_sun, which comes first, and tovek_light.

#include "tests/support/run_program.hpp"

#include <filesystem>
#include <gmock/gmock.h>

namespace {

using korl::test::bytesOf;
using korl::test::ProgramResult;
using korl::test::runProgram;
using testing::HasSubstr;
using testing::Not;

const std::string told =
    "korl: two modules have the type \"Sun\": the name stands for that of \"rival_sun\", "
    "\"tovek_light/Sun\" for the other\n";

class ShadowedTypes : public testing::Test {
protected:
    /// What the program prints with both modules loaded; it says once which of them serves the name.
    static std::string korl(std::vector<std::string> arguments) {
        arguments.insert(arguments.end(), {"--plugin", KORL_BROKEN_PLUGINS "/rival_sun.so"});
        const ProgramResult result = runProgram(KORL_PROGRAM, arguments);
        EXPECT_EQ(result.errors, told);
        EXPECT_EQ(result.exit_code, 0);
        return result.output;
    }

    const korl::test::TemporaryFolder folder;
};

TEST_F(ShadowedTypes, AreMarkedInTheList) {
    const std::string list = korl({"types"});
    EXPECT_THAT(list, HasSubstr("\nSun               -         0 "));
    EXPECT_THAT(list, HasSubstr("\ntovek_light/Sun   Scenery   0 "));
    EXPECT_THAT(list,
                HasSubstr("  (shadowed by that of rival_sun) A light source that is specified by altitude"));
    EXPECT_THAT(list, HasSubstr("\nTorch             Scenery   0 ")) << "the others keep their names";
}

TEST_F(ShadowedTypes, HaveIconsOfTheirOwn) {
    korl({"types", "--icons", folder.path()});
    EXPECT_TRUE(std::filesystem::exists(folder / "Sun.png"));
    EXPECT_TRUE(std::filesystem::exists(folder / "Torch.png"));
    const std::string torch = bytesOf(folder / "Torch.png");
    // The shadowed one of two torches has its own.
    const korl::test::TemporaryFolder torches;
    const ProgramResult result = runProgram(
        KORL_PROGRAM, {"types", "--icons", torches.path(), "--plugin", KORL_BROKEN_PLUGINS "/rival_sun.so"},
        {{"KORL_TEST_RIVAL", "Torch"}});
    EXPECT_EQ(result.exit_code, 0) << result.errors;
    EXPECT_EQ(bytesOf(torches / "tovek_light.Torch.png"), torch);
    EXPECT_NE(bytesOf(torches / "Torch.png"), torch);
    EXPECT_TRUE(std::filesystem::exists(torches / "Torch.png"));
}

TEST_F(ShadowedTypes, AreReachedByTheirModule) {
    EXPECT_THAT(korl({"describe", "Sun"}), HasSubstr("\nwarmth "));
    EXPECT_THAT(korl({"describe", "rival_sun/Sun"}), HasSubstr("\nwarmth "));
    EXPECT_THAT(korl({"describe", "tovek_light/Sun"}), HasSubstr("\nlatitude "));
    EXPECT_THAT(korl({"accepts", "tovek_light/Sun"}), HasSubstr("latitude"));
}

TEST_F(ShadowedTypes, AreSavedByTheNameThatReachesThem) {
    const std::string scene = folder / "scene.json", again = folder / "again.json", rig = folder / "rig.json";
    korl({"save", "-o", scene, "--light", "Sun", "--light", "tovek_light/Sun:low", "--light",
          "tovek_light/Sun", "--set", "low.latitude=60", "--set", "Sun.warmth=2"});
    const std::string saved = bytesOf(scene);
    EXPECT_THAT(saved, HasSubstr(R"({"type": "Sun", "name": "Sun", "parameters": {"warmth": 2}})"));
    EXPECT_THAT(saved,
                HasSubstr(R"({"type": "tovek_light/Sun", "name": "low", "parameters": {"latitude": 60}})"));
    EXPECT_THAT(saved, HasSubstr(R"({"type": "tovek_light/Sun", "name": "Sun2"})"));
    korl({"save", scene, "-o", again});
    EXPECT_EQ(bytesOf(again), saved);
    korl({"save-rig", scene, "-o", rig});
    EXPECT_THAT(bytesOf(rig), HasSubstr(R"({"type": "tovek_light/Sun", "name": "low")"));
    EXPECT_THAT(korl({"script", scene}), HasSubstr(R"(shell.create("tovek_light/Sun", "low", latitude=60))"));
}

TEST_F(ShadowedTypes, AnObjectWithoutANameGetsItsTypesAlone) {
    const std::string scene =
        folder.write("scene.json", R"({"korl": 1, "objects": [{"type": "tovek_light/Sun"}]})");
    const std::string again = folder / "again.json";
    korl({"save", scene, "-o", again});
    EXPECT_THAT(bytesOf(again), HasSubstr(R"({"type": "tovek_light/Sun", "name": "Sun"})"));
}

TEST_F(ShadowedTypes, AModuleMayBeNamedWhereNothingIsShadowed) {
    const ProgramResult result = runProgram(KORL_PROGRAM, {"describe", "tovek_light/Sun"});
    EXPECT_THAT(result.output, HasSubstr("\nlatitude "));
    EXPECT_EQ(result.errors, "");
    const ProgramResult unknown = runProgram(KORL_PROGRAM, {"describe", "tovek_light/Som"});
    EXPECT_THAT(unknown.errors,
                testing::StartsWith("korl: unknown type \"tovek_light/Som\": there are: Headlight, "));
    EXPECT_EQ(unknown.exit_code, 1);
    EXPECT_THAT(runProgram(KORL_PROGRAM, {"types"}).output, Not(HasSubstr("/Sun")));
}

} // namespace
