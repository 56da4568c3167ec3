#include "tests/support/flat_scene.hpp"
#include "tests/support/gl_test.hpp"
#include "tests/support/loaded_module.hpp"

#include "shell/error.hpp"
#include "shell/render/renderer.hpp"

#include <array>
#include <cmath>
#include <epoxy/gl.h>
#include <gmock/gmock.h>

namespace {

using korl::Image;
using korl::Renderer;
using korl::RenderPath;
using korl::RenderSettings;
using korl::Scene;
using korl::View;
using korl::test::DownwardLight;
using korl::test::SetUpLight;
using testing::ElementsAre;
using testing::IsEmpty;
using Pixel = std::array<int, 4>;

constexpr int side = 16;

Pixel pixel(const Image& image, int x, int y) {
    const std::size_t at = 4 * (static_cast<std::size_t>(y) * static_cast<std::size_t>(image.width) +
                                static_cast<std::size_t>(x));
    return {image.pixels[at], image.pixels[at + 1], image.pixels[at + 2], image.pixels[at + 3]};
}

/// An object that is no light.
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

class RendererGLTest : public korl::test::GLTest {
protected:
    RendererGLTest() { korl::test::makeFlat(scene); }

    Image render(RenderPath path) { return renderer.render(scene, view, {side, side, path}); }
    /// The colour of the square in the middle of the picture.
    Pixel middle(RenderPath path) { return pixel(render(path), side / 2, side / 2); }

    SetUpLight& addSetUpLight(SetUpLight::SetUp set_up) {
        auto& light = dynamic_cast<SetUpLight&>(scene.create("SetUpLight"));
        light.set_up = std::move(set_up);
        return light;
    }
    DownwardLight& addDownwardLight() { return dynamic_cast<DownwardLight&>(scene.create("DownwardLight")); }

    korl::test::LoadedModule module;
    const korl::test::TestLightCreators creators;
    std::vector<std::string> reports;
    Scene scene;
    View view;
    Renderer renderer{context(), [this](const std::string& report) { reports.push_back(report); }};
};

/// Enables the context's OpenGL light as a white light from straight above.
void shineDown(Qelt::VRenderContext& context) {
    const GLenum light = GL_LIGHT0 + static_cast<GLenum>(context.lightNumber() - 1);
    constexpr std::array<GLfloat, 4> white{1, 1, 1, 1}, above{0, 0, 1, 0};
    glLightfv(light, GL_DIFFUSE, white.data());
    glLightfv(light, GL_POSITION, above.data());
    glEnable(light);
}

TEST_F(RendererGLTest, WithoutLightTheSceneIsBlackOnBothPaths) {
    EXPECT_EQ(middle(RenderPath::shader), (Pixel{0, 0, 0, 255}));
    EXPECT_EQ(middle(RenderPath::fixed), (Pixel{0, 0, 0, 255}));
}

TEST_F(RendererGLTest, AmbientLightGivesItsColorOnBothPaths) {
    scene.create("AmbientLight", "a");
    scene.setParameter("a", "Color", "0.2 0.4 0.8 0.3");
    EXPECT_EQ(middle(RenderPath::shader), (Pixel{51, 102, 204, 255}));
    EXPECT_EQ(middle(RenderPath::fixed), (Pixel{51, 102, 204, 255}));
    EXPECT_THAT(renderer.listUniforms(scene, view), ElementsAre("AmbientIntensity$$ = 0.2 0.4 0.8 0.3"));
}

TEST_F(RendererGLTest, AmbientLightsAddUpOnBothPaths) {
    scene.create("AmbientLight", "a");
    scene.create("AmbientLight", "b");
    scene.setParameter("a", "Color", "0.2 0 0.8 1");
    scene.setParameter("b", "Color", "0.2 0.4 0.8 1");
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
    scene.setParameter("a", "Color", "0 1 0 1");
    for (const RenderPath path : {RenderPath::shader, RenderPath::fixed}) {
        EXPECT_EQ(middle(path), (Pixel{0, 255, 0, 255}));
        EXPECT_EQ(pixel(renderer.render(scene, other, {side, side, path}), 1, 1), (Pixel{255, 0, 0, 255}));
    }
    EXPECT_EQ(renderer.shaderPath().compileCount(), 1u); // the same snippets make the same program
}

TEST_F(RendererGLTest, SteadyFramesCompileAndUploadNothing) {
    auto& downward = addDownwardLight();
    scene.create("AmbientLight", "a");
    render(RenderPath::shader);
    EXPECT_EQ(renderer.shaderPath().compileCount(), 1u);
    EXPECT_EQ(renderer.shaderPath().uploadCount(), 2u);
    for (int i = 0; i < 5; ++i)
        render(RenderPath::shader);
    EXPECT_EQ(renderer.shaderPath().compileCount(), 1u);
    EXPECT_EQ(renderer.shaderPath().uploadCount(), 2u);
    EXPECT_EQ(downward.snippets_fetched, 1);
    downward.strength = 0.5f;
    render(RenderPath::shader);
    EXPECT_EQ(renderer.shaderPath().compileCount(), 1u);
    EXPECT_EQ(renderer.shaderPath().uploadCount(), 3u); // the one that changed
}

TEST_F(RendererGLTest, ProgramsAreKeptForSnippetsThatComeAgain) {
    addDownwardLight();
    render(RenderPath::shader);
    scene.create("AmbientLight", "a");
    render(RenderPath::shader);
    EXPECT_EQ(renderer.shaderPath().compileCount(), 2u);
    scene.remove("a");
    EXPECT_EQ(middle(RenderPath::shader), (Pixel{255, 255, 255, 255}));
    scene.create("AmbientLight", "b");
    render(RenderPath::shader);
    EXPECT_EQ(renderer.shaderPath().compileCount(), 2u);
}

TEST_F(RendererGLTest, ProgramThatServesAnotherLightForgetsTheUniformsThatItDoesNotSet) {
    class Bare : public korl::test::CountedLight {
    public:
        Bare(const std::string& name, const Qelt::VCreationPreferences&)
            : CountedLight(name, korl::test::downward_snippet) {}
        void fillUniforms(Qelt::RenderNamespace::UniformMap&, Qelt::VRenderContext&) const override {}
    };
    const Qelt::VCreator<Bare, void> creator{std::string("Bare"), 0};
    addDownwardLight().strength = 0.25f;
    EXPECT_NEAR(middle(RenderPath::shader)[0], 64, 1);
    scene.remove("DownwardLight");
    scene.create("Bare");
    EXPECT_EQ(middle(RenderPath::shader)[0], 255); // as it is declared
    EXPECT_EQ(renderer.shaderPath().compileCount(), 1u);
}

TEST_F(RendererGLTest, ProgramThatServesAnotherLightGetsItsUniforms) {
    addDownwardLight().strength = 0.2f;
    EXPECT_EQ(middle(RenderPath::shader), (Pixel{51, 51, 51, 255}));
    scene.remove("DownwardLight");
    addDownwardLight().strength = 0.4f;
    EXPECT_EQ(middle(RenderPath::shader), (Pixel{102, 102, 102, 255}));
    EXPECT_EQ(renderer.shaderPath().compileCount(), 1u);
}

TEST_F(RendererGLTest, NotFiniteLightContributesNothingAndIsNamedOnce) {
    addDownwardLight().strength = std::numeric_limits<float>::infinity();
    addSetUpLight([](Qelt::VRenderContext& context) {
        shineDown(context);
        const std::array<GLfloat, 4> broken{std::numeric_limits<float>::quiet_NaN(), 0, 0, 1};
        glLightfv(GL_LIGHT0 + static_cast<GLenum>(context.lightNumber() - 1), GL_AMBIENT, broken.data());
    });
    scene.create("AmbientLight", "a");
    scene.setParameter("a", "Color", "0.2 0.2 0.2 1");
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

TEST_F(RendererGLTest, LightsThatShareASnippetAddUpInOneProgram) {
    // Two programs serve any number: one that unrolls up to three lights of a kind, one that loops.
    for (int count = 1; count <= 40; ++count) {
        auto& light = addDownwardLight();
        light.strength = static_cast<float>(count) / 1024;
        const int expected = static_cast<int>(std::lround(255.0 * count * (count + 1) / 2 / 1024));
        EXPECT_NEAR(middle(RenderPath::shader)[0], expected, 1) << count;
    }
    EXPECT_EQ(renderer.shaderPath().compileCount(), 4u);
}

TEST_F(RendererGLTest, LoopsTakeTheDeclaredValueWhereALightSetsNone) {
    for (int i = 0; i < 5; ++i) {
        auto& light = addDownwardLight();
        light.text = "uniform vec3 Unset$$ = vec3(0.125, 0.0, 0.0625);\n"
                     "void getLight_$$(in vec3 v, out vec3 a, out vec3 b, out vec3 c)\n"
                     "{ a = vec3(0); b = Unset$$; c = vec3(0); }\n";
    }
    const Pixel seen = middle(RenderPath::shader);
    EXPECT_NEAR(seen[0], 255 * 5 / 8, 1);
    EXPECT_EQ(seen[1], 0);
    EXPECT_NEAR(seen[2], 255 * 5 / 16, 1);
}

TEST_F(RendererGLTest, LoopsAndSingleLightsStandBesideEachOther) {
    scene.create("AmbientLight", "a");
    scene.setParameter("a", "Color", "0.125 0 0 1");
    for (int i = 0; i < 6; ++i)
        addDownwardLight().strength = 0.0625f;
    scene.create("AmbientLight", "b");
    scene.setParameter("b", "Color", "0 0 0.25 1");
    EXPECT_EQ(middle(RenderPath::shader), (Pixel{128, 96, 159, 255}));
    scene.setMuted("DownwardLight", true); // the loop goes one time less, in the same program
    const std::size_t compiled = renderer.shaderPath().compileCount();
    EXPECT_EQ(middle(RenderPath::shader), (Pixel{112, 80, 143, 255}));
    EXPECT_EQ(renderer.shaderPath().compileCount(), compiled);
    const std::size_t uploaded = renderer.shaderPath().uploadCount();
    EXPECT_EQ(middle(RenderPath::shader), (Pixel{112, 80, 143, 255}));
    EXPECT_EQ(renderer.shaderPath().uploadCount(), uploaded);
}

TEST_F(RendererGLTest, LoopsRefuseAUniformOfAnotherType) {
    for (int i = 0; i < 5; ++i)
        addDownwardLight().text = "uniform vec3 Strength$$ = vec3(1);\n"
                                  "void getLight_$$(in vec3 v, out vec3 a, out vec3 b, out vec3 c)\n"
                                  "{ a = vec3(0); b = Strength$$; c = vec3(0); }\n";
    try {
        render(RenderPath::shader);
        FAIL() << "a uniform of the wrong type was taken";
    } catch (const korl::Error& error) {
        EXPECT_STREQ(error.what(),
                     "light \"DownwardLight\": its uniform \"Strength$$\" = 1 is of another type than "
                     "its snippet declares");
    }
}

TEST_F(RendererGLTest, SnippetWithUniformsOfOtherTypesIsUnrolled) {
    for (int i = 0; i < 5; ++i)
        addDownwardLight().text = "uniform mat3 Unset$$ = mat3(0.125);\n"
                                  "void getLight_$$(in vec3 v, out vec3 a, out vec3 b, out vec3 c)\n"
                                  "{ a = vec3(0); b = Unset$$ * vec3(1); c = vec3(0); }\n";
    EXPECT_NEAR(middle(RenderPath::shader)[0], 255 * 5 / 8, 1);
}

TEST_F(RendererGLTest, ResultThatIsNotFiniteFromFiniteParametersIsNamedOnce) {
    scene.create("Torch", "corner"); // burns exactly at a vertex of the square
    scene.setParameter("corner", "location", "-9 9 0");
    scene.setParameter("corner", "elevation", "0");
    scene.create("Torch", "far"); // the square of the ratio of distances is beyond all floats
    scene.setParameter("far", "scaleDistance", "1e30");
    scene.create("Torch", "fine");
    for (int i = 0; i < 2; ++i)
        render(RenderPath::shader);
    ASSERT_EQ(reports.size(), 2u);
    EXPECT_THAT(reports[0], testing::StartsWith("light \"corner\" adds nothing on the shader path at 1 of 4 "
                                                "vertices: its result is not finite there, at (-9 9 0)"));
    EXPECT_THAT(reports[1], testing::StartsWith("light \"far\" adds nothing on the shader path: its result "
                                                "is not finite there, at (-9 -9 0)"));

    scene.setParameter("fine", "location", "9 9 0"); // found when the parameters lead there later, too
    scene.setParameter("fine", "elevation", "0");
    render(RenderPath::shader);
    ASSERT_EQ(reports.size(), 3u);
    EXPECT_THAT(reports[2], testing::StartsWith("light \"fine\""));
}

TEST_F(RendererGLTest, LightsThatAllChangeAreCheckedInTurn) {
    for (const char* const name : {"a", "b", "c"})
        scene.create("Torch", name);
    render(RenderPath::shader);
    for (const char* const name : {"a", "b", "c"}) {
        scene.setParameter(name, "location", "9 9 0"); // at a vertex of the square
        scene.setParameter(name, "elevation", "0");
    }
    for (std::size_t frames = 1; frames <= 3; ++frames) {
        render(RenderPath::shader);
        EXPECT_EQ(reports.size(), frames);
    }
    render(RenderPath::shader);
    EXPECT_EQ(reports.size(), 3u);
}

TEST_F(RendererGLTest, EyeThatComesToAVertexIsFound) {
    scene.create("Headlight", "h");
    render(RenderPath::shader);
    EXPECT_THAT(reports, IsEmpty());
    scene.camera->position = {9, 9, 0};
    scene.camera->target = {0, 0, -1};
    render(RenderPath::shader);
    ASSERT_EQ(reports.size(), 1u);
    EXPECT_THAT(reports[0], testing::StartsWith("light \"h\" adds nothing on the shader path at 1 of 4"));
}

TEST_F(RendererGLTest, MeshThatComesLaterIsCheckedForResultsThatAreNotFinite) {
    scene.create("Torch", "torch");
    scene.setParameter("torch", "location", "1 2 3");
    scene.setParameter("torch", "elevation", "0");
    render(RenderPath::shader);
    EXPECT_THAT(reports, IsEmpty());
    korl::Mesh mesh;
    mesh.positions = {{1, 2, 3}, {2, 2, 3}, {1, 3, 3}};
    mesh.normals.assign(3, {0, 0, 1});
    mesh.triangles = {0, 1, 2};
    scene.addMesh(mesh);
    render(RenderPath::shader);
    EXPECT_EQ(reports.size(), 1u);
}

TEST_F(RendererGLTest, BrokenSnippetIsReportedWithTheLight) {
    addDownwardLight().text =
        "void getLight_$$(in vec3 v, out vec3 a, out vec3 b, out vec3 c)\n{ a = b = c = wrong; }\n";
    try {
        const korl::test::ToleratedGLErrors
            refusal; // some drivers also call it an error of OpenGL's, some don't
        render(RenderPath::shader);
        FAIL() << "a snippet that does not compile was drawn";
    } catch (const korl::Error& error) {
        EXPECT_THAT(error.what(), testing::HasSubstr("\"DownwardLight\""));
        EXPECT_THAT(error.what(), testing::HasSubstr("{ a = b = c = wrong; }"));
    }
    scene.remove("DownwardLight");
    render(RenderPath::shader); // the renderer goes on
}

TEST_F(RendererGLTest, UniformOfAnotherTypeIsReportedWithTheLight) {
    addDownwardLight().text = "uniform vec3 Strength$$ = vec3(1);\n"
                              "void getLight_$$(in vec3 v, out vec3 a, out vec3 b, out vec3 c)\n"
                              "{ a = vec3(0); b = Strength$$; c = vec3(0); }\n";
    const korl::test::ExpectedGLErrors expected;
    try {
        render(RenderPath::shader);
        FAIL() << "a uniform of the wrong type was taken";
    } catch (const korl::Error& error) {
        EXPECT_STREQ(error.what(),
                     "light \"DownwardLight\": its uniform \"Strength$$\" = 1 is of another type than "
                     "its snippet declares");
    }
}

TEST_F(RendererGLTest, ShaderPathSetsUpOtherLightsWithNumberOneAndRestoresState) {
    std::vector<int> numbers;
    const auto dirty = [&](Qelt::VRenderContext& context) {
        numbers.push_back(context.lightNumber());
        shineDown(context);
        glEnable(GL_LIGHTING);
        glMatrixMode(GL_PROJECTION);
    };
    addSetUpLight(dirty);
    addSetUpLight(dirty);
    addDownwardLight();
    render(RenderPath::shader);
    EXPECT_THAT(numbers, ElementsAre(1, 1));
    EXPECT_FALSE(glIsEnabled(GL_LIGHT0));
    EXPECT_FALSE(glIsEnabled(GL_LIGHTING));
}

TEST_F(RendererGLTest, LightNumberAdvancesOnlyWhereALightWasEnabled) {
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

TEST_F(RendererGLTest, EveryFixedFrameStartsFromDefaultLightState) {
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

TEST_F(RendererGLTest, LightsPastTheDriversNumberAreLeftOutAndNamedOnce) {
    GLint most = 0;
    glGetIntegerv(GL_MAX_LIGHTS, &most);
    int calls = 0;
    for (int i = 0; i < most + 2; ++i)
        addSetUpLight([&](Qelt::VRenderContext& context) {
            ++calls;
            shineDown(context);
        });
    render(RenderPath::fixed);
    render(RenderPath::fixed);
    EXPECT_EQ(calls, 2 * most);
    EXPECT_THAT(reports,
                ElementsAre("left out on the fixed-function path: \"SetUpLight" + std::to_string(most + 1) +
                            "\", \"SetUpLight" + std::to_string(most + 2) + "\"; OpenGL has " +
                            std::to_string(most) + " lights here, and those before hold them all"));
}

TEST_F(RendererGLTest, LightsAreNamedAsLeftOutWhenTheyComeLaterAndNotAgain) {
    GLint most = 0;
    glGetIntegerv(GL_MAX_LIGHTS, &most);
    for (int i = 0; i < most; ++i)
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

TEST_F(RendererGLTest, OnlyThoseThatWouldHaveSetUpALightAreNamedAsLeftOut) {
    const Qelt::VCreator<Drawing, void> creator{std::string("Drawing"), 0};
    GLint most = 0;
    glGetIntegerv(GL_MAX_LIGHTS, &most);
    scene.create("Torch", "called"); // shows that a Torch needs none
    for (int i = 0; i < most; ++i)
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
                              std::to_string(most) + " lights here, and those before hold them all");
}

TEST_F(RendererGLTest, ConelessLightGivesItsAmbientColorAndIsOffWhileDrawing) {
    addSetUpLight([](Qelt::VRenderContext& context) {
        shineDown(context);
        constexpr std::array<GLfloat, 4> ambient{0.2f, 0.4f, 0.6f, 1};
        glLightfv(GL_LIGHT0, GL_AMBIENT, ambient.data());
        glLightf(GL_LIGHT0, GL_SPOT_CUTOFF, 0);
    });
    EXPECT_EQ(middle(RenderPath::fixed), (Pixel{51, 102, 153, 255})); // nothing of its diffuse white
}

TEST_F(RendererGLTest, ModelViewMatrixIsTheViewWhenLightsAreSetUp) {
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

TEST_F(RendererGLTest, UnitNormalsAreMadeOnTheFixedPath) {
    addSetUpLight(shineDown);
    EXPECT_EQ(middle(RenderPath::fixed), (Pixel{255, 255, 255, 255}));
    GLint local_viewer = 0;
    glGetIntegerv(GL_LIGHT_MODEL_LOCAL_VIEWER, &local_viewer);
    EXPECT_EQ(local_viewer, 1);
    EXPECT_TRUE(glIsEnabled(GL_NORMALIZE));
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
            EXPECT_STREQ(error.what(),
                         "light \"SetUpLight\" has made OpenGL report GL_INVALID_VALUE; its module has to be "
                         "mended");
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
