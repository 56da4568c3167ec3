#include "tests/support/flat_scene.hpp"
#include "tests/support/temporary_folder.hpp"

#include "shell/base/error.hpp"
#include "shell/mesh/builtin_scene.hpp"
#include "shell/mesh/model_import.hpp"
#include "shell/scene_file/scene_file.hpp"

#include <bit>
#include <gmock/gmock.h>
#include <limits>

namespace {

using korl::readSceneText;
using korl::Scene;
using korl::sceneText;
using testing::ElementsAre;
using testing::HasSubstr;

struct PlainType : korl::test::PlainObject {
    PlainType(const std::string& name, const Qelt::VCreationPreferences& preferences)
        : PlainObject(name, preferences) {}
};

class SceneSaveTest : public testing::Test {
protected:
    const korl::test::TestLightCreators lights;
    const Qelt::VCreator<PlainType, void> plain{std::string("Plain"), 0};
    const korl::test::TemporaryFolder folder;
    std::vector<std::string> told;
    Scene scene;

    void read(const std::string& text, Scene& into) {
        readSceneText(text, folder / "scene.json", into,
                      {[this](const auto& report) { told.push_back(report); }, {}});
    }
    std::string written(const Scene& of) { return sceneText(of, folder.path()); }
    /// What is written of the scene that a text describes.
    std::string again(const std::string& text) {
        Scene other;
        read(text, other);
        return written(other);
    }
};

TEST_F(SceneSaveTest, WritesForPeople) {
    scene.background = {0.5f, 0.25f, 0, 1};
    scene.addView("left");
    scene.create("Plain", "p");
    scene.create("DownwardLight");
    scene.setParameterText("p", "strength", "2");
    scene.setParameterText("p", "tint", "1 0 0 1", "left");
    scene.setMuted("DownwardLight", true);
    scene.create("Plain", "q");
    scene.connect("q", "way", "p", "way");
    scene.setParameterText("q", "place", "0.125 0.25 0.5");
    scene.solo("DownwardLight");
    EXPECT_EQ(written(scene), R"({
  "korl": 1,
  "background": [0.5, 0.25, 0, 1],
  "views": ["left"],
  "solo": "DownwardLight",
  "objects": [
    {
      "type": "Plain",
      "name": "p",
      "parameters": {"strength": 2},
      "views": {"left": {"tint": [1, 0, 0, 1]}}
    },
    {"type": "DownwardLight", "name": "DownwardLight", "muted": true},
    {
      "type": "Plain",
      "name": "q",
      "parameters": {"place": [0.125, 0.25, 0.5]},
      "connections": {"way": {"object": "p", "parameter": "way"}}
    }
  ]
}
)");
    EXPECT_EQ(again(written(scene)), written(scene));
}

TEST_F(SceneSaveTest, WhatWasWrittenAsTextIsWrittenAsNumbersAgain) {
    const std::string old = R"({
  "korl": 1,
  "background": "0.5 0.25 0 1",
  "camera": {"position": "1 2 3", "target": "0 0 0", "up": "0 0 1", "fov": 30},
  "objects": [
    {"type": "Plain", "name": "p", "parameters": {"strength": " 2e0", "tint": "+1 0 0 1"}}
  ]
}
)";
    EXPECT_EQ(again(old), R"({
  "korl": 1,
  "background": [0.5, 0.25, 0, 1],
  "camera": {"position": [1, 2, 3], "target": [0, 0, 0], "up": [0, 0, 1], "fov": 30},
  "objects": [
    {"type": "Plain", "name": "p", "parameters": {"strength": 2, "tint": [1, 0, 0, 1]}}
  ]
}
)");
}

TEST_F(SceneSaveTest, AnEmptySceneIsItsVersion) {
    EXPECT_EQ(written(scene), "{\n  \"korl\": 1\n}\n");
}

TEST_F(SceneSaveTest, ValuesAtTheExtremesComeBack) {
    scene.create("Plain", "p");
    scene.addView("left");
    const char* const values[] = {
        "1e-300", "1e+300", "-0", "5e-324", "1.7976931348623157e+308", "2.2250738585072014e-308"};
    for (const char* const value : values)
        for (const char* const view : {"", "left"}) {
            scene.setParameterText("p", "strength", value, view);
            scene.setParameterText("p", "place", std::string(value) + " 0 " + value, view);
            scene.setParameterText("p", "tint", "1e-45 -0 3.4028235e+38 1.1754944e-38", view);
            const std::string text = written(scene);
            Scene other;
            read(text, other);
            EXPECT_EQ(written(other), text);
            EXPECT_EQ(other.parameter("p", "strength").globalValue().Text(),
                      scene.parameter("p", "strength").globalValue().Text());
            EXPECT_THAT(text, HasSubstr(std::string("\"strength\": ") + value));
        }
}

TEST_F(SceneSaveTest, WhatIsNotFiniteIsNotWritten) {
    auto& object = scene.create("Plain", "p");
    object.findParameter("strength")
        ->setGlobalValue(Qelt::VValue<double>(std::numeric_limits<double>::infinity()));
    try {
        written(scene);
        FAIL() << "it was written";
    } catch (const korl::Error& error) {
        EXPECT_STREQ(
            error.what(),
            "the scene cannot be written: \"p.strength\" is \"inf\", which is not finite; set it first");
    }
}

TEST_F(SceneSaveTest, NamesMayHaveAnyLetters) {
    for (const char* const name : {"a.b", "\"quoted\"", "back\\slash", "line\nbreak", "grün", "a/b~c", "😀"})
        scene.create("Plain", name);
    Scene other;
    read(written(scene), other);
    ASSERT_EQ(other.objects().size(), scene.objects().size());
    for (std::size_t i = 0; i < other.objects().size(); ++i)
        EXPECT_EQ(other.objects()[i]->Name(), scene.objects()[i]->Name());
    scene.create("Plain", "\xff");
    EXPECT_THROW(written(scene), korl::Error);
}

TEST_F(SceneSaveTest, CreationOrderIsKept) {
    for (const char* const name : {"z", "a", "m"})
        scene.create("Plain", name);
    Scene other;
    read(written(scene), other);
    EXPECT_EQ(other.objects()[0]->Name(), "z");
    EXPECT_EQ(other.objects()[2]->Name(), "m");
}

TEST_F(SceneSaveTest, ArraysComeBackToTheSameBits) {
    korl::Mesh mesh;
    mesh.name = "odd numbers";
    mesh.positions = {
        {-0.0f, 1e-45f, 0.1f}, {3.4028235e38f, -1.1754944e-38f, 16777217.0f}, {1.0f / 3, 2e-10f, -7}};
    mesh.normals = {{0.6f, 0.8f, 0}, {0, -0.0f, 1}, {-1, 0, 0}};
    mesh.colors = {{0, 0.1f, 1}, {0.2f, 0.3f, 0.7f}, {1, 1, 1}};
    mesh.triangles = {2, 1, 0};
    scene.addMesh(mesh);
    Scene other;
    read(written(scene), other);
    ASSERT_EQ(other.meshes().size(), 1u);
    const korl::Mesh& back = *other.meshes()[0];
    const auto expectSame = [](const std::vector<glm::vec3>& a, const std::vector<glm::vec3>& b) {
        ASSERT_EQ(a.size(), b.size());
        for (std::size_t i = 0; i < a.size(); ++i)
            for (int k = 0; k < 3; ++k)
                EXPECT_EQ(std::bit_cast<std::uint32_t>(a[i][k]), std::bit_cast<std::uint32_t>(b[i][k]));
    };
    expectSame(mesh.positions, back.positions);
    expectSame(mesh.normals, back.normals);
    expectSame(mesh.colors, back.colors);
    EXPECT_EQ(back.triangles, mesh.triangles);
    EXPECT_EQ(back.name, "odd numbers");
    EXPECT_EQ(written(other), written(scene));
}

TEST_F(SceneSaveTest, ModelsAreNamedFromTheFilesFolder) {
    std::filesystem::create_directories(folder / "scenes");
    std::filesystem::create_directories(folder / "models");
    const auto model = folder.write("models/triangle.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n");
    scene.addMesh(korl::importModel(model, korl::UpAxis::z));
    korl::saveScene(folder / "scenes/scene.json", scene);
    const std::string text = korl::test::bytesOf(folder / "scenes/scene.json");
    EXPECT_THAT(text, HasSubstr(R"({"file": "../models/triangle.obj", "up": "z"})"));
    Scene other;
    korl::readSceneFile(folder / "scenes/scene.json", other);
    EXPECT_EQ(other.meshes()[0]->positions, scene.meshes()[0]->positions);
    EXPECT_EQ(sceneText(other, folder / "scenes"), text);
}

TEST_F(SceneSaveTest, BuiltInMeshesAreNamed) {
    for (korl::Mesh& mesh : korl::builtinScene())
        scene.addMesh(std::move(mesh));
    EXPECT_THAT(written(scene), HasSubstr(R"({"builtin": "landscape"},)"));
    EXPECT_EQ(again(written(scene)), written(scene));
    for (korl::Mesh& mesh : korl::builtinScene())
        scene.addMesh(std::move(mesh)); // the file cannot name them twice
    EXPECT_EQ(again(written(scene)), written(scene));
}

const std::string with_absent = R"({
  "korl": 1,
  "plugins": ["absent_module"],
  "views": ["left"],
  "solo": "lamp",
  "objects": [
    {
      "type": "Plain",
      "name": "p",
      "connections": {"strength": {"object": "lamp", "parameter": "power"}}
    },
    {  "name": "lamp", "type": "AbsentLamp",   "views": {"left": {"power": "1e2"}},
       "connections": {"aim": {"object": "q", "parameter": "way"}} },
    {"type": "Plain", "name": "q"}
  ]
}
)";

TEST_F(SceneSaveTest, WhatNoModuleHasIsKeptToldAndWrittenBack) {
    read(with_absent, scene);
    EXPECT_EQ(scene.objects().size(), 2u);
    const std::string file = folder / "scene.json";
    EXPECT_THAT(
        told, ElementsAre(
                  file + ": the module \"absent_module\", which it needs, is not loaded; name its file with "
                         "--plugin",
                  HasSubstr("no loaded module has the type \"AbsentLamp\" of \"lamp\", kept for later but "
                            "not shown: there are: SetUpLight, DownwardLight, Plain.")));
    EXPECT_EQ(written(scene), with_absent);
    EXPECT_THROW(scene.create("Plain", "lamp"), korl::Error) << "the name is taken";
    scene.create("Plain", "late");
    scene.remove("p"); // the kept object stays before q
    const std::string text = written(scene);
    EXPECT_LT(text.find("lamp"), text.find("\"name\": \"q\""));
    EXPECT_EQ(again(text), text);
}

TEST_F(SceneSaveTest, AKeptConnectionEndsWhenAnotherIsMade) {
    read(with_absent, scene);
    scene.connect("p", "strength", "q", "strength");
    EXPECT_THAT(written(scene),
                HasSubstr(R"("connections": {"strength": {"object": "q", "parameter": "strength"}})"));
    scene.disconnect("p", "strength");
    EXPECT_THAT(written(scene), HasSubstr(R"({"type": "Plain", "name": "p"})"));
    scene.remove("lamp");
    EXPECT_EQ(written(scene).find("lamp"), std::string::npos);
}

TEST_F(SceneSaveTest, EndlessChainsOfConnectionsAreRefused) {
    std::string text = R"({"korl": 1, "objects": [{"type": "Plain", "name": "p0"})";
    const auto follow = [&](int i) {
        text += R"(, {"type": "Plain", "name": "p)" + std::to_string(i) +
                R"(", "connections": {"way": {"object": "p)" + std::to_string(i - 1) +
                R"(", "parameter": "way"}}})";
    };
    for (int i = 1; i <= 100; ++i)
        follow(i);
    read(text + "]}", scene);
    EXPECT_EQ(scene.parameter("p100", "way").source(), &scene.parameter("p99", "way"));
    for (int i = 101; i < 5000; ++i)
        follow(i);
    Scene other;
    try {
        read(text + "]}", other);
        FAIL() << "the chain was read";
    } catch (const korl::Error& error) {
        EXPECT_THAT(error.what(),
                    HasSubstr("/objects/101/connections/way: it would follow another parameter through "
                              "more than 100 others"));
    }
    try {
        read(R"({"korl": 1, "objects": [
            {"type": "Plain", "name": "a", "connections": {"way": {"object": "b", "parameter": "way"}}},
            {"type": "Plain", "name": "b", "connections": {"way": {"object": "a", "parameter": "way"}}}]})",
             other);
        FAIL() << "the circle was read";
    } catch (const korl::Error& error) {
        EXPECT_THAT(error.what(), HasSubstr("/objects/1/connections/way: \"b.way\" cannot follow \"a.way\""));
    }
}

TEST_F(SceneSaveTest, ManyObjectsLoadWithTheirConnectionsAndValues) {
    constexpr int count = 10000;
    std::string text = R"({"korl": 1, "views": ["left"], "objects": [{"type": "Plain", "name": "p0"})";
    for (int i = 1; i < count; ++i) {
        text += R"(,{"type": "Plain", "name": "p)" + std::to_string(i) +
                R"(", "parameters": {"strength": 2}, "views": {"left": {"strength": "3"}}, )" +
                R"("connections": {"way": {"object": "p0", "parameter": "way"}}})";
    }
    text += "]}";
    read(text, scene);
    ASSERT_EQ(scene.objects().size(), std::size_t{count});
    const auto& last = scene.object("p" + std::to_string(count - 1));
    EXPECT_EQ(last.findParameter("way")->source(), scene.object("p0").findParameter("way"));
    EXPECT_EQ(last.findParameter("strength")->getLocalValue(*scene.view("left").get())->Text(), "3");
}

} // namespace
