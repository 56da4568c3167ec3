#include "tests/support/rendered_scene.hpp"

#include "shell/base/error.hpp"

#include <cmath>
#include <gmock/gmock.h>

namespace {

using korl::RenderPath;
using korl::test::Pixel;
using korl::test::shineDown;
using testing::ElementsAre;
using testing::IsEmpty;

class ShaderPathGLTest : public korl::test::RenderedScene {};

TEST_F(ShaderPathGLTest, SteadyFramesCompileAndUploadNothing) {
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

TEST_F(ShaderPathGLTest, ProgramsAreKeptForSnippetsThatComeAgain) {
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

TEST_F(ShaderPathGLTest, ProgramThatServesAnotherLightForgetsTheUniformsThatItDoesNotSet) {
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

TEST_F(ShaderPathGLTest, ProgramThatServesAnotherLightGetsItsUniforms) {
    addDownwardLight().strength = 0.2f;
    EXPECT_EQ(middle(RenderPath::shader), (Pixel{51, 51, 51, 255}));
    scene.remove("DownwardLight");
    addDownwardLight().strength = 0.4f;
    EXPECT_EQ(middle(RenderPath::shader), (Pixel{102, 102, 102, 255}));
    EXPECT_EQ(renderer.shaderPath().compileCount(), 1u);
}

TEST_F(ShaderPathGLTest, LightsThatShareASnippetAddUpInOneProgram) {
    // Two programs serve any number: one that unrolls up to three lights of a kind, one that loops.
    for (int count = 1; count <= 40; ++count) {
        auto& light = addDownwardLight();
        light.strength = static_cast<float>(count) / 1024;
        const int expected = static_cast<int>(std::lround(255.0 * count * (count + 1) / 2 / 1024));
        EXPECT_NEAR(middle(RenderPath::shader)[0], expected, 1) << count;
    }
    EXPECT_EQ(renderer.shaderPath().compileCount(), 4u);
}

TEST_F(ShaderPathGLTest, LoopsTakeTheDeclaredValueWhereALightSetsNone) {
    for (int i = 0; i < 5; ++i) {
        auto& light = addDownwardLight();
        light.text = "uniform vec3 Unset$$ = vec3(0.125, 0.0, 0.0625);\n"
                     "void getLight_$$(in vec3 v, out vec3 a, out vec3 b, out vec3 c)\n"
                     "{ a = vec3(0); b = Unset$$; c = vec3(0); }\n";
    }
    const Pixel seen = middle(RenderPath::shader);
    EXPECT_NEAR(seen[0], 255.0 * 5 / 8, 1);
    EXPECT_EQ(seen[1], 0);
    EXPECT_NEAR(seen[2], 255.0 * 5 / 16, 1);
}

TEST_F(ShaderPathGLTest, LoopsAndSingleLightsStandBesideEachOther) {
    scene.create("AmbientLight", "a");
    scene.setParameterText("a", "Color", "0.125 0 0 1");
    for (int i = 0; i < 6; ++i)
        addDownwardLight().strength = 0.0625f;
    scene.create("AmbientLight", "b");
    scene.setParameterText("b", "Color", "0 0 0.25 1");
    EXPECT_EQ(middle(RenderPath::shader), (Pixel{128, 96, 159, 255}));
    scene.setMuted("DownwardLight", true); // the loop goes one time less, in the same program
    const std::size_t compiled = renderer.shaderPath().compileCount();
    EXPECT_EQ(middle(RenderPath::shader), (Pixel{112, 80, 143, 255}));
    EXPECT_EQ(renderer.shaderPath().compileCount(), compiled);
    const std::size_t uploaded = renderer.shaderPath().uploadCount();
    EXPECT_EQ(middle(RenderPath::shader), (Pixel{112, 80, 143, 255}));
    EXPECT_EQ(renderer.shaderPath().uploadCount(), uploaded);
}

TEST_F(ShaderPathGLTest, LoopsRefuseAUniformOfAnotherType) {
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

TEST_F(ShaderPathGLTest, SnippetWithUniformsOfOtherTypesIsUnrolled) {
    for (int i = 0; i < 5; ++i)
        addDownwardLight().text = "uniform mat3 Unset$$ = mat3(0.125);\n"
                                  "void getLight_$$(in vec3 v, out vec3 a, out vec3 b, out vec3 c)\n"
                                  "{ a = vec3(0); b = Unset$$ * vec3(1); c = vec3(0); }\n";
    EXPECT_NEAR(middle(RenderPath::shader)[0], 255.0 * 5 / 8, 1);
}

TEST_F(ShaderPathGLTest, ResultThatIsNotFiniteFromFiniteParametersIsNamedOnce) {
    scene.create("Torch", "corner"); // burns exactly at a vertex of the square
    scene.setParameterText("corner", "location", "-9 9 0");
    scene.setParameterText("corner", "elevation", "0");
    scene.create("Torch", "far"); // the square of the ratio of distances is beyond all floats
    scene.setParameterText("far", "scaleDistance", "1e30");
    scene.create("Torch", "fine");
    for (int i = 0; i < 2; ++i)
        render(RenderPath::shader);
    ASSERT_EQ(reports.size(), 2u);
    EXPECT_THAT(reports[0], testing::StartsWith("light \"corner\" adds nothing on the shader path at 1 of 4 "
                                                "vertices: its result is not finite there, at (-9 9 0)"));
    EXPECT_THAT(reports[1], testing::StartsWith("light \"far\" adds nothing on the shader path: its result "
                                                "is not finite there, at (-9 -9 0)"));

    scene.setParameterText("fine", "location", "9 9 0"); // found when the parameters lead there later, too
    scene.setParameterText("fine", "elevation", "0");
    render(RenderPath::shader);
    ASSERT_EQ(reports.size(), 3u);
    EXPECT_THAT(reports[2], testing::StartsWith("light \"fine\""));
}

TEST_F(ShaderPathGLTest, LightsThatAllChangeAreCheckedInTurn) {
    for (const char* const name : {"a", "b", "c"})
        scene.create("Torch", name);
    render(RenderPath::shader);
    for (const char* const name : {"a", "b", "c"}) {
        scene.setParameterText(name, "location", "9 9 0"); // at a vertex of the square
        scene.setParameterText(name, "elevation", "0");
    }
    for (std::size_t frames = 1; frames <= 3; ++frames) {
        render(RenderPath::shader);
        EXPECT_EQ(reports.size(), frames);
    }
    render(RenderPath::shader);
    EXPECT_EQ(reports.size(), 3u);
}

TEST_F(ShaderPathGLTest, EyeThatComesToAVertexIsFound) {
    scene.create("Headlight", "h");
    render(RenderPath::shader);
    EXPECT_THAT(reports, IsEmpty());
    scene.camera->position = {9, 9, 0};
    scene.camera->target = {0, 0, -1};
    render(RenderPath::shader);
    ASSERT_EQ(reports.size(), 1u);
    EXPECT_THAT(reports[0], testing::StartsWith("light \"h\" adds nothing on the shader path at 1 of 4"));
}

TEST_F(ShaderPathGLTest, MeshThatComesLaterIsCheckedForResultsThatAreNotFinite) {
    scene.create("Torch", "torch");
    scene.setParameterText("torch", "location", "1 2 3");
    scene.setParameterText("torch", "elevation", "0");
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

TEST_F(ShaderPathGLTest, BrokenSnippetIsReportedWithTheLight) {
    addDownwardLight().text =
        "void getLight_$$(in vec3 v, out vec3 a, out vec3 b, out vec3 c)\n{ a = b = c = wrong; }\n";
    try {
        const korl::test::ToleratedGLErrors refusal; // some drivers call it an error of OpenGL's, too
        render(RenderPath::shader);
        FAIL() << "a snippet that does not compile was drawn";
    } catch (const korl::Error& error) {
        EXPECT_THAT(error.what(), testing::HasSubstr("\"DownwardLight\""));
        EXPECT_THAT(error.what(), testing::HasSubstr("{ a = b = c = wrong; }"));
    }
    scene.remove("DownwardLight");
    render(RenderPath::shader); // the renderer goes on
}

TEST_F(ShaderPathGLTest, UniformOfAnotherTypeIsReportedWithTheLight) {
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

TEST_F(ShaderPathGLTest, ShaderPathSetsUpOtherLightsWithNumberOneAndRestoresState) {
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

/// A light with a snippet and uniforms of a test's own.
struct WordyLight : korl::test::CountedLight {
    WordyLight(const std::string& name, const Qelt::VCreationPreferences&)
        : CountedLight(name, next_snippet) {}

    void fillUniforms(Qelt::RenderNamespace::UniformMap& uniforms, Qelt::VRenderContext&) const override {
        for (const std::string& name : next_uniforms)
            Qelt::RenderNamespace::writeUniform(uniforms, name.c_str(), 1.0f);
    }

    static inline std::string next_snippet;
    static inline std::vector<std::string> next_uniforms;
};

const std::string no_light_body = "void getLight_$$(in vec3 v, out vec3 l, out vec3 i, out vec3 s)\n"
                                  "{ l = i = s = vec3(0); }\n";

TEST_F(ShaderPathGLTest, UniformsThatALightAndItsSnippetDoNotShareAreReportedOnceByName) {
    const Qelt::VCreator<WordyLight, void> creator{std::string("WordyLight"), 0};
    const std::string writes = "light \"WordyLight\" writes the uniform",
                      never = "light \"WordyLight\" never writes ";
    const std::string undeclared = ", which its snippet does not declare: the shader gets nothing of it";
    const std::string unwritten = ", which its snippet declares: the shader has the declared value";
    struct Row {
        std::string declarations;
        std::vector<std::string> written, reports;
    };
    const std::vector<Row> table{
        {"uniform float A$$ = 1.0;\n", {"A$$"}, {}},
        {"", {"A$$"}, {writes + " \"A$$\"" + undeclared}},
        {"uniform float A$$;\n", {}, {never + "the uniform \"A$$\"" + unwritten}},
        {"// uniform float A$$;\n", {"A$$", "B$$"}, {writes + "s \"A$$\" and \"B$$\"" + undeclared}},
        {"uniform float A$$, B$$; uniform vec3 C$$;\n",
         {"D"},
         {writes + " \"D\"" + undeclared, never + "the uniforms \"A$$\", \"B$$\" and \"C$$\"" + unwritten}},
        {"uniform float a$$;\n",
         {"A$$"}, // names are told apart by their case
         {writes + " \"A$$\"" + undeclared, never + "the uniform \"a$$\"" + unwritten}},
        {"uniform float A$$[2]; struct S { float b; }; uniform S C$$;\n", {"A$$[1]", "C$$.b"}, {}},
        {"#define DECLARE(name) uniform float name\nDECLARE(A$$);\n", {"A$$"}, {}},
        {"#define ANY\n", {"A$$"}, {writes + " \"A$$\"" + undeclared}},
    };
    for (const Row& row : table) {
        WordyLight::next_snippet = row.declarations + no_light_body;
        WordyLight::next_uniforms = row.written;
        scene.create("WordyLight");
        reports.clear();
        for (int frame = 0; frame < 3; ++frame)
            render(RenderPath::shader);
        EXPECT_EQ(reports, row.reports) << row.declarations;
        scene.remove("WordyLight");
    }
}

TEST_F(ShaderPathGLTest, UniformsOfManyLightsOfATypeAreReportedForEach) {
    const Qelt::VCreator<WordyLight, void> creator{std::string("WordyLight"), 0};
    WordyLight::next_snippet = "uniform float A$$ = 1.0;\n" + no_light_body;
    WordyLight::next_uniforms = {"B$$"};
    for (int i = 0; i < 6; ++i) // evaluated in a loop
        scene.create("WordyLight");
    render(RenderPath::shader);
    EXPECT_EQ(reports.size(), 12u);
    for (const auto& object : std::vector(scene.objects()))
        scene.remove(object->Name());
}

TEST_F(ShaderPathGLTest, ModulesOwnLightsShareAllUniformsWithTheirSnippets) {
    for (const Qelt::VCreatorBase* const type : Qelt::VCreatorBase::catalogue())
        if (type->Name() != "SetUpLight")
            scene.create(type->Name());
    EXPECT_GE(scene.objects().size(), 8u);
    render(RenderPath::shader);
    EXPECT_THAT(reports, IsEmpty());
}

} // namespace
