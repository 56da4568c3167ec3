#include "tests/support/flat_scene.hpp"
#include "tests/support/temporary_folder.hpp"

#include "shell/base/error.hpp"
#include "shell/scene_file/lighting_rig.hpp"

#include <gmock/gmock.h>

namespace {

using korl::Scene;
using testing::ElementsAre;
using testing::HasSubstr;

struct PlainType : korl::test::PlainObject {
    PlainType(const std::string& name, const Qelt::VCreationPreferences& preferences)
        : PlainObject(name, preferences) {}
};

/// A light with parameters.
struct TunedLight : korl::test::SetUpLight {
    using SetUpLight::SetUpLight;
    Qelt::TypedSlot<double> power{this, "power", 1, 0};
};

class LightingRigTest : public testing::Test {
protected:
    const korl::test::TestLightCreators lights;
    const Qelt::VCreator<PlainType, void> plain{std::string("Plain"), 0};
    const Qelt::VCreator<TunedLight, void> tuned{std::string("Tuned"), 0};
    const korl::test::TemporaryFolder folder;
    std::vector<std::string> told;
    const korl::SceneNotes tell = [this](const std::string& report) { told.push_back(report); };
    Scene scene;

    LightingRigTest() {
        scene.addView("left");
        scene.addView("unused");
        scene.create("Plain", "stage");
        scene.create("Tuned", "key");
        scene.create("Tuned", "fill");
        scene.create("Tuned", "rim");
        scene.setParameterText("key", "power", "3");
        scene.setParameterText("fill", "power", "0.5", "left");
        scene.connect("fill", "power", "key", "power");
        scene.connect("rim", "power", "stage", "strength");
        scene.setMuted("rim", true);
        scene.solo("key");
        korl::test::makeFlat(scene);
    }

    std::vector<std::string> names(const Scene& of) {
        std::vector<std::string> all;
        for (const auto& object : of.objects())
            all.push_back(object->Name());
        return all;
    }
};

const char* const rig = R"({
  "korl": 1,
  "views": ["left"],
  "objects": [
    {"type": "Tuned", "name": "key", "parameters": {"power": 3}},
    {
      "type": "Tuned",
      "name": "fill",
      "connections": {"power": {"object": "key", "parameter": "power"}},
      "views": {"left": {"power": 0.5}}
    },
    {"type": "Tuned", "name": "rim", "muted": true}
  ]
}
)";

TEST_F(LightingRigTest, HoldsTheLightsAlone) {
    EXPECT_EQ(korl::rigText(scene, tell), rig);
    EXPECT_THAT(
        told,
        ElementsAre("\"rim.power\" follows something that is left out; it is written with its own value"));
}

TEST_F(LightingRigTest, GoesIntoAnotherScene) {
    korl::saveRig(folder / "rig.json", scene);
    Scene other;
    other.create("Plain", "stage");
    korl::loadRig(folder / "rig.json", other);
    EXPECT_THAT(names(other), ElementsAre("stage", "key", "fill", "rim"));
    EXPECT_EQ(korl::rigText(other), rig);
    EXPECT_TRUE(other.meshes().empty());
}

TEST_F(LightingRigTest, TakenNamesGetNumbersAndConnectionsFollow) {
    folder.write("rig.json", rig);
    Scene other;
    other.create("Tuned", "key");
    other.create("Plain", "key2");
    korl::loadRig(folder / "rig.json", other);
    EXPECT_THAT(names(other), ElementsAre("key", "key2", "key3", "fill", "rim"));
    EXPECT_EQ(other.parameter("fill", "power").source(), &other.parameter("key3", "power"));
    EXPECT_EQ(other.parameter("key", "power").globalValue().Text(), "1");
    EXPECT_EQ(other.parameter("key3", "power").globalValue().Text(), "3");
    EXPECT_TRUE(other.isMuted(other.object("rim")));
}

TEST_F(LightingRigTest, ReplacesTheScenesOwnLights) {
    folder.write("rig.json", rig);
    Scene other;
    other.create("Tuned", "key");
    other.create("Plain", "stage");
    korl::loadRig(folder / "rig.json", other, true);
    EXPECT_THAT(names(other), ElementsAre("stage", "key", "fill", "rim"));
    EXPECT_EQ(other.parameter("key", "power").globalValue().Text(), "3");
}

TEST_F(LightingRigTest, AWholeSceneGivesItsLights) {
    korl::saveScene(folder / "scene.json", scene);
    Scene other;
    korl::loadRig(folder / "scene.json", other, false, tell);
    EXPECT_THAT(names(other), ElementsAre("key", "fill", "rim"));
    EXPECT_TRUE(other.meshes().empty());
    EXPECT_FALSE(other.camera);
    EXPECT_EQ(other.soloLight(), nullptr);
    EXPECT_THAT(told, ElementsAre("\"rim.power\" followed \"stage.strength\", which does not belong to a "
                                  "light; it keeps a value of its own"));
}

TEST_F(LightingRigTest, ABadRigChangesNothing) {
    const std::string before = korl::sceneText(scene, folder.path());
    folder.write("rig.json", R"({"korl": 1, "objects": [{"type": "Tuned"}, {"type": "Absent"}]})");
    for (const bool replace : {false, true})
        try {
            korl::loadRig(folder / "rig.json", scene, replace);
            FAIL() << "it was loaded";
        } catch (const korl::Error& error) {
            EXPECT_THAT(error.what(), HasSubstr("/objects/1/type: no loaded module has the type \"Absent\""));
            EXPECT_EQ(korl::sceneText(scene, folder.path()), before);
        }
}

} // namespace
