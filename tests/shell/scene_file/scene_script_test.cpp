#include "tests/support/flat_scene.hpp"

#include "shell/mesh/builtin_scene.hpp"
#include "shell/scene_file/scene_file.hpp"
#include "shell/scene_file/scene_script.hpp"

#include <gmock/gmock.h>

namespace {

using korl::Scene;
using korl::sceneScript;
using testing::HasSubstr;

struct PlainType : korl::test::PlainObject {
    PlainType(const std::string& name, const Qelt::VCreationPreferences& preferences)
        : PlainObject(name, preferences) {}

    Qelt::TypedSlot<double> angle{this, "z-angle", 0, 0};
};

class SceneScriptTest : public testing::Test {
protected:
    const korl::test::TestLightCreators lights;
    const Qelt::VCreator<PlainType, void> plain{std::string("Plain"), 0};
    Scene scene;
};

TEST_F(SceneScriptTest, BuildsTheScene) {
    scene.addView("left");
    scene.create("Plain", "p");
    scene.setParameterText("p", "strength", "-0");
    scene.setParameterText("p", "tint", "1 0.5 0 1");
    scene.setParameterText("p", "z-angle", "3");
    scene.setParameterText("p", "strength", "0.2", "left");
    scene.create("DownwardLight", "class");
    scene.create("Plain", "a b");
    scene.connect("p", "way", "a b", "way");
    scene.setMuted("class", true);
    scene.solo("class");
    for (korl::Mesh& mesh : korl::builtinScene())
        scene.addMesh(std::move(mesh));
    scene.background = {0, 0.5f, 1, 1};
    scene.camera = korl::Camera{{0, 0, 5}, {0, 0, 0}, {0, 1, 0}, 45};
    EXPECT_EQ(sceneScript(scene), R"(import korl

with korl.Shell() as shell:
    left = shell.add_view("left")
    p = shell.create("Plain", "p", strength=-0.0, tint=(1, 0.5, 0, 1))
    p["z-angle"] = 3
    p.set("strength", 0.2, view=left)
    object_class = shell.create("DownwardLight", "class")
    object_class.enabled = False
    a_b = shell.create("Plain", "a b")
    p["way"].follow(a_b["way"])
    shell.solo(object_class)
    shell.add_landscape()
    shell.background = (0, 0.5, 1, 1)
    shell.camera.set(position=(0, 0, 5), target=(0, 0, 0), up=(0, 1, 0), fov=45)
    image = shell.render(640, 480)
image.save("scene.png")
)");
}

TEST_F(SceneScriptTest, VariablesAreNobodyElses) {
    for (const char* const name : {"a b", "a-b", "shell", "1", "a_b"})
        scene.create("Plain", name);
    const std::string script = sceneScript(scene);
    for (const char* const line :
         {"    a_b = shell.create(\"Plain\", \"a b\")", "    a_b_2 = shell.create(\"Plain\", \"a-b\")",
          "    object_shell = ", "    object_1 = ", "    a_b_3 = "})
        EXPECT_THAT(script, HasSubstr(line));
}

TEST_F(SceneScriptTest, MeshesAreModelsOrArrays) {
    korl::test::makeFlat(scene);
    korl::Mesh model = *scene.meshes()[0];
    model.source = korl::ModelSource{"/models/bunny.obj", korl::UpAxis::z};
    scene.addMesh(model);
    const std::string script = sceneScript(scene);
    EXPECT_THAT(script, HasSubstr("    shell.add_mesh(\"/models/bunny.obj\", up=\"z\")\n"));
    EXPECT_THAT(script, HasSubstr("    shell.add_mesh(\n"
                                  "        [\n"
                                  "            (-9, -9, 0), (9, -9, 0), (9, 9, 0), (-9, 9, 0),\n"
                                  "        ],\n"
                                  "        [\n"
                                  "            (0, 1, 2), (0, 2, 3),\n"
                                  "        ],\n"
                                  "        normals=[\n"));
    EXPECT_THAT(script, HasSubstr("        name=\"square\",\n    )\n"));
}

TEST_F(SceneScriptTest, WhatNoModuleHasIsNamed) {
    korl::readSceneText(R"({"korl": 1, "objects": [{"type": "Absent", "name": "lamp"}]})", "scene.json",
                        scene);
    EXPECT_THAT(sceneScript(scene),
                HasSubstr("    # \"lamp\" is left out: no loaded module has the type \"Absent\"\n"));
}

} // namespace
