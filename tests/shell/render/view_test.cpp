#include "tests/support/flat_scene.hpp"

#include "shell/base/error.hpp"
#include "shell/render/shader_path.hpp"
#include "shell/render/view.hpp"

#include <gmock/gmock.h>

namespace {

using korl::Scene;
using korl::View;
using korl::test::DownwardLight;
using testing::ElementsAre;

std::vector<std::string> memberNames(const View& view) {
    std::vector<std::string> names;
    for (const View::Member& member : view.members())
        names.push_back(member.object->Name());
    return names;
}

/// A light of a given priority.
template <int Priority>
struct Ranked : korl::test::CountedLight {
    Ranked(const std::string& name, const Qelt::VCreationPreferences&)
        : CountedLight(name, korl::test::downward_snippet, Priority) {}
};

class ViewTest : public testing::Test {
protected:
    const korl::test::TestLightCreators creators;
    Scene scene;
    View view;
};

TEST_F(ViewTest, GathersObjectsByPriorityThenCreation) {
    const Qelt::VCreator<Ranked<5>, void> late(std::string("Late"), 0);
    const Qelt::VCreator<Ranked<-5>, void> early(std::string("Early"), 0);
    Scene local;
    for (const char* const type : {"Late", "DownwardLight", "Early", "DownwardLight"})
        local.create(type);
    view.beginFrame(local, 0);
    EXPECT_THAT(memberNames(view), ElementsAre("Early", "DownwardLight", "DownwardLight2", "Late"));
    view.endFrame();
}

TEST_F(ViewTest, KnowsWhoseTheLightSourcesAre) {
    scene.create("DownwardLight", "a");
    scene.create("SetUpLight", "none");
    scene.create("DownwardLight", "b");
    view.beginFrame(scene, 0);
    ASSERT_EQ(view.sources().size(), 2u);
    EXPECT_EQ(view.ownerOf(0).Name(), "a");
    EXPECT_EQ(view.ownerOf(1).Name(), "b");
    EXPECT_THROW(view.ownerOf(2), std::out_of_range);
    view.endFrame();
    EXPECT_TRUE(view.sources().empty());
}

TEST_F(ViewTest, FollowsTheSceneFromFrameToFrame) {
    scene.create("DownwardLight", "a");
    view.beginFrame(scene, 0);
    view.endFrame();
    scene.create("DownwardLight", "b");
    scene.remove("a");
    view.beginFrame(scene, 0);
    EXPECT_THAT(memberNames(view), ElementsAre("b"));
    view.endFrame();
    Scene other;
    view.beginFrame(other, 0);
    EXPECT_THAT(memberNames(view), testing::IsEmpty());
    view.endFrame();
}

TEST_F(ViewTest, LeavesOutWhatIsMutedOrOutshone) {
    for (const char* const name : {"a", "b", "c"})
        scene.create("DownwardLight", name);
    const auto shown = [&] {
        view.beginFrame(scene, 0);
        const auto names = memberNames(view);
        view.endFrame();
        return names;
    };
    scene.setMuted("b", true);
    EXPECT_THAT(shown(), ElementsAre("a", "c"));
    scene.solo("b");
    EXPECT_THAT(shown(), ElementsAre("b"));
    scene.solo("");
    scene.setMuted("b", false);
    EXPECT_THAT(shown(), ElementsAre("a", "b", "c"));
}

TEST_F(ViewTest, FillsTheUniformsOfShaderLightsOnce) {
    auto& light = dynamic_cast<DownwardLight&>(scene.create("DownwardLight", "a"));
    view.beginFrame(scene, 0);
    EXPECT_EQ(light.fills, 0);
    view.fillUniforms();
    EXPECT_EQ(light.fills, 1);
    EXPECT_EQ(std::get<float>(view.sources()[0]->uniforms().at("Strength$$")), 1);
    view.endFrame();
}

TEST_F(ViewTest, AssemblesTheFramesShader) {
    scene.create("DownwardLight", "a");
    view.beginFrame(scene, 0);
    const korl::AssembledShader shader = korl::assembleFrame(view);
    ASSERT_EQ(shader.sections.size(), 1u);
    EXPECT_EQ(shader.sections[0].light_name, "a");
    EXPECT_THAT(shader.fragment, testing::HasSubstr(korl::applySuffix(korl::test::downward_snippet,
                                                                      shader.sections[0].suffix)));
    view.endFrame();
}

TEST_F(ViewTest, FailedUpdateIsAnErrorThatNamesTheObject) {
    struct Failing : korl::test::SetUpLight {
        using SetUpLight::SetUpLight;
        bool update(Qelt::VRequest&, double) override { return false; }
    };
    const Qelt::VCreator<Failing, void> creator(std::string("Failing"), 0);
    Scene local;
    local.create("Failing", "f");
    try {
        view.beginFrame(local, 0);
        FAIL() << "a failed update went unnoticed";
    } catch (const korl::Error& error) {
        EXPECT_STREQ(error.what(), "\"f\" could not be brought up to date for the rendering");
    }
}

} // namespace
