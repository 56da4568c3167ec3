// What the program says to input that it cannot use: exactly, and with which exit code.

#include "tests/support/module_types.hpp"
#include "tests/support/run_program.hpp"

#include <filesystem>
#include <gmock/gmock.h>
#include <unistd.h>

namespace {

using korl::test::ProgramResult;
using korl::test::runProgram;
using korl::test::TemporaryFolder;
using testing::HasSubstr;
using testing::StartsWith;

const std::string usage_hint = "\nRun with --help for more information.";

class BadInput : public testing::Test {
protected:
    /// Runs korl with words in which "DIR" stands for the test's folder and "BROKEN" for that of broken
    /// plug-ins.
    ProgramResult korl(std::vector<std::string> arguments) {
        for (std::string& argument : arguments)
            replacePlaceholders(argument);
        return runProgram(KORL_PROGRAM, arguments);
    }

    void expectError(const std::vector<std::string>& arguments, int exit_code, std::string message) {
        replacePlaceholders(message);
        const ProgramResult result = korl(arguments);
        EXPECT_EQ(result.errors, "korl: " + message + "\n");
        EXPECT_EQ(result.exit_code, exit_code) << message;
        EXPECT_EQ(result.output, "") << message;
    }

    void replacePlaceholders(std::string& text) const {
        replace(text, "DIR", folder.path());
        replace(text, "BROKEN", KORL_BROKEN_PLUGINS);
    }
    static void replace(std::string& text, const std::string& placeholder, const std::string& value) {
        for (std::size_t at = text.find(placeholder); at != std::string::npos;
             at = text.find(placeholder, at + value.size()))
            text.replace(at, placeholder.size(), value);
    }

    const TemporaryFolder folder;
};

TEST_F(BadInput, PlugIns) {
    folder.write("text.so", "hello\n");
    folder.write("empty.so", "");
    expectError(
        {"types", "--plugin", "DIR/nowhere.so"}, 1,
        "cannot load the plug-in \"DIR/nowhere.so\": expected a plug-in library, found no such file.\n"
        "Check the path.");
    expectError(
        {"types", "--plugin", "DIR/text.so"}, 1,
        "cannot load the plug-in \"DIR/text.so\": expected a plug-in library, found a file of another kind, "
        "which doesn't begin as ELF files do.\nName the shared library itself; its name mostly ends in .so.");
    expectError({"types", "--plugin", "DIR/empty.so"}, 1,
                "cannot load the plug-in \"DIR/empty.so\": expected a plug-in library, found an empty file.\n"
                "Build the plug-in again, or copy it again.");
    expectError({"types", "--plugin", "BROKEN/other_interface_version.so"}, 1,
                "cannot load the plug-in \"BROKEN/other_interface_version.so\": expected interface version "
                "2026_JAN_22, found version 2025_MAR_03 (KORL_API_2025_MAR_03__elder).\nBuild the plug-in "
                "against this program's headers.");
}

TEST_F(BadInput, ExceptionsOfModules) {
    // They are told although the module is unloaded by then.
    const std::vector<std::string> plugin{"--plugin", "BROKEN/throwing_objects.so"};
    expectError(
        {"describe", "Reluctant", plugin[0], plugin[1]}, 1,
        "creation of \"Reluctant\" in the module \"throwing_objects\" threw the exception \"the object does "
        "not want to be\"; report it to the author of the module");
    expectError(
        {"render", "--light", "Odd", plugin[0], plugin[1]}, 1,
        "creation of \"Odd\" in the module \"throwing_objects\" threw something that is not an exception; "
        "report it to the author of the module");
}

TEST_F(BadInput, TypesGoesOnBehindATypeThatFails) {
    const ProgramResult result = korl({"types", "--plugin", "BROKEN/throwing_objects.so"});
    EXPECT_EQ(result.errors,
              "korl: type \"Reluctant\": creation of \"Reluctant\" in the module \"throwing_objects\" threw "
              "the exception \"the object does not want to be\"; report it to the author of the "
              "module\nkorl: type \"Odd\": creation of \"Odd\" in the module \"throwing_objects\" threw "
              "something that is not an exception; report it to the author of the module\nkorl: 2 of " +
                  std::to_string(korl::test::creatorCount() + 2) +
                  " types have no usable icon; report it to the authors of their modules\n");
    EXPECT_EQ(result.exit_code, 1);
    EXPECT_THAT(result.output, HasSubstr("\nReluctant         -         0       -            unusable"));
    EXPECT_THAT(result.output, HasSubstr("\nAmbientLight "));
}

TEST_F(BadInput, IconsThatCannotBeUsed) {
    const std::string plugin = "BROKEN/unusable_icons.so";
    const std::string misshapen = "korl: type \"Misshapen\": the XPM image has the header \"one by one\", "
                                  "expected \"WIDTH HEIGHT COLORS CHARACTERS\"\n";
    const std::string all = std::to_string(korl::test::creatorCount() + 5);
    const ProgramResult listed = korl({"types", "--plugin", plugin});
    EXPECT_EQ(listed.errors, misshapen + "korl: 1 of " + all +
                                 " types have no usable icon; report it to the authors of their modules\n");
    EXPECT_EQ(listed.exit_code, 1);

    const ProgramResult written = korl({"types", "--plugin", plugin, "--icons", "DIR"});
    std::string path = std::filesystem::path(PROJECT_SOURCE_DIR) / "tests/broken-plugins/unusable_icons.cpp";
    EXPECT_THAT(written.errors,
                StartsWith(misshapen + "korl: type \"NoPicture\": its icon " + path + " cannot be used: "));
    EXPECT_THAT(written.errors,
                HasSubstr("\nkorl: type \"Missing\": its icon :/nowhere.png is not in the module's "
                          "resources\nkorl: type \"no/file\": a name with \"/\" cannot be that of its icon's "
                          "file\nkorl: 4 of " +
                          all + " types have no usable icon; report it to the authors of their modules\n"));
    EXPECT_EQ(written.exit_code, 1);
    for (const char* const icon : {"Plain.png", "Torch.png", "Headlight.png"})
        EXPECT_TRUE(std::filesystem::exists(folder / icon)) << icon;
}

TEST_F(BadInput, Models) {
    folder.write("notes.txt", "hello\n");
    folder.write("empty.obj", "");
    folder.write("truncated.ply", "ply\nformat ascii 1.0\nelement vertex 3\n");
    expectError({"render", "--light", "AmbientLight", "--model", "DIR/nowhere.obj"}, 1,
                "cannot read the model DIR/nowhere.obj: there is no such file; check the path");
    expectError({"render", "--light", "AmbientLight", "--model", "DIR/notes.txt"}, 1,
                "cannot read the model DIR/notes.txt: a .txt file is not a model that can be read; those "
                "that can are .obj, .ply, .stl, .gltf, .glb, .3ds");
    expectError(
        {"render", "--light", "AmbientLight", "--model", "DIR/truncated.ply"}, 1,
        "cannot read the model DIR/truncated.ply: it is damaged or truncated: its header is incomplete");
    const ProgramResult empty = korl({"render", "--model", "DIR/empty.obj"});
    EXPECT_EQ(empty.exit_code, 1);
    EXPECT_THAT(empty.errors,
                StartsWith("korl: cannot read the model " + (folder / "empty.obj").string() + ": "));
}

TEST_F(BadInput, TypesObjectsAndParameters) {
    const std::string types = korl::test::listOfModuleTypes();
    expectError({"render", "--light", "AmbientLigt"}, 1,
                "unknown type \"AmbientLigt\": did you mean \"AmbientLight\"? There are: " + types + ".");
    expectError({"describe", "Lantern"}, 1, "unknown type \"Lantern\": there are: " + types + ".");
    expectError({"render", "--light", "AmbientLight:a", "--light", "AmbientLight:a"}, 1,
                "cannot create \"a\" as AmbientLight: the scene already has an object of this name");
    expectError({"render", "--light", "AmbientLight:lamp", "--set", "lmap.Color=1 1 1 1"}, 1,
                "unknown object \"lmap\": did you mean \"lamp\"? There are: lamp.");
    expectError({"render", "--light", "AmbientLight:a", "--set", "a.colour=1 1 1 1"}, 1,
                "unknown parameter \"a.colour\": did you mean \"Color\"? There are: Color.");
    for (const char* const value :
         {"red", "0.5", "1 1 1", "1 1 1 1 1"}) // the second is a value of another type
        expectError(
            {"render", "--light", "AmbientLight:a", "--set", std::string("a.Color=") + value}, 1,
            std::string("\"a.Color\" takes a colour, four numbers \"red green blue alpha\", found \"") +
                value + "\"; it keeps \"1 1 1 1\"");
    expectError({"render", "--light", "AmbientLight:a", "--set", "a.Color=0 0 inf 1"}, 1,
                "\"a.Color\" takes finite numbers, found \"0 0 inf 1\"; it keeps \"1 1 1 1\"");
}

TEST_F(BadInput, WrongUsage) {
    const std::string light = "--light takes TYPE or TYPE:NAME, found \"";
    const std::string set = "--set takes NAME.PARAM=VALUE such as \"sun.latitude=52\", found \"";
    const std::string size =
        "--size takes WIDTHxHEIGHT in pixels, each at least 1, such as 640x480; found \"";
    expectError({}, 2,
                "no command was given; there are types, describe, accepts, render, shader, save, save-rig, "
                "load-rig, script, explain, gallery, run and animate" +
                    usage_hint);
    const std::string commands = "here are: types, describe, accepts, render, shader, save, save-rig, "
                                 "load-rig, script, explain, gallery, run, animate.";
    expectError({"frobnicate"}, 2, "unknown command \"frobnicate\": t" + commands + usage_hint);
    expectError({"descibe", "Sun"}, 2,
                "unknown command \"descibe\": did you mean \"describe\"? T" + commands + usage_hint);
    expectError({"render", "--model", ""}, 2, "--model: it is empty" + usage_hint);
    expectError({"render", "--frob"}, 2, "The following argument was not expected: --frob" + usage_hint);
    expectError({"describe"}, 2, "TYPE is required" + usage_hint);
    expectError({"render", "--light", ":a"}, 2, light + ":a\"" + usage_hint);
    expectError({"render", "--light", "AmbientLight:"}, 2, light + "AmbientLight:\"" + usage_hint);
    for (const std::string wrong : {"x", "a.b", "=1", ".b=1", "a.=1", "a=1"})
        expectError({"render", "--set", wrong}, 2, set + wrong + "\"" + usage_hint);
    for (const std::string wrong : {"a.b", "a.b=", "a.b=c", "a.b=c.", "=c.d", "a=c.d", "a.b=.d"})
        expectError({"render", "--connect", wrong}, 2,
                    "--connect takes NAME.PARAM=NAME.PARAM such as \"a.direction=b.direction\", found \"" +
                        wrong + "\"" + usage_hint);
    for (const std::string wrong :
         {"0x0", "640", "640x", "x480", "-640x480", "640x480x3", "640X480", "1e3x10", "99999999999x1"})
        expectError({"render", "--size=" + wrong}, 2, size + wrong + "\"" + usage_hint);
    expectError({"render", "--path", "sideways"}, 2,
                "--path: sideways not in {shader,fixed,both}" + usage_hint);
    expectError({"render", "--model-up", "w"}, 2,
                "--model-up: \"w\" is not an axis of a model; there are x, y and z" + usage_hint);
    expectError({"render", "--camera", "0 0"}, 2,
                "--camera takes three numbers \"x y z\", found \"0 0\"" + usage_hint);
    expectError({"render", "--background", "red"}, 2,
                "--background: \"red\" is not a colour; write \"#rrggbb\", \"#rrggbbaa\", or three or four "
                "numbers from 0 to 1 such as \"0.1 0.1 0.12\"" +
                    usage_hint);
}

TEST_F(BadInput, Cameras) {
    expectError({"render", "--light", "AmbientLight", "--fov", "200"}, 1,
                "the camera's field of view is 200 degrees, expected more than 0 and less than 180");
    expectError({"render", "--light", "AmbientLight", "--camera", "0 0 0", "--target", "0 0 0"}, 1,
                "the camera's position and target are both \"0 0 0\", so that it has no line of sight; move "
                "one of them");
}

TEST_F(BadInput, Scenes) {
    folder.write("scene.json",
                 R"({"korl": 1, "objects": [{"type": "AmbientLight", "parameters": {"Color": "red"}}]})");
    expectError({"render", "DIR/nowhere.json"}, 1,
                "cannot read the scene DIR/nowhere.json: there is no such file; check the path");
    expectError({"render", "DIR/scene.json"}, 1,
                "DIR/scene.json: /objects/0/parameters/Color: \"AmbientLight.Color\" takes a colour, four "
                "numbers \"red green blue alpha\", found \"red\"; it keeps \"1 1 1 1\"");
}

TEST_F(BadInput, PicturesOfOtherFormats) {
    for (const std::string suffix : {".jpg", ".JPEG", ".exr", ".tiff", ".mp4", ".gif", ".png2"}) {
        expectError({"render", "--light", "AmbientLight", "-o", "DIR/x" + suffix}, 1,
                    "cannot write DIR/x" + suffix +
                        ": a picture is written as PNG alone, to a name that ends in .png or has no suffix, "
                        "found \"" +
                        suffix + "\"");
        EXPECT_FALSE(std::filesystem::exists(folder / ("x" + suffix)));
    }
    expectError({"animate", "--light", "AmbientLight", "-o", "DIR/x_#.jpg"}, 1,
                "a sequence is written to pictures such as \"day_####.png\" or to a film such as \"day.mp4\" "
                "or \"day.gif\", found \"DIR/x_#.jpg\"");
}

class BadInputGLTest : public BadInput {};

TEST_F(BadInputGLTest, ViewsThatTheSceneDoesNotHave) {
    expectError({"render", "--light", "AmbientLight", "--view", "left", "-o", "DIR/x.png"}, 1,
                "unknown view \"left\": the scene has no views");
}

TEST_F(BadInputGLTest, SizesBeyondTheDriversLimit) {
    const ProgramResult result =
        korl({"render", "--light", "AmbientLight", "--size", "1000000x10", "-o", "DIR/x.png"});
    EXPECT_EQ(result.exit_code, 1);
    EXPECT_THAT(
        result.errors,
        StartsWith("korl: a picture of 1000000 x 10 pixels was asked for, but this driver draws at most "));
    EXPECT_FALSE(std::filesystem::exists(folder / "x.png"));
}

TEST_F(BadInputGLTest, OutputThatCannotBeWritten) {
    expectError({"render", "--light", "AmbientLight", "--size", "8x8", "-o", "DIR/nowhere/x.png"}, 1,
                "cannot write DIR/nowhere/x.png: the folder DIR/nowhere does not exist; make it first");
    expectError({"render", "--light", "AmbientLight", "--size", "8x8", "-o", "DIR"}, 1,
                "cannot write DIR: it is a directory; give the name of a file");
}

TEST_F(BadInputGLTest, NoDriver) {
    const ProgramResult result =
        runProgram(KORL_PROGRAM, {"render", "--light", "AmbientLight", "-o", folder / "x.png"},
                   {{"__EGL_VENDOR_LIBRARY_FILENAMES", folder / "nowhere.json"}});
    EXPECT_EQ(result.exit_code, 1);
    for (const char* const part : {"surfaceless", "libegl1", "libegl-mesa0", "libgl1-mesa-dri"})
        EXPECT_THAT(result.errors, HasSubstr(part));
}

} // namespace
