#include "tests/support/rendered_scene.hpp"

#include "shell/base/error.hpp"

#include <gmock/gmock.h>

namespace {

using korl::Image;
using korl::RenderPath;
using korl::View;
using korl::test::Pixel;
using korl::test::pixel;
using korl::test::shineDown;
using korl::test::side;
using testing::ElementsAre;
using testing::IsEmpty;

class RendererGLTest : public korl::test::RenderedScene {};

TEST_F(RendererGLTest, WithoutLightTheSceneIsBlackOnBothPaths) {
    EXPECT_EQ(middle(RenderPath::shader), (Pixel{0, 0, 0, 255}));
    EXPECT_EQ(middle(RenderPath::fixed), (Pixel{0, 0, 0, 255}));
}

TEST_F(RendererGLTest, AmbientLightGivesItsColorOnBothPaths) {
    scene.create("AmbientLight", "a");
    scene.setParameterText("a", "Color", "0.2 0.4 0.8 0.3");
    EXPECT_EQ(middle(RenderPath::shader), (Pixel{51, 102, 204, 255}));
    EXPECT_EQ(middle(RenderPath::fixed), (Pixel{51, 102, 204, 255}));
    EXPECT_THAT(renderer.listUniforms(scene, view), ElementsAre("AmbientIntensity$$ = 0.2 0.4 0.8 0.3"));
}

TEST_F(RendererGLTest, AmbientLightsAddUpOnBothPaths) {
    scene.create("AmbientLight", "a");
    scene.create("AmbientLight", "b");
    scene.setParameterText("a", "Color", "0.2 0 0.8 1");
    scene.setParameterText("b", "Color", "0.2 0.4 0.8 1");
    EXPECT_EQ(middle(RenderPath::shader), (Pixel{102, 102, 255, 255})); // clamped, not wrapped
    EXPECT_EQ(middle(RenderPath::fixed), (Pixel{102, 102, 255, 255}));
}

TEST_F(RendererGLTest, BothPathsStandSideBySide) {
    addDownwardLight(); // sets up no fixed-function light
    const Image image = render(RenderPath::both);
    ASSERT_EQ(image.width, 2 * side);
    ASSERT_EQ(image.height, side);
    EXPECT_EQ(pixel(image, side / 2, side / 2), (Pixel{255, 255, 255, 255}));
    EXPECT_EQ(pixel(image, side + side / 2, side / 2), (Pixel{0, 0, 0, 255}));
}

TEST_F(RendererGLTest, BackgroundShowsBesideTheScene) {
    scene.background = {1, 0, 0, 0.2f};
    scene.camera->target = {100, 0, 5};
    EXPECT_EQ(middle(RenderPath::shader), (Pixel{255, 0, 0, 51}));
}

TEST_F(RendererGLTest, PictureIsUpright) {
    scene.camera->position = {0, 9, 5}; // sees the edge of the square at y = 9, and nothing beyond it
    scene.camera->target = {0, 9, 0};
    addDownwardLight();
    scene.background = {0, 0, 1, 1};
    const Image image = render(RenderPath::shader);
    EXPECT_EQ(pixel(image, side / 2, 0), (Pixel{0, 0, 255, 255}));
    EXPECT_EQ(pixel(image, side / 2, side - 1), (Pixel{255, 255, 255, 255}));
}

TEST_F(RendererGLTest, ViewsHaveValuesOfTheirOwn) {
    auto& light = scene.create("AmbientLight", "a");
    View other;
    light.findParameter("Color")->getLocalValue(other.pool(), "", true)->setValueFromText("1 0 0 1");
    scene.setParameterText("a", "Color", "0 1 0 1");
    for (const RenderPath path : {RenderPath::shader, RenderPath::fixed}) {
        EXPECT_EQ(middle(path), (Pixel{0, 255, 0, 255}));
        EXPECT_EQ(pixel(renderer.render(scene, other, {side, side, path}), 1, 1), (Pixel{255, 0, 0, 255}));
    }
    EXPECT_EQ(renderer.shaderPath().compileCount(), 1u); // the same snippets make the same program
}

TEST_F(RendererGLTest, NotFiniteLightContributesNothingAndIsNamedOnce) {
    addDownwardLight().strength = std::numeric_limits<float>::infinity();
    addSetUpLight([](Qelt::VRenderContext& context) {
        shineDown(context);
        const std::array<GLfloat, 4> broken{std::numeric_limits<float>::quiet_NaN(), 0, 0, 1};
        glLightfv(GL_LIGHT0 + static_cast<GLenum>(context.lightNumber() - 1), GL_AMBIENT, broken.data());
    });
    scene.create("AmbientLight", "a");
    scene.setParameterText("a", "Color", "0.2 0.2 0.2 1");
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(middle(RenderPath::shader), (Pixel{51, 51, 51, 255}));
        EXPECT_EQ(middle(RenderPath::fixed), (Pixel{51, 51, 51, 255}));
    }
    EXPECT_THAT(
        reports,
        ElementsAre("light \"DownwardLight\" adds nothing on the shader path: its \"Strength$$\" is not "
                    "finite (inf); check its parameters",
                    "light \"DownwardLight\" adds nothing on the fixed-function path: its type sets up no "
                    "OpenGL light; the shader path shows it",
                    "light \"SetUpLight\" adds nothing on the fixed-function path: what it gives OpenGL is "
                    "not finite; check its parameters"));
}

TEST_F(RendererGLTest, SizeBeyondTheDriversLimitIsRefused) {
    try {
        renderer.render(scene, view, {1 << 20, 16, RenderPath::shader});
        FAIL() << "a picture of a million pixels' width was drawn";
    } catch (const korl::Error& error) {
        EXPECT_THAT(error.what(), testing::HasSubstr("1048576"));
    }
}

TEST_F(RendererGLTest, ErrorInALightsCallsIsReported) {
    addSetUpLight([](Qelt::VRenderContext&) { glLightf(GL_LIGHT0, GL_SPOT_CUTOFF, 100); });
    for (const RenderPath path : {RenderPath::shader, RenderPath::fixed}) {
        const korl::test::ExpectedGLErrors expected;
        try {
            render(path);
            ADD_FAILURE() << "the light's error went unnoticed";
        } catch (const korl::Error& error) {
            EXPECT_STREQ(error.what(), "light \"SetUpLight\" has made OpenGL report GL_INVALID_VALUE; report "
                                       "it to the author of the module");
        }
    }
}

TEST_F(RendererGLTest, NoLightOutlastsItsModule) {
    scene.create("AmbientLight", "a");
    render(RenderPath::both);
    EXPECT_THAT(view.sources(), IsEmpty());
    module.unload();
    EXPECT_FALSE(korl::test::LoadedModule::isInProcess());
    EXPECT_THAT(scene.objects(), IsEmpty());
    EXPECT_EQ(middle(RenderPath::shader), (Pixel{0, 0, 0, 255}));
}

} // namespace
