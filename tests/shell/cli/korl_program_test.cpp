#include "tests/support/module_types.hpp"
#include "tests/support/read_picture.hpp"
#include "tests/support/run_program.hpp"

#include <array>
#include <filesystem>
#include <gmock/gmock.h>
#include <regex>
#include <sstream>

namespace {

using korl::Image;
using korl::test::pictureIn;
using korl::test::ProgramResult;
using korl::test::readPicture;
using korl::test::runProgram;
using korl::test::TemporaryFolder;
using testing::ElementsAre;
using testing::HasSubstr;
using Pixel = std::array<int, 4>;

const std::string corner = std::string(TEST_DATA) + "/corner.obj";

Pixel pixel(const Image& image, int x, int y) {
    const auto at = 4 * (static_cast<std::size_t>(y) * static_cast<std::size_t>(image.width) +
                         static_cast<std::size_t>(x));
    return {image.pixels[at], image.pixels[at + 1], image.pixels[at + 2], image.pixels[at + 3]};
}

/// How many pixels of the left or right half have this colour.
int count(const Image& image, const Pixel& color, bool right = false) {
    int found = 0;
    for (int y = 0; y < image.height; ++y)
        for (int x = right ? image.width / 2 : 0; x < (right ? image.width : image.width / 2); ++x)
            found += pixel(image, x, y) == color;
    return found;
}

TEST(KorlProgram, TypesListsTheCatalogue) {
    const ProgramResult result = runProgram(KORL_PROGRAM, {"types"});
    EXPECT_EQ(result.exit_code, 0);
    EXPECT_EQ(result.errors, "");
    std::vector<std::vector<std::string>> rows; // the cells stand two blanks or more apart
    std::istringstream lines(result.output);
    for (std::string line; std::getline(lines, line);) {
        rows.emplace_back();
        const std::regex gap("  +(?![0-9] [0-9][0-9][0-9][0-9])"); // but for the day in "Feb  1 2026"
        for (std::sregex_token_iterator cell(line.begin(), line.end(), gap, -1), end; cell != end; ++cell)
            rows.back().push_back(*cell);
    }
    const korl::test::LoadedModule module;
    const auto creators = Qelt::VCreatorBase::catalogue();
    ASSERT_EQ(rows.size(), creators.size() + 1);
    EXPECT_THAT(rows[0], ElementsAre("NAME", "CATEGORY", "NUMBER", "DATE", "ICON", "DESCRIPTION"));
    for (std::size_t i = 0; i < creators.size(); ++i) {
        using Kind = Qelt::VCreatorPropertyBase::Kind;
        const auto cell = [&](Kind kind) {
            const std::string text = creators[i]->properties().text(kind);
            return text.empty() ? "-" : text;
        };
        EXPECT_THAT(rows[i + 1], ElementsAre(creators[i]->Name(), cell(Kind::category),
                                             std::to_string(creators[i]->creatorNumber()), cell(Kind::date),
                                             testing::_, cell(Kind::description)));
    }
    EXPECT_THAT(result.output, HasSubstr("\nDirectionalLight  Scenery   0       "));
    EXPECT_THAT(result.output, HasSubstr("  A directional light source.\n"));
}

TEST(KorlProgram, DescribeShowsRangesAndLevels) {
    const ProgramResult result = runProgram(KORL_PROGRAM, {"describe", "Sun"});
    EXPECT_EQ(
        result.output.substr(result.output.find("\n\n")),
        "\n\n"
        "PARAMETER  TYPE    DEFAULT  RANGE      UNIT     LEVEL  WHAT IT IS\n"
        "Intensity  double  0.9      -          -        0      strength of the diffuse light\n"
        "Specular   double  0.1      -          -        0      strength of the highlights\n"
        "latitude   double  45       -90 to 90  degrees  0      where on Earth the scene is, north positive\n"
        "timeofday  double  12       up to 24   hours    0      solar time on the day of an equinox: sunrise "
        "at 6\n");
}

TEST(KorlProgram, DescribeListsTheParameters) {
    const ProgramResult result = runProgram(KORL_PROGRAM, {"describe", "AmbientLight"});
    EXPECT_EQ(result.exit_code, 0);
    EXPECT_EQ(result.output, "AmbientLight (Scenery/AmbientLight): A light source that lights everything.\n\n"
                             "PARAMETER  TYPE   DEFAULT  RANGE  UNIT  LEVEL  WHAT IT IS\n"
                             "Color      color  1 1 1 1  -      -     1      colour of the light, the same "
                             "everywhere\n");
}

TEST(KorlProgram, AcceptsListsInputsByKindOfValue) {
    EXPECT_EQ(runProgram(KORL_PROGRAM, {"accepts", "DistanceLight"}).output,
              "VALUE   INPUTS                  OFFERED\n"
              "double  Intensity, Specular     -\n"
              "point   lightposition, shineat  lightposition, shineat\n"
              "color   color                   -\n");
    EXPECT_EQ(runProgram(KORL_PROGRAM, {"accepts", "DirectionalLight"}).output,
              "VALUE   INPUTS               OFFERED\n"
              "double  Intensity, Specular  -\n"
              "vector  direction            direction\n"
              "color   color                -\n");
}

TEST(KorlProgram, AcceptsShowsADeclaredTypeThatNoInputHas) {
    EXPECT_EQ(runProgram(KORL_PROGRAM, {"accepts", "Sun"}).output,
              "VALUE   INPUTS                                    OFFERED\n"
              "double  Intensity, Specular, latitude, timeofday  -\n"
              "vector  -                                         -\n");
}

TEST(KorlProgram, TypesWritesIcons) {
    const TemporaryFolder folder;
    const ProgramResult result = runProgram(KORL_PROGRAM, {"types", "--icons", folder.path()});
    EXPECT_EQ(result.exit_code, 0) << result.errors;
    EXPECT_EQ(readPicture(folder / "Torch.png").height, 138);
    EXPECT_EQ(readPicture(folder / "Headlight.png").width, 32);
    EXPECT_FALSE(std::filesystem::exists(folder / "Sun.png"));
}

TEST(KorlProgram, ShaderHoldsTheSnippetByteForByte) {
    const std::string snippet =
        "\n\nuniform vec4 AmbientIntensity$$         = vec4(1,1,1,1);\n\n//\n// AmbientLight\n//\n"
        "void\tgetLight_$$(in vec3 vertex,\n\t\t    out vec3 light_incidence,\n"
        "\t\t    out vec3 intensity,\n\t\t    out vec3 specular_intensity\n\t\t    )\n\n{\n"
        "\tlight_incidence = vec3(0,0,0);\n\tintensity = AmbientIntensity$$.rgb;\n"
        "\tspecular_intensity = vec3(0,0,0);\n}\n\n";
    ASSERT_EQ(snippet.size(), 325u);
    std::string expected = snippet;
    for (std::size_t at; (at = expected.find("$$")) != std::string::npos;)
        expected.replace(at, 2, "L1");
    const ProgramResult result = runProgram(KORL_PROGRAM, {"shader", "--light", "AmbientLight"});
    EXPECT_EQ(result.exit_code, 0);
    EXPECT_THAT(result.output, HasSubstr(expected));
}

TEST(KorlProgram, TracesAtTheVerbosityAskedFor) {
    // On standard error: standard output is for the shader.
    const auto errors = [](const std::string& level) {
        return runProgram(KORL_PROGRAM, {"shader", "--verbose", level, "--light", "AmbientLight:a"}).errors;
    };
    EXPECT_THAT(errors("100"),
                testing::AllOf(HasSubstr("VCreator::VCreator(Scenery/AmbientLight,0)\n"),
                               HasSubstr("VCreator::create(a)\nVCreator::create(a) got derived object\n")));
    EXPECT_THAT(errors("99"), testing::Not(HasSubstr("VCreator")));
}

TEST(KorlProgram, NamedPluginGoesBeforeTheSearchPath) {
    const TemporaryFolder folder;
    const std::filesystem::path copy = folder / "copy.so";
    std::filesystem::copy_file(korl::test::moduleFile(),
                               copy); // far from the host's libraries, which are loaded already
    const ProgramResult result = runProgram(KORL_PROGRAM, {"types", "--plugin", copy});
    EXPECT_EQ(result.exit_code, 0) << result.errors;
    EXPECT_THAT(result.output, HasSubstr("AmbientLight"));
}

TEST(KorlProgram, EmptySearchPathLeavesTheCatalogueEmpty) {
    const ProgramResult result = runProgram(KORL_PROGRAM, {"types"}, {{"KORL_PLUGIN_PATH", ""}});
    EXPECT_EQ(result.exit_code, 0);
    EXPECT_EQ(
        result.errors,
        "korl: no module is loaded that has any types; name one with --plugin or set KORL_PLUGIN_PATH\n");
}

class KorlProgramGLTest : public testing::Test {
protected:
    const TemporaryFolder folder;
    const std::string picture = folder / "picture.png";

    ProgramResult render(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "render");
        arguments.insert(arguments.end(), {"-o", picture});
        ProgramResult result = runProgram(KORL_PROGRAM, arguments);
        EXPECT_EQ(result.exit_code, 0) << result.errors;
        return result;
    }
};

TEST_F(KorlProgramGLTest, AmbientColorShowsOnTheModelOnBothPaths) {
    const ProgramResult result =
        render({"--light", "AmbientLight:a", "--set", "a.Color=0.2 0.4 0.8 0.3", "--model", corner, "--path",
                "both", "--size", "64x48", "--uniforms"});
    EXPECT_EQ(result.output, "AmbientIntensity$$ = 0.2 0.4 0.8 0.3\n");
    EXPECT_EQ(result.errors, "korl: wrote " + picture + ", 128x48 pixels\n");
    const Image image = readPicture(picture);
    ASSERT_EQ(image.width, 128);
    ASSERT_EQ(image.height, 48);
    // The sphere of the built-in scene is white, so that it shows the light itself.
    render({"--light", "AmbientLight:a", "--set", "a.Color=0.2 0.4 0.8 0.3", "--path", "both", "--size",
            "64x48"});
    const Image built_in = readPicture(picture);
    EXPECT_GT(count(built_in, {51, 102, 204, 255}), 20);
    EXPECT_GT(count(built_in, {51, 102, 204, 255}, true), 20);
}

TEST_F(KorlProgramGLTest, ShowsTheViewThatIsAskedFor) {
    const auto file = folder.write("scene.json", R"({"korl": 1,
        "views": ["dim"], "meshes": [{"builtin": "sphere"}],
        "objects": [{"type": "AmbientLight", "name": "a", "views": {"dim": {"Color": "0.2 0.4 0.8 0.3"}}}]})");
    const auto whiteOf = [&](const std::vector<std::string>& options, const std::string& uniforms) {
        std::vector<std::string> arguments{file, "--size", "64x48", "--uniforms"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        EXPECT_EQ(render(arguments).output, "AmbientIntensity$$ = " + uniforms + "\n");
        return count(readPicture(picture), {255, 255, 255, 255});
    };
    EXPECT_GT(whiteOf({}, "1 1 1 1"), 20);
    EXPECT_EQ(whiteOf({"--view", "dim"}, "0.2 0.4 0.8 0.3"), 0);
    EXPECT_GT(count(readPicture(picture), {51, 102, 204, 255}), 20);
}

TEST_F(KorlProgramGLTest, WritesPngToNamesWithoutASuffix) {
    for (const char* const name : {"picture", "picture.PNG"}) {
        const ProgramResult result = runProgram(
            KORL_PROGRAM, {"render", "--size", "8x8", "--light", "AmbientLight", "-o", folder / name});
        EXPECT_EQ(result.exit_code, 0) << result.errors;
        EXPECT_EQ(readPicture(folder / name).width, 8);
    }
}

TEST_F(KorlProgramGLTest, AddsALightWhereThereIsNoneAndSaysSo) {
    const ProgramResult lit = render({"--size", "64x48"});
    EXPECT_EQ(lit.errors,
              "korl: the scene has no light, so the Headlight \"Headlight\" was added; choose others with "
              "--light, or leave it dark with --no-default-light\n"
              "korl: wrote " +
                  picture + ", 64x48 pixels\n");
    EXPECT_EQ(count(readPicture(picture), {0, 0, 0, 255}, true), 0);
    // The added light can be set by its name like any other.
    render({"--size", "64x48", "--set", "Headlight.intensity=0", "--set", "Headlight.specular=0"});
    EXPECT_GT(count(readPicture(picture), {0, 0, 0, 255}, true), 20);
}

TEST_F(KorlProgramGLTest, NoDefaultLightLeavesTheSceneDark) {
    EXPECT_EQ(render({"--size", "64x48", "--no-default-light"}).errors,
              "korl: wrote " + picture + ", 64x48 pixels\n");
    EXPECT_GT(count(readPicture(picture), {0, 0, 0, 255}), 100);
}

TEST_F(KorlProgramGLTest, WithoutALightModuleTheSceneIsDarkAndItSaysWhy) {
    const ProgramResult result =
        runProgram(KORL_PROGRAM, {"render", "--size", "8x8", "-o", picture}, {{"KORL_PLUGIN_PATH", ""}});
    EXPECT_EQ(result.exit_code, 0);
    EXPECT_THAT(result.errors, HasSubstr("the scene has no light and stays dark: no module is loaded"));
}

TEST_F(KorlProgramGLTest, PictureOnStandardOutputIsAllThatGoesThere) {
    const ProgramResult result =
        runProgram(KORL_PROGRAM, {"render", "--verbose", "100", "--uniforms", "--light", "AmbientLight:a",
                                  "--size", "16x8", "-o", "-"});
    EXPECT_EQ(result.exit_code, 0);
    const Image image = pictureIn(result.output);
    EXPECT_EQ(image.width, 16);
    EXPECT_EQ(image.height, 8);
    EXPECT_THAT(result.errors, HasSubstr("VCreator::VCreator(Scenery/AmbientLight,0)\n"));
    EXPECT_THAT(result.errors, HasSubstr("AmbientIntensity$$ = 1 1 1 1\n"));
    EXPECT_THAT(result.errors, testing::Not(HasSubstr("wrote")));
}

TEST_F(KorlProgramGLTest, VerboseSaysWhichRendererItIs) {
    EXPECT_THAT(render({"--size", "8x8", "--verbose", "1", "--light", "AmbientLight"}).errors,
                HasSubstr("renderer: "));
}

TEST_F(KorlProgramGLTest, WritesKorlPngByDefault) {
    // Run in the test's folder through a shell, since the file goes where the user stands.
    const ProgramResult result =
        runProgram("/bin/sh", {"-c", "cd '" + folder.path().string() +
                                         "' && exec '" KORL_PROGRAM "' render --size 8x8"});
    EXPECT_EQ(result.exit_code, 0) << result.errors;
    EXPECT_EQ(readPicture(folder / "korl.png").width, 8);
}

TEST_F(KorlProgramGLTest, BackgroundAndCameraCanBeChosen) {
    render({"--light", "AmbientLight", "--background", "#ff8000", "--camera", "0 0 9", "--target", "0 0 20",
            "--up", "0 1 0", "--size", "8x8"});
    EXPECT_EQ(pixel(readPicture(picture), 4, 4), (Pixel{255, 128, 0, 255})); // looks away from everything
}

TEST_F(KorlProgramGLTest, RendersASceneFile) {
    std::filesystem::copy_file(corner, folder / "corner.obj");
    const std::string scene = folder.write("scene.json", R"({"korl": 1,
        "objects": [{"type": "AmbientLight", "name": "a", "parameters": {"Color": "0 1 0 1"}}],
        "background": "0 0 1"})");
    render({scene, "--size", "32x32"});
    const Image image = readPicture(picture);
    EXPECT_GT(count(image, {0, 0, 255, 255}), 100);
    EXPECT_GT(count(image, {0, 255, 0, 255}, true), 5); // the white sphere
}

TEST_F(KorlProgramGLTest, ConnectedInputsFollow) {
    const std::vector<std::string> lights{"shader",  "--uniforms",        "--light", "DirectionalLight:a",
                                          "--light", "DirectionalLight:b"};
    auto arguments = lights;
    arguments.insert(arguments.end(), {"--connect", "a.direction=b.direction", "--set", "b.direction=1 0 0"});
    const std::string output = runProgram(KORL_PROGRAM, arguments).output;
    EXPECT_EQ(output.find("DirectionalLightDirection$$ = 1 0 0"), 0u);
    arguments = lights;
    arguments.insert(arguments.end(), {"--connect", "a.direction=b.color"});
    EXPECT_EQ(runProgram(KORL_PROGRAM, arguments).errors,
              "korl: \"a.direction\" takes a vector, three numbers \"x y z\", but \"b.color\" is a colour, "
              "four numbers \"red green blue alpha\"; they stay unconnected\n");
    arguments = lights;
    arguments.insert(arguments.end(), {"--connect", "a.color=b.color", "--connect", "b.color=a.color"});
    EXPECT_EQ(runProgram(KORL_PROGRAM, arguments).exit_code, 1);
}

TEST_F(KorlProgramGLTest, SaysThatATorchShowsNothingOnTheFixedPathAlone) {
    const std::string told =
        "korl: light \"t\" adds nothing on the fixed-function path: its type sets up no OpenGL light; "
        "the shader path shows it\n";
    EXPECT_THAT(render({"--light", "Torch:t", "--size", "8x8", "--path", "fixed"}).errors, HasSubstr(told));
    EXPECT_THAT(render({"--light", "Torch:t", "--size", "8x8", "--path", "both"}).errors,
                testing::Not(HasSubstr(told)));
}

TEST_F(KorlProgramGLTest, SunStandsWhereItShould) {
    const std::string output = render({"--light", "Sun:s", "--set", "s.latitude=52", "--set", "s.timeofday=9",
                                       "--size", "8x8", "--uniforms"})
                                   .output;
    const std::string name = "SunDirection$$ = ";
    std::istringstream numbers(output.substr(output.find(name) + name.size()));
    for (const double expected : {-0.70710678, -0.55720775, -0.43533840}) {
        double found = 0;
        numbers >> found;
        EXPECT_NEAR(found, expected, 1e-8);
    }
}

TEST_F(KorlProgramGLTest, UniformsPrintWithoutAPictureToo) {
    const ProgramResult result =
        runProgram(KORL_PROGRAM, {"shader", "--uniforms", "--light", "AmbientLight", "--light",
                                  "AmbientLight:b", "--set", "b.Color=1e-30 0.1 0.7 1"});
    EXPECT_EQ(result.output, "AmbientIntensity$$ = 1 1 1 1\nAmbientIntensity$$ = 1e-30 0.1 0.7 1\n");
}

} // namespace
