#include "tests/support/error_of.hpp"
#include "tests/support/flat_scene.hpp"
#include "tests/support/recorded_reports.hpp"

#include "shell/base/error.hpp"
#include "shell/scene/scene.hpp"

#include <gmock/gmock.h>

namespace {

using korl::Scene;
using korl::test::errorOf;
using korl::test::PlainObject;
using testing::ElementsAre;

/// A type with a parameter of each kind, as a module would register it.
struct PlainType : PlainObject {
    PlainType(const std::string& name, const Qelt::VCreationPreferences& preferences)
        : PlainObject(name, preferences) {}
};

class SceneTest : public testing::Test {
protected:
    const korl::test::TestLightCreators lights;
    const Qelt::VCreator<PlainType, void> plain{std::string("Plain"), 0};
    Scene scene;

    std::vector<std::string> names() {
        std::vector<std::string> found;
        for (const auto& object : scene.objects())
            found.push_back(object->Name());
        return found;
    }
};

TEST_F(SceneTest, CreatesObjectsInOrderUnderUniqueNames) {
    scene.create("Plain");
    scene.create("Plain");
    scene.create("Plain", "mine");
    scene.create("DownwardLight");
    EXPECT_THAT(names(), ElementsAre("Plain", "Plain2", "mine", "DownwardLight"));
    EXPECT_EQ(scene.find("mine")->Name(), "mine");
    EXPECT_EQ(scene.find("Mine"), nullptr);
}

TEST_F(SceneTest, WrongNamesAreToldWithTheNearOnes) {
    scene.create("Plain", "mine");
    EXPECT_EQ(errorOf([&] { scene.create("Plian"); }),
              "unknown type \"Plian\": did you mean \"Plain\"? There are: SetUpLight, DownwardLight, Plain.");
    EXPECT_EQ(errorOf([&] { scene.create("Plain", "mine"); }),
              "cannot create \"mine\" as Plain: the scene already has an object of this name");
    EXPECT_EQ(errorOf([&] { scene.object("nime"); }), "unknown object \"nime\": there are: mine.");
    EXPECT_EQ(errorOf([&] { scene.setParameterText("mine", "stregnth", "1"); }),
              "unknown parameter \"mine.stregnth\": did you mean \"strength\"? There are: strength, tint, "
              "place, way.");
    EXPECT_EQ(errorOf([&] { scene.remove("yours"); }), "unknown object \"yours\": there are: mine.");
    EXPECT_THAT(names(), ElementsAre("mine"));
}

TEST_F(SceneTest, ObjectsOfOtherScenesAreNotItsOwn) {
    Scene other;
    other.create("Plain", "theirs");
    EXPECT_THAT(names(), ElementsAre());
    scene.create("Plain", "theirs"); // the name is free here
}

TEST_F(SceneTest, SetsParametersFromText) {
    scene.create("Plain", "p");
    scene.setParameterText("p", "tint", "0.2 0.4 0.8 0.3");
    scene.setParameterText("p", "strength", "1e-300");
    EXPECT_EQ(scene.object("p").findParameter("tint")->globalValue().Text(), "0.2 0.4 0.8 0.3");
    EXPECT_EQ(scene.object("p").findParameter("strength")->globalValue().Text(), "1e-300");
}

TEST_F(SceneTest, SetsParametersToValues) {
    scene.create("Plain", "p");
    scene.addView("left");
    scene.setParameter("p", "strength", Qelt::VValue<double>(0.1));
    scene.setParameter("p", "strength", Qelt::VValue<double>(3), "left");
    const Qelt::VParameter& strength = scene.parameter("p", "strength");
    EXPECT_EQ(strength.globalValue().Text(), "0.1");
    EXPECT_EQ(strength.getLocalValue(*scene.view("left").get())->Text(), "3");
    EXPECT_EQ(
        errorOf([&] { scene.setParameter("p", "tint", Qelt::VValue<double>(1)); }),
        "\"p.tint\" takes a colour, four numbers \"red green blue alpha\", found \"1\"; it keeps \"0.1 0.2 "
        "0.3 1\"");
    EXPECT_EQ(errorOf([&] {
                  scene.setParameter("p", "strength",
                                     Qelt::VValue<double>(std::numeric_limits<double>::infinity()), "left");
              }),
              "\"p.strength\" takes finite numbers, found \"inf\"; it keeps \"3\"");
}

TEST_F(SceneTest, WrongValuesAreToldAndChangeNothing) {
    scene.create("Plain", "p");
    struct Case {
        const char *parameter, *text, *error;
    };
    const Case cases[] = {
        {"strength", "strong",
         "\"p.strength\" takes a double, one number, found \"strong\"; it keeps \"0.5\""},
        {"strength", "inf", "\"p.strength\" takes finite numbers, found \"inf\"; it keeps \"0.5\""},
        {"tint", "1 2 3",
         "\"p.tint\" takes a colour, four numbers \"red green blue alpha\", found \"1 2 3\"; it keeps \"0.1 "
         "0.2 0.3 1\""},
        {"place", "1 2",
         "\"p.place\" takes a point, three numbers \"x y z\", found \"1 2\"; it keeps \"1 2 3\""},
        {"way", "nan 0 1", "\"p.way\" takes finite numbers, found \"nan 0 1\"; it keeps \"0 0 -1\""},
        {"way", "", "\"p.way\" takes a vector, three numbers \"x y z\", found \"\"; it keeps \"0 0 -1\""},
    };
    for (const Case& wrong : cases)
        EXPECT_EQ(errorOf([&] { scene.setParameterText("p", wrong.parameter, wrong.text); }), wrong.error);
    for (const auto& [name, text] :
         {std::pair("strength", "0.5"), {"tint", "0.1 0.2 0.3 1"}, {"place", "1 2 3"}, {"way", "0 0 -1"}})
        EXPECT_EQ(scene.object("p").findParameter(name)->globalValue().Text(), text);
}

TEST_F(SceneTest, KnowsWhetherItHasALight) {
    scene.create("Plain");
    EXPECT_FALSE(scene.hasLight());
    scene.create("SetUpLight");
    EXPECT_TRUE(scene.hasLight());
}

TEST_F(SceneTest, RemovedObjectsAreDeleted) {
    const Tessan::StrongPtr<Qelt::VObject> held(&scene.create("Plain", "p"));
    const auto revision = scene.revision();
    scene.remove("p");
    EXPECT_FALSE(held);
    EXPECT_NE(scene.revision(), revision);
    EXPECT_EQ(scene.find("p"), nullptr);
    scene.create("Plain", "p"); // the name is free again
    EXPECT_THAT(names(), ElementsAre("p"));
}

TEST_F(SceneTest, ObjectsThatOthersDeleteLeaveByThemselves) {
    scene.create("Plain", "p");
    scene.create("DownwardLight", "d");
    const auto revision = scene.revision();
    Qelt::VCreatorBase::deleteAllInstances(typeid(PlainType));
    EXPECT_NE(scene.revision(), revision);
    EXPECT_THAT(names(), ElementsAre("d"));
    EXPECT_EQ(scene.find("p"), nullptr);
}

TEST_F(SceneTest, TakesItsObjectsAlong) {
    Tessan::StrongPtr<Qelt::VObject> held;
    {
        Scene passing;
        held = Tessan::StrongPtr<Qelt::VObject>(&passing.create("Plain"));
    }
    EXPECT_FALSE(held);
}

TEST_F(SceneTest, RevisionsOfTwoScenesDiffer) {
    const Scene other;
    EXPECT_NE(scene.revision(), other.revision());
    EXPECT_EQ(scene.revision(), scene.revision());
}

korl::Mesh triangleAt(glm::vec3 offset) {
    korl::Mesh mesh;
    mesh.name = "triangle";
    mesh.positions = {offset + glm::vec3(-1, 0, 0), offset + glm::vec3(1, 0, 0), offset + glm::vec3(0, 0, 0)};
    mesh.normals.assign(3, {0, 0, 1});
    mesh.triangles = {0, 1, 2};
    return mesh;
}

TEST_F(SceneTest, BoundingBallIsThatOfAllMeshes) {
    EXPECT_FALSE(scene.boundingBall());
    scene.addMesh(triangleAt({0, 0, 0}));
    EXPECT_NEAR(scene.boundingBall()->radius, 1, 1e-6);
    scene.addMesh(triangleAt({4, 0, 0}));
    const korl::Ball ball = *scene.boundingBall(); // from x = -1 to x = 5
    EXPECT_NEAR(ball.radius, 3, 1e-6);
    EXPECT_NEAR(ball.center.x, 2, 1e-6);
    scene.addMesh(triangleAt({2, 0, 0})); // inside
    EXPECT_NEAR(scene.boundingBall()->radius, 3, 1e-6);
}

TEST_F(SceneTest, BoundingBallTakesInWhatObjectsDraw) {
    struct Balloon : Qelt::RenderAble {
        Balloon(const std::string& name, const Qelt::VCreationPreferences& preferences)
            : RenderAble(name, 0, preferences) {}
        bool getBoundingBall(Orvid::Ball& ball) const override {
            ball = {{0, 0, 10}, 2};
            return true;
        }
    };
    const Qelt::VCreator<Balloon, void> creator(std::string("Balloon"), 0);
    Scene local;
    local.create("Balloon");
    EXPECT_NEAR(local.boundingBall()->center.z, 10, 1e-6);
    local.addMesh(triangleAt({0, 0, 0}));
    EXPECT_NEAR(local.boundingBall()->radius, 6.5, 1e-6); // from z = -1 to z = 12
}

TEST_F(SceneTest, BrokenMeshIsRefused) {
    korl::Mesh mesh = triangleAt({0, 0, 0});
    mesh.triangles[2] = 3;
    EXPECT_NE(errorOf([&] { scene.addMesh(mesh); }), "no error");
    EXPECT_TRUE(scene.meshes().empty());
}

TEST_F(SceneTest, ViewsHaveValuesOfTheirOwn) {
    scene.create("Plain", "p");
    scene.addView("left");
    scene.addView("right");
    scene.setParameterText("p", "strength", "2");
    scene.setParameterText("p", "strength", "3", "left");
    const Qelt::VParameter& strength = scene.parameter("p", "strength");
    EXPECT_EQ(strength.getLocalValue(*scene.view("left").get())->Text(), "3");
    EXPECT_EQ(strength.getLocalValue(*scene.view("right").get())->Text(), "2");
    EXPECT_EQ(strength.globalValue().Text(), "2");
    EXPECT_EQ(errorOf([&] { scene.setParameterText("p", "strength", "inf", "left"); }),
              "\"p.strength\" takes finite numbers, found \"inf\"; it keeps \"3\"");
    scene.resetParameter("p", "strength", "left");
    EXPECT_EQ(strength.getLocalValue(*scene.view("left").get())->Text(), "2");
    scene.resetParameter("p", "strength");
    EXPECT_EQ(strength.globalValue().Text(), "0.5");
}

TEST_F(SceneTest, ViewsGoByName) {
    EXPECT_EQ(errorOf([&] { scene.view("left"); }), "unknown view \"left\": the scene has no views");
    EXPECT_EQ(errorOf([&] { scene.addView(""); }), "a view needs a name");
    scene.addView("left");
    scene.addView("right");
    EXPECT_EQ(errorOf([&] { scene.addView("left"); }),
              "cannot add the view \"left\": the scene already has one of this name");
    EXPECT_EQ(errorOf([&] { scene.view("lefd"); }),
              "unknown view \"lefd\": did you mean \"left\"? There are: left, right.");
    scene.create("Plain", "p");
    EXPECT_EQ(errorOf([&] { scene.setParameterText("p", "strength", "1", "up"); }),
              "unknown view \"up\": there are: left, right.");
    EXPECT_EQ(errorOf([&] { scene.resetParameter("p", "strength", "up"); }),
              "unknown view \"up\": there are: left, right.");
    scene.removeView("left");
    ASSERT_EQ(scene.views().size(), 1u);
    EXPECT_EQ(scene.views()[0].first, "right");
    EXPECT_EQ(errorOf([&] { scene.removeView("left"); }), "unknown view \"left\": there are: right.");
}

TEST_F(SceneTest, MutesAndLetsOneLightShineAlone) {
    auto& a = scene.create("DownwardLight", "a");
    auto& b = scene.create("DownwardLight", "b");
    const auto& no_light = scene.create("Plain", "p");
    auto revision = scene.revision();
    scene.setMuted("a", true);
    EXPECT_NE(scene.revision(), revision);
    EXPECT_TRUE(scene.isMuted(a));
    EXPECT_FALSE(scene.isEnabled(a));
    EXPECT_TRUE(scene.isEnabled(b));
    revision = scene.revision();
    scene.solo("a"); // muted or not
    EXPECT_NE(scene.revision(), revision);
    EXPECT_EQ(scene.soloLight(), &a);
    EXPECT_TRUE(scene.isEnabled(a));
    EXPECT_FALSE(scene.isEnabled(b));
    EXPECT_TRUE(scene.isEnabled(no_light)) << "what is not a light goes on";
    scene.solo("");
    EXPECT_EQ(scene.soloLight(), nullptr);
    EXPECT_FALSE(scene.isEnabled(a));
    EXPECT_TRUE(scene.isEnabled(b));
    scene.setMuted("a", false);
    EXPECT_TRUE(scene.isEnabled(a));
    scene.solo("b");
    scene.remove("b");
    EXPECT_EQ(scene.soloLight(), nullptr);
    EXPECT_TRUE(scene.isEnabled(a));
    scene.create("DownwardLight", "b"); // another one of the name, which did not shine alone
    EXPECT_EQ(scene.soloLight(), nullptr);
    EXPECT_TRUE(scene.isEnabled(a));
    scene.remove("b");
    EXPECT_EQ(errorOf([&] { scene.solo("p"); }), "\"p\" is not a light, so it cannot shine alone");
    EXPECT_EQ(errorOf([&] { scene.solo("x"); }),
              "unknown object \"x\": did you mean \"a\"? There are: a, p.");
    EXPECT_EQ(errorOf([&] { scene.setMuted("x", true); }),
              "unknown object \"x\": did you mean \"a\"? There are: a, p.");
}

TEST_F(SceneTest, ConnectsAndDisconnects) {
    scene.create("Plain", "p");
    scene.create("Plain", "q");
    scene.connect("p", "strength", "q", "strength");
    EXPECT_EQ(scene.parameter("p", "strength").source(), &scene.parameter("q", "strength"));
    EXPECT_NE(errorOf([&] { scene.connect("q", "strength", "p", "strength"); }), "no error");
    EXPECT_NE(errorOf([&] { scene.connect("q", "way", "p", "strength"); }), "no error");
    scene.disconnect("p", "strength");
    EXPECT_FALSE(scene.parameter("p", "strength").hasSource());
    EXPECT_EQ(
        errorOf([&] { scene.disconnect("p", "strenth"); }),
        "unknown parameter \"p.strenth\": did you mean \"strength\"? There are: strength, tint, place, way.");
}

TEST_F(SceneTest, RefusesChainsThatLoadingRefuses) {
    const auto name = [](int i) { return "p" + std::to_string(i); };
    for (int i = 0; i <= 102; ++i)
        scene.create("Plain", name(i));
    for (int i = 1; i <= 100; ++i)
        scene.connect(name(i), "way", name(i - 1), "way");
    EXPECT_EQ(
        errorOf([&] { scene.connect("p101", "way", "p100", "way"); }),
        "\"p101.way\" cannot follow \"p100.way\": it would follow another parameter through more than 100 "
        "others");
    EXPECT_FALSE(scene.parameter("p101", "way").hasSource());
    // From below, too: what follows the follower must not come to follow through too many.
    EXPECT_EQ(
        errorOf([&] { scene.connect("p0", "way", "p101", "way"); }),
        "\"p0.way\" cannot follow \"p101.way\": \"p100.way\" would follow another parameter through more "
        "than 100 others");
    EXPECT_FALSE(scene.parameter("p0", "way").hasSource());
    scene.disconnect("p50", "way");
    scene.connect("p101", "way", "p100", "way"); // 51 others now
    scene.connect("p50", "way", "p102", "way");
    EXPECT_EQ(
        errorOf([&] { scene.connect("p102", "way", "p49", "way"); }),
        "\"p102.way\" cannot follow \"p49.way\": \"p100.way\" would follow another parameter through more "
        "than 100 others");
    // A circle is refused as such, and so are other types, however long the chain.
    EXPECT_THAT(errorOf([&] { scene.connect("p102", "way", "p101", "way"); }),
                testing::HasSubstr("that one follows it already"));
    EXPECT_THAT(errorOf([&] { scene.connect("p102", "way", "p101", "strength"); }),
                testing::HasSubstr("is a double"));
}

TEST_F(SceneTest, RemovesAnObjectByItsOwnName) {
    for (const char* const name : {"p", "a name that is too long for the string itself to hold"}) {
        auto& object = scene.create("Plain", name);
        scene.remove(object.Name());
        EXPECT_EQ(scene.find(name), nullptr);
        scene.create("Plain", name);
        EXPECT_NE(scene.find(name), nullptr);
    }
    EXPECT_EQ(scene.objects().size(), 2u);
}

} // namespace
