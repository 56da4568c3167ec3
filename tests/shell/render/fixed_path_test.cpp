#include "tests/support/rendered_scene.hpp"

#include <gmock/gmock.h>

namespace {

using korl::RenderPath;
using korl::test::Pixel;
using korl::test::shineDown;
using testing::ElementsAre;

/// An object that is not a light.
struct Drawing : Qelt::RenderAble {
    Drawing(const std::string& name, const Qelt::VCreationPreferences& preferences)
        : RenderAble(name, 0, preferences) {}
    bool environment_render(Qelt::VRenderContext&) const override {
        ++calls;
        return true;
    }
    using RenderAble::environment_render;
    static inline int calls = 0;
};

class FixedPathGLTest : public korl::test::RenderedScene {};

TEST_F(FixedPathGLTest, LightNumberAdvancesOnlyWhereALightWasEnabled) {
    std::vector<int> numbers;
    const auto silent = [&](Qelt::VRenderContext& context) { numbers.push_back(context.lightNumber()); };
    const auto shining = [&](Qelt::VRenderContext& context) {
        numbers.push_back(context.lightNumber());
        shineDown(context);
    };
    addSetUpLight(shining);
    addSetUpLight(silent);
    addSetUpLight(shining);
    EXPECT_EQ(middle(RenderPath::fixed), (Pixel{255, 255, 255, 255}));
    EXPECT_THAT(numbers, ElementsAre(1, 2, 2));
}

TEST_F(FixedPathGLTest, EveryFixedFrameStartsFromDefaultLightState) {
    bool first = true;
    addSetUpLight([&](Qelt::VRenderContext& context) {
        shineDown(context);
        if (first) { // leaves behind what would darken a later frame
            glLightf(GL_LIGHT0, GL_SPOT_CUTOFF, 1);
            glLightf(GL_LIGHT0, GL_CONSTANT_ATTENUATION, 1000);
            glEnable(GL_LIGHT5);
        }
        first = false;
    });
    render(RenderPath::fixed);
    EXPECT_EQ(middle(RenderPath::fixed), (Pixel{255, 255, 255, 255}));
    EXPECT_FALSE(glIsEnabled(GL_LIGHT5));
}

TEST_F(FixedPathGLTest, LightsPastTheDriversNumberAreLeftOutAndNamedOnce) {
    GLint max_lights = 0;
    glGetIntegerv(GL_MAX_LIGHTS, &max_lights);
    int calls = 0;
    for (int i = 0; i < max_lights + 2; ++i)
        addSetUpLight([&](Qelt::VRenderContext& context) {
            ++calls;
            shineDown(context);
        });
    render(RenderPath::fixed);
    render(RenderPath::fixed);
    EXPECT_EQ(calls, 2 * max_lights);
    EXPECT_THAT(reports,
                ElementsAre("left out on the fixed-function path: \"SetUpLight" +
                            std::to_string(max_lights + 1) + "\", \"SetUpLight" +
                            std::to_string(max_lights + 2) + "\"; OpenGL has " + std::to_string(max_lights) +
                            " lights here, and those before hold them all"));
}

TEST_F(FixedPathGLTest, LightsAreNamedAsLeftOutWhenTheyComeLaterAndNotAgain) {
    GLint max_lights = 0;
    glGetIntegerv(GL_MAX_LIGHTS, &max_lights);
    for (int i = 0; i < max_lights; ++i)
        scene.create("DistanceLight");
    for (const char* const name :
         {"x", "y", "z"}) { // one after the other, in the same place of memory perhaps
        scene.create("DistanceLight", name);
        render(RenderPath::fixed);
        scene.remove(name);
    }
    scene.create("DistanceLight", "last");
    for (const bool muted : {false, true, false, true, false}) {
        scene.setMuted("last", muted);
        render(RenderPath::fixed);
    }
    ASSERT_EQ(reports.size(), 4u);
    for (std::size_t i = 0; i < 4; ++i)
        EXPECT_THAT(reports[i], testing::HasSubstr(std::array{"\"x\"", "\"y\"", "\"z\"", "\"last\""}[i]));
}

TEST_F(FixedPathGLTest, OnlyThoseThatWouldHaveSetUpALightAreNamedAsLeftOut) {
    const Qelt::VCreator<Drawing, void> creator{std::string("Drawing"), 0};
    GLint max_lights = 0;
    glGetIntegerv(GL_MAX_LIGHTS, &max_lights);
    scene.create("Torch", "called"); // shows that a Torch needs none
    for (int i = 0; i < max_lights; ++i)
        scene.create("DistanceLight");
    scene.create("Torch", "uncalled");
    scene.create("AmbientLight", "a");
    scene.create("DistanceLight", "d");
    scene.create("Drawing");
    render(RenderPath::fixed);
    EXPECT_EQ(Drawing::calls, 0);
    ASSERT_EQ(reports.size(), 3u);
    EXPECT_THAT(reports[0], testing::StartsWith("light \"called\" adds nothing on the fixed-function path"));
    EXPECT_THAT(reports[1],
                testing::StartsWith("light \"uncalled\" adds nothing on the fixed-function path"));
    EXPECT_EQ(reports[2], "left out on the fixed-function path: \"a\", \"d\"; OpenGL has " +
                              std::to_string(max_lights) + " lights here, and those before hold them all");
}

TEST_F(FixedPathGLTest, ConelessLightGivesItsAmbientColorAndIsOffWhileDrawing) {
    addSetUpLight([](Qelt::VRenderContext& context) {
        shineDown(context);
        constexpr std::array<GLfloat, 4> ambient{0.2f, 0.4f, 0.6f, 1};
        glLightfv(GL_LIGHT0, GL_AMBIENT, ambient.data());
        glLightf(GL_LIGHT0, GL_SPOT_CUTOFF, 0);
    });
    EXPECT_EQ(middle(RenderPath::fixed), (Pixel{51, 102, 153, 255})); // nothing of its diffuse white
}

TEST_F(FixedPathGLTest, ModelViewMatrixIsTheViewWhenLightsAreSetUp) {
    scene.camera->position = {0, 5, 0}; // from the side: a light from above must stay above
    scene.camera->up = {0, 0, 1};
    std::array<GLfloat, 16> matrix{};
    addSetUpLight([&](Qelt::VRenderContext&) {
        glMatrixMode(GL_MODELVIEW);
        glLoadIdentity(); // must not matter to the next one
    });
    addSetUpLight([&](Qelt::VRenderContext&) { glGetFloatv(GL_MODELVIEW_MATRIX, matrix.data()); });
    render(RenderPath::fixed);
    const glm::dmat4 view_matrix = scene.camera->view();
    for (int i = 0; i < 16; ++i)
        EXPECT_FLOAT_EQ(matrix[static_cast<std::size_t>(i)], static_cast<float>(view_matrix[i / 4][i % 4]));
}

TEST_F(FixedPathGLTest, UnitNormalsAreMadeOnTheFixedPath) {
    addSetUpLight(shineDown);
    EXPECT_EQ(middle(RenderPath::fixed), (Pixel{255, 255, 255, 255}));
    GLint local_viewer = 0;
    glGetIntegerv(GL_LIGHT_MODEL_LOCAL_VIEWER, &local_viewer);
    EXPECT_EQ(local_viewer, 1);
    EXPECT_TRUE(glIsEnabled(GL_NORMALIZE));
}

} // namespace
