#include "tests/support/flat_scene.hpp"
#include "tests/support/run_program.hpp"

#include "shell/base/error.hpp"
#include "shell/scene_file/scene_file.hpp"

#include <gmock/gmock.h>

namespace {

using korl::readSceneFile;
using korl::Scene;
using korl::test::PlainObject;

struct PlainType : PlainObject {
    PlainType(const std::string& name, const Qelt::VCreationPreferences& preferences)
        : PlainObject(name, preferences) {}
};

class SceneFileTest : public testing::Test {
protected:
    const Qelt::VCreator<PlainType, void> plain{std::string("Plain"), 0};
    const korl::test::TemporaryFolder folder;
    Scene scene;

    std::string errorOf(const std::string& content) {
        const std::string file = folder.write("scene.json", content);
        try {
            Scene other;
            readSceneFile(file, other);
        } catch (const korl::Error& error) {
            const std::string text = error.what();
            EXPECT_TRUE(text.starts_with(file + ": ")) << text;
            return text.substr(std::min(text.size(), file.size() + 2));
        }
        return "no error";
    }
};

TEST_F(SceneFileTest, ReadsAllOfAScene) {
    folder.write("triangle.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n");
    readSceneFile(folder.write("scene.json", R"({
        "korl": 1,
        "objects": [{"type": "Plain", "name": "p", "parameters": {"tint": "1 0 0 1", "strength": "2"}},
                    {"type": "Plain"}],
        "meshes": [{"file": "triangle.obj", "up": "z"}],
        "camera": {"position": "1 2 3", "target": "0 0 1", "up": "0 1 0", "fov": 45},
        "background": "#ff0000"
    })"),
                  scene);
    ASSERT_EQ(scene.objects().size(), 2u);
    EXPECT_EQ(scene.object("p").findParameter("tint")->globalValue().Text(), "1 0 0 1");
    EXPECT_EQ(scene.objects()[1]->Name(), "Plain");
    ASSERT_EQ(scene.meshes().size(), 1u);
    EXPECT_EQ(scene.meshes()[0]->triangles.size(), 3u);
    ASSERT_TRUE(scene.camera);
    EXPECT_EQ(scene.camera->position, glm::dvec3(1, 2, 3));
    EXPECT_EQ(scene.camera->fov_degrees, 45);
    EXPECT_EQ(scene.background, (Orvid::rgba_float_t{1, 0, 0, 1}));
}

TEST_F(SceneFileTest, ReadsNumbersAndListsAsItReadsTexts) {
    readSceneFile(folder.write("scene.json", R"({
        "korl": 1,
        "views": ["left"],
        "objects": [{"type": "Plain", "name": "p",
                     "parameters": {"tint": [1, 0.1, 0, 1], "strength": 2e-3, "way": [0, 0.1, -1]},
                     "views": {"left": {"place": [1, 2, 16777217]}}}],
        "camera": {"position": [1, 2, 3], "target": [0, 0, 1]},
        "background": [1, 0.5, 0]
    })"),
                  scene);
    const auto textOf = [&](const char* parameter) {
        return scene.parameter("p", parameter).globalValue().Text();
    };
    EXPECT_EQ(textOf("tint"), "1 0.1 0 1");
    EXPECT_EQ(textOf("strength"), "0.002");
    EXPECT_EQ(textOf("way"), "0 0.1 -1");
    EXPECT_EQ(scene.parameter("p", "place").getLocalValue(*scene.view("left").get())->Text(), "1 2 16777217");
    EXPECT_EQ(scene.camera->position, glm::dvec3(1, 2, 3));
    EXPECT_EQ(scene.background, (Orvid::rgba_float_t{1, 0.5f, 0, 1}));
}

TEST_F(SceneFileTest, ObjectWithoutANameTakesNoneThatTheFileGives) {
    readSceneFile(folder.write("scene.json", R"({"korl": 1, "objects": [
        {"type": "Plain"}, {"type": "Plain", "name": "Plain"}, {"type": "Plain", "name": "Plain3"}, {"type": "Plain"}
    ]})"),
                  scene);
    std::vector<std::string> names;
    for (const auto& object : scene.objects())
        names.push_back(object->Name());
    EXPECT_THAT(names, testing::ElementsAre("Plain2", "Plain", "Plain3", "Plain4"));
}

TEST_F(SceneFileTest, OnlyTheVersionIsRequired) {
    readSceneFile(folder.write("scene.json", R"({"korl": 1})"), scene);
    EXPECT_TRUE(scene.objects().empty());
    EXPECT_FALSE(scene.camera);
}

TEST_F(SceneFileTest, WhatIsWrongIsToldWithItsPlace) {
    struct Case {
        const char *content, *error;
    };
    const Case cases[] = {
        {"[]", "expected an object in braces, found array"},
        {"{}", "is not a scene: it lacks \"korl\", the version of the format, which is 1"},
        {R"({"korl": 2})", "/korl: is 2, but this program reads version 1 of the format"},
        {R"({"korl": 1, "object": []})", "/object: unknown key; did you mean \"objects\"? There are: korl, "
                                         "plugins, background, camera, views, solo, objects, meshes."},
        {R"({"korl": 1, "objects": {}})", "/objects: expected a list in brackets, found object"},
        {R"({"korl": 1, "objects": [7]})", "/objects/0: expected an object in braces, found number"},
        {R"({"korl": 1, "objects": [{"name": "x"}]})", "/objects/0: lacks \"type\""},
        {R"({"korl": 1, "objects": [{"type": 3}]})",
         "/objects/0/type: expected a text in quotes, found number"},
        {R"({"korl": 1, "objects": [{"type": "Plain", "parameters": []}]})",
         "/objects/0/parameters: expected an object in braces, found array"},
        {R"({"korl": 1, "objects": [{"type": "Plain", "parameters": {"strength": true}}]})",
         "/objects/0/parameters/strength: expected a number, a list of numbers or a text, found boolean"},
        {R"({"korl": 1, "objects": [{"type": "Plain", "parameters": {"way": [1, "2", 3]}}]})",
         "/objects/0/parameters/way/1: expected a number, found string"},
        {R"({"korl": 1, "objects": [{"type": "Plain", "parameters": {"way": [1, 2]}}]})",
         "/objects/0/parameters/way: \"Plain.way\" takes a vector, three numbers \"x y z\", found \"1 2\"; "
         "it keeps \"0 0 -1\""},
        {R"({"korl": 1, "objects": [{"type": "Plain", "parameters": {"tint": [1e39, 0, 0, 1]}}]})",
         "/objects/0/parameters/tint: \"Plain.tint\" takes a colour, four numbers \"red green blue alpha\", "
         "found \"1e39 0 0 1\"; it keeps \"0.1 0.2 0.3 1\""},
        {R"({"korl": 1, "background": 1})", "/background: \"1\" is not a colour; write \"#rrggbb\", "
                                            "\"#rrggbbaa\", or three or four numbers from 0 to 1 such "
                                            "as \"0.1 0.1 0.12\""},
        {R"({"korl": 1, "objects": [{"type": "Plain", "parameters": {"strength": "x"}}]})",
         "/objects/0/parameters/strength: \"Plain.strength\" takes a double, one number, found \"x\"; it "
         "keeps \"0.5\""},
        {R"({"korl": 1, "background": "red"})", "/background: \"red\" is not a colour; write \"#rrggbb\", "
                                                "\"#rrggbbaa\", or three or four numbers from 0 to 1 such "
                                                "as \"0.1 0.1 0.12\""},
        {R"({"korl": 1, "camera": {"position": "1 2", "target": "0 0 0"}})",
         "/camera/position: expected three numbers [x, y, z], found \"1 2\""},
        {R"({"korl": 1, "camera": {"position": "1 2 3"}})", "/camera: lacks \"target\""},
        {R"({"korl": 1, "camera": {"position": "1 2 3", "target": "0 0 0", "fov": "wide"}})",
         "/camera/fov: expected degrees, found \"wide\""},
        {R"({"korl": 1, "meshes": [{"file": "x.obj", "up": "w"}]})",
         "/meshes/0/up: \"w\" is not an axis of a model; there are x, y and z"},
        {R"({"korl": 1, "korl": 1})", "/korl: the key \"korl\" stands twice in one object; keep one of them"},
        {R"({"korl": 1, "objects": [{"type": "Plain"}, {"type": "Plain", "type": "Plain"}]})",
         "/objects/1/type: the key \"type\" stands twice in one object; keep one of them"},
        {R"({"korl": 1, "objects": [{"type": "Plain", "parameters": {"way": "0 nan 0"}}]})",
         "/objects/0/parameters/way: \"Plain.way\" takes finite numbers, found \"0 nan 0\"; it keeps "
         "\"0 0 -1\""},
        {R"({"korl": 1, "objects": [{"type": "Plain", "parameters": {"strength": "-inf"}}]})",
         "/objects/0/parameters/strength: \"Plain.strength\" takes finite numbers, found \"-inf\"; it keeps "
         "\"0.5\""},
        {R"({"korl": 1, "objects": [{"type": "Plain", "muted": "yes"}]})",
         "/objects/0/muted: expected true or false, found string"},
        {R"({"korl": 1, "objects": [{"type": "Plain", "name": ""}]})",
         "/objects/0/name: expected a name, found an empty text; leave it out for a name of the type"},
        {R"({"korl": 1, "objects": [{"type": "Plain", "name": "a"}, {"type": "Plain", "name": "a"}]})",
         "/objects/1/name: the name \"a\" is taken by another object of the file"},
        {R"({"korl": 1, "objects": [{"type": "Absent", "name": "a"}, {"type": "Absent", "name": "a"}]})",
         "/objects/1/name: the scene already has an object of the name \"a\""},
        {R"({"korl": 1, "objects": [{"type": "Plain", "views": {"left": {}}}]})",
         "/objects/0/views/left: unknown view \"left\": the scene has no views"},
        {R"({"korl": 1, "views": ["left", "left"]})", "/views/1: the view \"left\" stands twice in the list"},
        {R"({"korl": 1, "objects": [{"type": "Plain", "connections": {"way": "a.way"}}]})",
         "/objects/0/connections/way: expected an object in braces, found string"},
        {R"({"korl": 1, "objects": [{"type": "Plain", "connections": {"way": {"object": "b"}}}]})",
         "/objects/0/connections/way: lacks \"parameter\""},
        {R"({"korl": 1, "objects": [{"type": "Plain", "connections": {"way": {"object": "b", "parameter": "way"}}}]})",
         "/objects/0/connections/way/object: unknown object \"b\": there are: Plain."},
        {R"({"korl": 1, "solo": "sun"})", "/solo: the file has no object \"sun\", so it cannot shine alone"},
        {R"({"korl": 1, "solo": "p", "objects": [{"type": "Plain", "name": "p"}]})",
         "/solo: \"p\" is not a light, so it cannot shine alone"},
        {R"({"korl": 1, "plugins": [1]})", "/plugins/0: expected a text in quotes, found number"},
        {R"({"korl": 1, "meshes": [{"positions": [0, 0, 0]}]})", "/meshes/0: lacks \"triangles\""},
        {R"({"korl": 1, "meshes": [{"positions": [0, 0], "triangles": []}]})",
         "/meshes/0/positions: expected three numbers for each entry, found 2 in all"},
        {R"({"korl": 1, "meshes": [{"positions": [0, "1", 0], "triangles": []}]})",
         "/meshes/0/positions/1: expected a number, found \"1\""},
        {R"({"korl": 1, "meshes": [{"positions": [0, 1e39, 0], "triangles": []}]})",
         "/meshes/0/positions/1: expected a number, found 1e39"},
        {R"({"korl": 1, "meshes": [{"positions": [0, 0, 0], "triangles": [0, 0, -1]}]})",
         "/meshes/0/triangles/2: expected the number of a position, found -1"},
        {R"({"korl": 1, "meshes": [{"positions": [0, 0, 0], "triangles": [0, 0, 1]}]})",
         "/meshes/0: the mesh \"mesh\" is damaged: triangle 0 leads to position 1, but there are 1"},
        {R"({"korl": 1, "meshes": [{"builtin": "spere"}]})",
         "/meshes/0/builtin: unknown mesh \"spere\": did you mean \"sphere\"? There are: landscape, column, "
         "sphere."},
        {R"({"korl": 1, "meshes": [{"builtin": "sphere"}, {"builtin": "sphere"}]})",
         "/meshes/1/builtin: the mesh \"sphere\" stands twice in the list"},
    };
    for (const Case& wrong : cases)
        EXPECT_EQ(errorOf(wrong.content), wrong.error) << wrong.content;
}

TEST_F(SceneFileTest, BrokenJsonIsToldWithLineAndColumn) {
    const std::string error = errorOf("{\n  \"korl\": 1,\n  oops\n}");
    EXPECT_THAT(error, testing::StartsWith("this is not JSON: "));
    EXPECT_THAT(error, testing::HasSubstr("line 3, column 3"));
    EXPECT_THAT(errorOf(""), testing::StartsWith("this is not JSON: "));
}

TEST_F(SceneFileTest, DeepNestingIsRefused) {
    EXPECT_EQ(
        errorOf("{\"korl\": " + std::string(100000, '[') + std::string(100000, ']') + "}").substr(0, 10),
        "/korl/0/0/");
    EXPECT_THAT(errorOf(std::string(40, '[')),
                testing::HasSubstr("lists and objects lie more than 32 deep in each other"));
}

TEST_F(SceneFileTest, AFileThatFailsLeavesTheSceneAsItWas) {
    const char* const good = R"({"korl": 1, "views": ["left"], "background": "#ff0000", "objects": [
        {"type": "Plain", "name": "p"}, {"type": "Absent", "name": "a"}]})";
    readSceneFile(folder.write("scene.json", good), scene);
    const std::string before = korl::sceneText(scene, folder.path());
    const char* const bad = R"({"korl": 1, "plugins": ["absent"], "views": ["left", "right"],
        "background": "#00ff00", "camera": {"position": "1 2 3", "target": "0 0 0"},
        "meshes": [{"builtin": "sphere"}],
        "objects": [{"type": "Plain", "name": "q"}, {"type": "Absent", "name": "b"},
                    {"type": "Plain", "name": "r", "views": {"left": {"strength": "none"}}}]})";
    EXPECT_THROW(readSceneFile(folder.write("scene.json", bad), scene), korl::Error);
    EXPECT_EQ(korl::sceneText(scene, folder.path()), before);
    EXPECT_EQ(scene.objects().size(), 1u);
}

TEST_F(SceneFileTest, MissingFileIsTold) {
    const std::string file = folder / "nowhere.json";
    try {
        readSceneFile(file, scene);
        FAIL();
    } catch (const korl::Error& error) {
        EXPECT_EQ(error.what(), "cannot read the scene " + file + ": there is no such file; check the path");
    }
    EXPECT_THROW(readSceneFile(folder.path(), scene), korl::Error);
}

} // namespace
