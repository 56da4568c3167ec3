// korl save, save-rig, load-rig and script.

#include "tests/support/run_program.hpp"

#include <gmock/gmock.h>

namespace {

using korl::test::bytesOf;
using korl::test::ProgramResult;
using korl::test::runProgram;
using korl::test::TemporaryFolder;
using testing::HasSubstr;
using testing::StartsWith;

class SceneCommands : public testing::Test {
protected:
    const TemporaryFolder folder;

    /// Runs korl with words in which "DIR" stands for the test's folder; it must end well.
    ProgramResult korl(std::vector<std::string> arguments) const {
        for (std::string& argument : arguments)
            if (const auto at = argument.find("DIR"); at != std::string::npos)
                argument.replace(at, 3, folder.path().string());
        ProgramResult result = runProgram(KORL_PROGRAM, arguments);
        EXPECT_EQ(result.exit_code, 0) << result.errors;
        return result;
    }
};

const char* const saved = R"({
  "korl": 1,
  "plugins": ["tovek_light"],
  "background": [0, 0.2, 1, 1],
  "camera": {"position": [1, 2, 3], "target": [0, 0, 0], "up": [0, 0, 1], "fov": 30},
  "objects": [
    {"type": "Sun", "name": "sun", "parameters": {"latitude": 52}},
    {
      "type": "DirectionalLight",
      "name": "DirectionalLight",
      "parameters": {"Intensity": -0},
      "connections": {"Specular": {"object": "sun", "parameter": "Specular"}}
    }
  ],
  "meshes": [
    {"builtin": "landscape"},
    {"builtin": "column"},
    {"builtin": "sphere"}
  ]
}
)";

TEST_F(SceneCommands, SaveWritesWhatTheOptionsSay) {
    korl({"save", "--light", "Sun:sun", "--light", "DirectionalLight", "--set", "sun.latitude=52", "--set",
          "DirectionalLight.Intensity=-0", "--connect", "DirectionalLight.Specular=sun.Specular",
          "--background", "#0033ff", "--camera", "1 2 3", "--target", "0 0 0", "-o", "DIR/scene.json"});
    EXPECT_EQ(bytesOf(folder / "scene.json"), saved);
    const ProgramResult again = korl({"save", "DIR/scene.json", "-o", "DIR/again.json"});
    EXPECT_EQ(again.errors, "");
    EXPECT_EQ(bytesOf(folder / "again.json"), saved);
}

TEST_F(SceneCommands, SavedAgainASceneStaysAsItIs) {
    // Nothing is added that a picture of it would need.
    for (const char* const scene :
         {"{\n  \"korl\": 1\n}\n",
          "{\n  \"korl\": 1,\n  \"objects\": [\n    {\"type\": \"Absent\", \"name\": \"a\"}\n  ]\n}\n"}) {
        folder.write("scene.json", scene);
        korl({"save", "DIR/scene.json", "-o", "DIR/again.json"});
        EXPECT_EQ(bytesOf(folder / "again.json"), scene);
        const std::string script = korl({"script", "DIR/scene.json"}).output;
        EXPECT_EQ(script.find("add_landscape"), std::string::npos);
        EXPECT_EQ(script.find("create"), std::string::npos);
    }
}

TEST_F(SceneCommands, ScenesAreNotWrittenToStandardOutput) {
    folder.write("scene.json", "{\"korl\": 1}");
    const std::string scene = folder / "scene.json";
    for (const std::vector<std::string>& words :
         {std::vector<std::string>{"save"}, {"save-rig", scene}, {"load-rig", scene, scene}}) {
        std::vector<std::string> arguments = words;
        arguments.insert(arguments.end(), {"-o", "-"});
        const ProgramResult result = runProgram(KORL_PROGRAM, arguments);
        EXPECT_EQ(result.exit_code, 2);
        EXPECT_THAT(result.errors, HasSubstr("a scene is written to a file; name one"));
    }
}

TEST_F(SceneCommands, ScriptLoadsTheModulesThatWereNamed) {
    const ProgramResult result = korl({"--plugin", TOVEK_LIGHT_MODULE, "script", "--light", "Sun"});
    EXPECT_THAT(result.output, HasSubstr("with korl.Shell(plugins=[\"" TOVEK_LIGHT_MODULE "\"]) as shell:"));
}

TEST_F(SceneCommands, SaveNeedsToKnowWhere) {
    const ProgramResult result = runProgram(KORL_PROGRAM, {"save", "--light", "Sun"});
    EXPECT_EQ(result.exit_code, 2);
    EXPECT_THAT(result.errors, HasSubstr("--output is required"));
}

TEST_F(SceneCommands, WhatNoModuleHasIsKept) {
    // A folder without modules: the scene's own module is missing, too.
    const TemporaryFolder none;
    folder.write("scene.json", saved);
    const ProgramResult result = runProgram(
        KORL_PROGRAM, {"save", "--no-default-light", folder / "scene.json", "-o", folder / "kept.json"},
        {{"KORL_PLUGIN_PATH", none.path()}});
    EXPECT_EQ(result.exit_code, 0);
    EXPECT_THAT(result.errors, HasSubstr("the module \"tovek_light\", which it needs, is not loaded"));
    EXPECT_THAT(result.errors, HasSubstr("no loaded module has the type \"Sun\" of \"sun\""));
    EXPECT_EQ(bytesOf(folder / "kept.json"), saved);
}

TEST_F(SceneCommands, RigsGoFromSceneToScene) {
    folder.write("scene.json", saved);
    korl({"save-rig", "DIR/scene.json", "-o", "DIR/rig.json"});
    const std::string rig = bytesOf(folder / "rig.json");
    EXPECT_THAT(rig, StartsWith("{\n  \"korl\": 1,\n  \"plugins\": [\"tovek_light\"],\n  \"objects\": ["));
    EXPECT_THAT(rig, testing::Not(HasSubstr("meshes")));

    korl({"load-rig", "DIR/scene.json", "DIR/rig.json", "-o", "DIR/both.json"});
    const std::string both = bytesOf(folder / "both.json");
    EXPECT_THAT(both, HasSubstr(R"("name": "sun2", "parameters": {"latitude": 52}})"));
    EXPECT_THAT(both, HasSubstr(R"({"Specular": {"object": "sun2", "parameter": "Specular"}})"));

    korl({"load-rig", "DIR/scene.json", "DIR/rig.json", "--replace", "-o", "DIR/replaced.json"});
    EXPECT_EQ(bytesOf(folder / "replaced.json"), saved);
}

TEST_F(SceneCommands, ScriptPrintsPython) {
    folder.write("scene.json", saved);
    EXPECT_EQ(korl({"script", "DIR/scene.json"}).output, R"(import korl

with korl.Shell() as shell:
    sun = shell.create("Sun", "sun", latitude=52)
    DirectionalLight = shell.create("DirectionalLight", "DirectionalLight", Intensity=-0.0)
    DirectionalLight["Specular"].follow(sun["Specular"])
    shell.add_landscape()
    shell.background = (0, 0.2, 1, 1)
    shell.camera.set(position=(1, 2, 3), target=(0, 0, 0), up=(0, 0, 1), fov=30)
    image = shell.render(640, 480)
image.save("scene.png")
)");
}

TEST_F(SceneCommands, ABadFileIsTold) {
    folder.write("scene.json",
                 R"({"korl": 1, "objects": [{"type": "Sun", "parameters": {"latitude": "inf"}}]})");
    const std::string file = folder / "scene.json";
    for (const std::string command : {"save", "save-rig"}) {
        const ProgramResult result = runProgram(KORL_PROGRAM, {command, file, "-o", folder / "out.json"});
        EXPECT_EQ(result.exit_code, 1);
        EXPECT_EQ(result.errors,
                  "korl: " + file +
                      ": /objects/0/parameters/latitude: \"Sun.latitude\" takes finite numbers, found "
                      "\"inf\"; it keeps \"45\"\n");
    }
}

} // namespace
