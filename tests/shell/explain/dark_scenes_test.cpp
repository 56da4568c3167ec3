// Scenes that are dark for one reason each, and whether the program names it.

#include "tests/support/run_program.hpp"

#include <filesystem>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>
#include <set>

namespace {

using korl::test::ProgramResult;
using korl::test::runProgram;
using nlohmann::json;
using testing::HasSubstr;
using testing::StartsWith;

struct DarkScene {
    const char* file; ///< without its extension
    const char* cause;
    const char* light; ///< the one that is to blame; empty for the whole scene
    const char* words; ///< found in the first sentence
    std::vector<std::string> options{};
};

const std::vector<DarkScene> dark_scenes{
    {"muted", "muted", "sun", "the light \"sun\" is muted"},
    {"zero_intensity", "zero_intensity", "key", "the lights \"key\" and \"fill\" have zero intensity"},
    {"sun_below_horizon", "below_horizon", "sun", "degrees below the horizon and shines upwards"},
    {"facing_away", "facing_away", "key", "the light \"key\" faces away from all that is seen"},
    {"too_far", "too_far", "torch", "at a distance of 1e+03 its light is down to 2.5e-05 of its strength"},
    {"not_finite", "not_finite", "key", "not finite is its uniform \"DirectionalLightDirection$$\""},
    {"no_lights", "no_lights", "", "the scene has no light"},
    {"out_of_view", "no_mesh_in_view", "", "no mesh is in view: the camera looks past all of them"},
    {"inverted_normals", "normals_inverted", "", "they are inverted, against the fronts of its triangles"},
    {"normals_missing", "normals_missing", "", "has no normals of its own: all of them are (0, 0, 1)"},
    {"left_out", "left_out", "key", "the light \"key\" is left out", {"--path", "fixed"}},
    {"no_opengl_light", "no_opengl_light", "torch", "sets up no OpenGL light", {"--path", "fixed"}},
    {"shader_failed", "shader_failed", "faulty", "There is no picture", {"--plugin", FAULTY_LIGHT_MODULE}},
    {"weak", "weak", "fill", "the light \"fill\" is weak: its intensity is at most 0.05"},
    {"black_surface", "black_surface", "", "100 % of what is seen is black by its own colours"},
    {"grazing", "grazing", "key", "at most 2.86 degrees from the surface"},
};

ProgramResult explain(const DarkScene& scene, std::vector<std::string> options) {
    options.insert(options.begin(), {"explain", std::string(DARK_SCENES) + "/" + scene.file + ".json"});
    options.insert(options.end(), {"--size", "160x120"});
    options.insert(options.end(), scene.options.begin(), scene.options.end());
    return runProgram(KORL_PROGRAM, options);
}

json lightOf(const json& report, const std::string& name) {
    for (const json& light : report["lights"])
        if (light["name"] == name)
            return light;
    return {};
}

class DarkSceneGLTest : public testing::TestWithParam<DarkScene> {};

TEST_P(DarkSceneGLTest, NamesTheCause) {
    const ProgramResult result = explain(GetParam(), {"--json"});
    ASSERT_EQ(result.exit_code, 0) << result.errors;
    const json report = json::parse(result.output);
    EXPECT_TRUE(report["dark"]);
    ASSERT_FALSE(report["causes"].empty()) << result.output;
    EXPECT_EQ(report["causes"][0], GetParam().cause) << result.output;
    EXPECT_THAT(report["summary"], HasSubstr(GetParam().words));
    if (const std::string name = GetParam().light; !name.empty()) {
        const json light = lightOf(report, name);
        ASSERT_FALSE(light.is_null()) << result.output;
        EXPECT_EQ(light["findings"][0]["kind"], GetParam().cause);
        EXPECT_TRUE(light["findings"][0]["cause"]);
    }
}

INSTANTIATE_TEST_SUITE_P(Each, DarkSceneGLTest, testing::ValuesIn(dark_scenes),
                         [](const auto& scene) { return std::string(scene.param.file); });

TEST(DarkScenes, AreAllInTheTable) {
    std::set<std::string> files, listed;
    for (const auto& entry : std::filesystem::directory_iterator(DARK_SCENES))
        if (entry.path().extension() == ".json")
            files.insert(entry.path().stem());
    for (const DarkScene& scene : dark_scenes)
        listed.insert(scene.file);
    EXPECT_EQ(files, listed);
}

TEST(ExplainCommandGLTest, TellsTheCauseInItsFirstLine) {
    const std::string output = explain(dark_scenes[0], {}).output;
    EXPECT_THAT(output, StartsWith("The picture is dark because the light \"sun\" is muted.\n\nLights\n"
                                   "  sun (Sun)\n    is muted\n"
                                   "    holds no OpenGL light: it takes no part in the picture\n"));
}

TEST(ExplainCommandGLTest, GivesTheDriversMessage) {
    const std::string output = explain(dark_scenes[12], {}).output;
    EXPECT_THAT(output, HasSubstr("\"faulty\" does not compile, line 3: intensity = vec3(unheard_of);"));
    EXPECT_THAT(output, HasSubstr("The driver says: "));
}

TEST(ExplainCommand, RefusesPixelsThatItCannotRead) {
    for (const char* const pixel : {"7", "7,", ",7", "7x7", "7,7,7", "a,b", "7.5,1"}) {
        const ProgramResult result = runProgram(KORL_PROGRAM, {"explain", "--pixel", pixel});
        EXPECT_EQ(result.exit_code, 2) << pixel;
        EXPECT_EQ(result.errors, "korl: --pixel takes X,Y in pixels from the upper left corner, such as "
                                 "320,240; found \"" +
                                     std::string(pixel) + "\"\nRun with --help for more information.\n");
    }
}

TEST(ExplainCommandGLTest, RefusesPixelsBesideThePicture) {
    for (const char* const pixel : {"32,0", "0,24", "-1,0", "0,-1"}) {
        const ProgramResult result =
            runProgram(KORL_PROGRAM, {"explain", "--size", "32x24", "--pixel=" + std::string(pixel)});
        EXPECT_EQ(result.exit_code, 1) << pixel;
        EXPECT_EQ(result.errors, "korl: the pixel " + std::string(pixel) +
                                     " was asked for, but the picture is 32x24 pixels, counted from 0 at the "
                                     "upper left\n");
    }
}

} // namespace
