#include "shell/explain/explain.hpp"

#include "tests/support/counted_light.hpp"
#include "tests/support/gl_test.hpp"

#include "shell/base/error.hpp"
#include "shell/explain/explanation_text.hpp"
#include "shell/explain/number_text.hpp"
#include "shell/mesh/builtin_scene.hpp"
#include "shell/session/shell.hpp"

#include <sorvik/component_text.hpp>
#include <sorvik/creator.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace {

using korl::Explanation;
using korl::FindingKind;
using korl::LightExplanation;
using korl::RenderPath;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

constexpr int width = 160, height = 120;

class ExplainGLTest : public korl::test::GLTest {
protected:
    ExplainGLTest() { shell.plugins().load(TOVEK_LIGHT_MODULE); }

    void useBuiltinScene() {
        for (korl::Mesh& mesh : korl::builtinScene())
            shell.scene().addMesh(std::move(mesh));
    }

    /// A square around the origin in the plane z = 0, seen from straight above.
    void useFloor() {
        korl::Mesh square;
        square.name = "floor";
        square.positions = {{-1, -1, 0}, {1, -1, 0}, {1, 1, 0}, {-1, 1, 0}};
        square.normals.assign(4, {0, 0, 1});
        square.triangles = {0, 1, 2, 0, 2, 3};
        shell.scene().addMesh(square);
        shell.scene().camera = korl::Camera{{0, 0, 5}, {0, 0, 0}, {0, 1, 0}, 30};
    }

    void add(const std::string& type, const std::string& name,
             const std::vector<std::pair<std::string, std::string>>& parameters = {}) {
        shell.scene().create(type, name);
        for (const auto& [parameter, value] : parameters)
            shell.scene().setParameterText(name, parameter, value);
    }

    Explanation explain(RenderPath path = RenderPath::shader,
                        std::optional<std::pair<int, int>> pixel = std::nullopt,
                        const std::string& view = {}) {
        return korl::explain(shell, {width, height, path, pixel, view});
    }

    korl::Shell shell;
};

std::vector<FindingKind> kindsOf(const LightExplanation& light) {
    std::vector<FindingKind> kinds;
    for (const korl::Finding& finding : light.findings)
        kinds.push_back(finding.kind);
    return kinds;
}

TEST_F(ExplainGLTest, AttenuationIsThatOfTheTorchsFormula) {
    useFloor();
    add("Torch", "torch", {{"elevation", "4"}, {"scaleDistance", "2"}, {"intensity", "0.8"}});
    const Explanation explanation = explain(RenderPath::shader, std::pair(width / 2, height / 2));
    const LightExplanation& torch = explanation.lights.at(0);
    // a / (1 + a) with a = (2 / 4)²
    EXPECT_NEAR(torch.attenuation.value(), 0.2, 1e-3);
    EXPECT_NEAR(torch.distance.value(), 4, 0.05);
    EXPECT_NEAR(torch.intensity.value(), 0.16, 1e-3);
}

TEST_F(ExplainGLTest, LightsThatDoNotWeakenHaveNoAttenuation) {
    useFloor();
    add("Sun", "sun");
    add("Headlight", "lamp");
    add("AmbientLight", "fill");
    for (const LightExplanation& light : explain().lights)
        EXPECT_FALSE(light.attenuation) << light.name;
}

TEST_F(ExplainGLTest, BrightPictureIsNotDark) {
    useFloor();
    add("AmbientLight", "fill", {{"Color", "0.5 0.5 0.5 1"}});
    const Explanation explanation = explain();
    EXPECT_FALSE(explanation.is_dark);
    EXPECT_THAT(explanation.causes, IsEmpty());
    EXPECT_NEAR(explanation.brightness, 0.5, 0.01); // the square's edges are mixed with the background
    EXPECT_THAT(explanation.summary, StartsWith("The picture is not dark: its brightness is 0."));
}

TEST_F(ExplainGLTest, LightBelowTheHorizonIsANoteWhereItStillShines) {
    useFloor();
    shell.scene().camera->position = {0, 0, -5}; // sees the floor from below
    korl::Mesh ceiling;
    ceiling.name = "ceiling";
    ceiling.positions = {{-1, -1, -1}, {1, -1, -1}, {1, 1, -1}, {-1, 1, -1}};
    ceiling.normals.assign(4, {0, 0, -1});
    ceiling.triangles = {0, 2, 1, 0, 3, 2};
    shell.scene().addMesh(ceiling);
    add("Sun", "sun", {{"latitude", "0"}, {"timeofday", "0"}});
    const Explanation explanation = explain();
    EXPECT_FALSE(explanation.is_dark);
    ASSERT_THAT(kindsOf(explanation.lights.at(0)), ElementsAre(FindingKind::below_horizon));
    EXPECT_FALSE(explanation.lights[0].findings[0].is_cause);
    EXPECT_EQ(explanation.lights[0].findings[0].text, "is 90 degrees below the horizon and shines upwards");
}

TEST_F(ExplainGLTest, SilencedLightsNameTheOneThatShinesAlone) {
    useFloor();
    add("Sun", "sun");
    add("AmbientLight", "dim", {{"Color", "0.01 0.01 0.01 1"}});
    shell.scene().solo("dim");
    const Explanation explanation = explain();
    EXPECT_THAT(explanation.causes, ElementsAre(FindingKind::silenced, FindingKind::weak));
    EXPECT_EQ(
        explanation.summary,
        "The picture is dark because the light \"sun\" is silenced, since \"dim\" shines alone; and the "
        "light \"dim\" is weak: its intensity is at most 0.01 at the meshes.");
}

TEST_F(ExplainGLTest, WeakLightIsToBlameOnWhiteSurfacesThatFaceIt) {
    useFloor();
    add("Sun", "sun", {{"latitude", "0"}, {"timeofday", "12"}, {"Specular", "0"}});
    for (const std::string intensity : {"0.05", "0.0999", "0.1"})
        for (const RenderPath path : {RenderPath::shader, RenderPath::fixed}) {
            shell.scene().setParameterText("sun", "Intensity", intensity);
            const Explanation explanation = explain(path);
            EXPECT_THAT(explanation.causes, ElementsAre(FindingKind::weak)) << intensity;
            EXPECT_EQ(explanation.summary,
                      "The picture is dark because the light \"sun\" is weak: its intensity is "
                      "at most " +
                          korl::numberText(std::stof(intensity)) + " at the meshes.");
        }
    shell.scene().setParameterText("sun", "Intensity", "0.2");
    EXPECT_FALSE(explain().is_dark);
    EXPECT_THAT(kindsOf(explain().lights.at(0)), IsEmpty());
}

TEST_F(ExplainGLTest, WeakLightIsToBlameOnAWhiteSphere) {
    korl::Mesh sphere = std::move(korl::builtinScene().back());
    ASSERT_EQ(sphere.name, "sphere");
    shell.scene().addMesh(std::move(sphere));
    add("Headlight", "lamp", {{"intensity", "0.12"}, {"specular", "0"}});
    const Explanation explanation = explain();
    EXPECT_TRUE(explanation.is_dark); // most of it at a slope
    EXPECT_THAT(explanation.causes, ElementsAre(FindingKind::weak));
}

TEST_F(ExplainGLTest, UniformsThatALightAndItsSnippetDoNotShareAreNoted) {
    struct Confused : korl::test::CountedLight {
        Confused(const std::string& name, const Qelt::VCreationPreferences&)
            : CountedLight(name, "uniform float Weight$$ = 1.0;\n"
                                 "void getLight_$$(in vec3 v, out vec3 incidence, out vec3 i, out vec3 s)\n"
                                 "{ incidence = s = vec3(0); i = vec3(Weight$$); }\n") {}
    };
    const Qelt::VCreator<Confused, void> creator{std::string("Confused"), 0};
    useFloor();
    add("Confused", "lamp");
    const Explanation explanation = explain();
    EXPECT_FALSE(explanation.is_dark);
    ASSERT_THAT(kindsOf(explanation.lights.at(0)),
                ElementsAre(FindingKind::no_opengl_light, FindingKind::uniform_undeclared,
                            FindingKind::uniform_unwritten));
    const auto& findings = explanation.lights[0].findings;
    EXPECT_EQ(findings[1].text,
              "writes the uniform \"Strength$$\", which its snippet does not declare: the shader "
              "gets nothing of it");
    EXPECT_EQ(findings[2].text,
              "never writes the uniform \"Weight$$\", which its snippet declares: the shader has "
              "the declared value");
    EXPECT_FALSE(findings[1].is_cause || findings[2].is_cause);
    EXPECT_EQ(nameOf(findings[1].kind), "uniform_undeclared");
    EXPECT_EQ(nameOf(findings[2].kind), "uniform_unwritten");
    shell.scene().remove("lamp");
}

TEST_F(ExplainGLTest, NegativeIntensityTakesLightAway) {
    useFloor();
    add("Sun", "sun");
    add("AmbientLight", "hole", {{"Color", "-1 -1 -1 1"}});
    EXPECT_THAT(explain().causes, ElementsAre(FindingKind::negative_intensity));
}

TEST_F(ExplainGLTest, TorchOnTheSurfaceIsNotFiniteAtItsPixelAlone) {
    useFloor();
    add("Torch", "torch", {{"elevation", "0"}, {"scaleDistance", "1"}});
    const std::pair middle(width / 2, height / 2);
    const glm::vec3 point = explain(RenderPath::shader, middle).pixel->surface->position;
    shell.scene().setParameterText("torch", "location",
                                   Qelt::componentsToText(std::array{point.x, point.y, point.z}));
    // All of the floor is in the torch's own plane: elsewhere it only grazes it.
    const Explanation whole = explain();
    ASSERT_FALSE(whole.causes.empty());
    EXPECT_NE(whole.causes[0], FindingKind::not_finite);
    const Explanation explanation = explain(RenderPath::shader, middle);
    ASSERT_THAT(kindsOf(explanation.lights.at(0)),
                ElementsAre(FindingKind::not_finite, FindingKind::no_opengl_light));
    EXPECT_EQ(explanation.lights.at(0).contribution->sum(), glm::vec3(0));
}

TEST_F(ExplainGLTest, TellsWhichOpenGLLightEachHolds) {
    useFloor();
    add("Torch", "torch");
    add("AmbientLight", "fill");
    add("Sun", "sun");
    add("Sun", "off");
    shell.scene().setMuted("off", true);
    const Explanation explanation = explain();
    const auto& lights = explanation.lights;
    EXPECT_EQ(lights.at(0).opengl_light, "holds no OpenGL light: its type sets up none");
    EXPECT_THAT(lights.at(1).opengl_light, StartsWith("holds OpenGL light 1"));
    EXPECT_EQ(lights.at(2).opengl_light, "holds OpenGL light 2");
    EXPECT_EQ(lights.at(2).opengl_number, 2);
    EXPECT_EQ(lights.at(3).opengl_light, "holds no OpenGL light: it takes no part in the picture");
}

TEST_F(ExplainGLTest, ViewsValuesCount) {
    useFloor();
    add("AmbientLight", "fill");
    shell.scene().addView("night");
    shell.scene().setParameterText("fill", "Color", "0 0 0 1", "night");
    EXPECT_FALSE(explain().is_dark);
    const Explanation night = explain(RenderPath::shader, std::nullopt, "night");
    EXPECT_THAT(night.causes, ElementsAre(FindingKind::zero_intensity));
    EXPECT_THAT(night.summary, HasSubstr("has zero intensity; set to 0 is its \"Color\""));
    EXPECT_THROW(explain(RenderPath::shader, std::nullopt, "day"), korl::Error);
}

TEST_F(ExplainGLTest, PixelBesideTheMeshesShowsTheBackground) {
    useFloor();
    add("Sun", "sun");
    EXPECT_EQ(explain(RenderPath::shader, std::pair(0, 0)).summary,
              "The pixel 0,0 shows the background: no mesh is in view there.");
}

TEST_F(ExplainGLTest, OverexposedSurfacesAreNoted) {
    useFloor();
    add("AmbientLight", "flood", {{"Color", "2 2 2 1"}});
    const Explanation explanation = explain();
    ASSERT_EQ(explanation.scene.size(), 1u);
    EXPECT_EQ(explanation.scene[0].kind, FindingKind::overexposed);
    EXPECT_FALSE(explanation.scene[0].is_cause);
}

TEST_F(ExplainGLTest, LeavesTheSceneAndItsPictureAsTheyWere) {
    useBuiltinScene();
    add("Sun", "sun");
    add("Headlight", "lamp");
    const korl::RenderSettings settings{width, height, RenderPath::both};
    const auto before = shell.render(settings).pixels;
    const unsigned long revision = shell.scene().revision();
    explain();
    explain(RenderPath::fixed, std::pair(5, 5));
    EXPECT_EQ(shell.scene().revision(), revision);
    EXPECT_EQ(shell.render(settings).pixels, before);
}

TEST_F(ExplainGLTest, RefusesBothPathsAtOnce) {
    EXPECT_THROW(explain(RenderPath::both), korl::Error);
}

TEST_F(ExplainGLTest, JsonHoldsWhatWasFound) {
    useFloor();
    add("Sun", "sun", {{"timeofday", "0"}});
    add("AmbientLight", "fill", {{"Color", "0.5 0 0 1"}});
    const Explanation explanation = explain(RenderPath::shader, std::pair(width / 2, height / 2));
    const auto json = nlohmann::json::parse(toJson(explanation));
    EXPECT_EQ(json["dark"], explanation.is_dark);
    EXPECT_EQ(json["pixel"]["mesh"], "floor");
    EXPECT_EQ(json["pixel"]["sum"], nlohmann::json({0.5, 0, 0}));
    EXPECT_EQ(json["lights"][0]["findings"][0]["kind"], "below_horizon");
    EXPECT_EQ(json["lights"][1]["contribution"]["diffuse"], nlohmann::json({0.5, 0, 0}));
    EXPECT_EQ(json["lights"][1]["attenuation"], nullptr);
    EXPECT_EQ(json["lights"][1]["opengl_light"], 2);
}

TEST_F(ExplainGLTest, TextGoesFromTheCauseToTheLightsToTheScene) {
    useFloor();
    add("AmbientLight", "fill", {{"Color", "0.05 0.05 0.05 1"}});
    const std::string text = toText(explain());
    EXPECT_THAT(
        text,
        StartsWith(
            "The picture is dark because the light \"fill\" is weak: its intensity is at most 0.05 at the "
            "meshes.\n\nLights\n  fill (AmbientLight)\n    is weak: its intensity is at most 0.05 at the "
            "meshes\n    gives an intensity of at most 0.05; faces 100 % of what was looked at\n"
            "    holds OpenGL light 1, of which only the ambient light counts\n\n"
            "Scene, 160x120 pixels on the shader path\n"));
    EXPECT_THAT(text, EndsWith(" % of the picture shows a mesh\n"));
}

} // namespace
