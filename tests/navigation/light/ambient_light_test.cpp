#include "every_light.hpp"
#include "tests/support/light_fixture.hpp"

namespace {

using namespace korl::test;
using Orvid::rgba_float_t;

constexpr const char* uniform = "AmbientIntensity$$";

class AmbientLight : public LightTest {
protected:
    AmbientLight() : LightTest("AmbientLight") {}
};

TEST_F(AmbientLight, HasOneParameter) {
    expectParameters({{"Color", typeid(rgba_float_t), "1 1 1 1", 1, ""}});
    EXPECT_EQ(light.light.priority(), -199990);
    expectDefaultIcons();
}

TEST_F(AmbientLight, CreatorCarriesItsProperties) {
    expectCreators(
        {{0,
          nullptr,
          {"description: A light source that lights everything.", "group: General", "date: of the build",
           "name: AmbientLight", "source: navigation/light/AmbientLight.cpp", "category: Scenery"}}});
}

TEST_F(AmbientLight, SnippetIsExact) {
    expectSnippet({"", "", "uniform vec4 AmbientIntensity$$         = vec4(1,1,1,1);", "", "//",
                   "// AmbientLight", "//", "void\tgetLight_$$(in vec3 vertex,",
                   "\t\t    out vec3 light_incidence,", "\t\t    out vec3 intensity,",
                   "\t\t    out vec3 specular_intensity", "\t\t    )", "", "{",
                   "\tlight_incidence = vec3(0,0,0);", "\tintensity = AmbientIntensity$$.rgb;",
                   "\tspecular_intensity = vec3(0,0,0);", "}", ""},
                  325);
}

const DeclaredLight ambient({
    .type = "AmbientLight",
    // Alpha goes to the uniform, but not to OpenGL. Only a held colour counts.
    .parameters = {{"Color",
                    "0.2 0.4 0.8 0.3",
                    {{"AmbientIntensity$$", "13: 0.5 0.5 0.5 1"},
                     {"glLightfv LIGHT2 AMBIENT", "0.5 0.5 0.5 1"}},
                    true}},
    .answers = {{"AmbientIntensity$$", "13: 0.2 0.4 0.8 0.3"},
                {"glLightfv LIGHT2 AMBIENT", "0.2 0.4 0.8 1"},
                {"glLightfv LIGHT2 DIFFUSE", "0 0 0 0"},
                {"glLightfv LIGHT2 SPECULAR", "0 0 0 0"},
                {"glLightfv LIGHT2 SPOT_DIRECTION", "0 0 0 0"},
                {"glLightfv LIGHT2 POSITION", "0 0 0 0"},
                {"glLightf LIGHT2 SPOT_CUTOFF", "0"},
                {"glEnable LIGHT2", ""},
                {"glEnable LIGHTING", ""}},
    .formula =
        [](const glm::dvec3&) {
            return Lighting{glm::dvec3(0), {0.2, 0.4, 0.8}, glm::dvec3(0)};
        },
    .formula_as_declared =
        [](const glm::dvec3&) {
            return Lighting{glm::dvec3(0), glm::dvec3(1), glm::dvec3(0)};
        },
    .lighting = {{"Color", "0.2 0.4 0.6 1"}},
    .agreements = {{{}, 2}},
});

TEST_F(AmbientLight, NewOneIsWhite) {
    EXPECT_EQ(light.source().uniforms().size(), 1u);
    EXPECT_EQ(color(uniform), (FloatColor{1, 1, 1, 1}));
    EXPECT_EQ(call("AMBIENT"), "1 1 1 1");
}

TEST_F(AmbientLight, ChangesShowAtTheNextUpdateUnclamped) {
    EXPECT_EQ(color(uniform), (FloatColor{1, 1, 1, 1}));
    set("Color", "-1 0 1e30 0");
    EXPECT_EQ(color(uniform), (FloatColor{-1, 0, 1e30f, 0}));
    EXPECT_EQ(call("AMBIENT"), "-1 0 1e+30 1");
}

TEST_F(AmbientLight, OpenGLHasTheColorOfItsContext) {
    light.parameter("Color").getLocalValue(*light.other_pool, "", true)->setValueFromText("0.2 0.4 0.8 1");
    EXPECT_EQ(call("AMBIENT"), "1 1 1 1");
    takeRecordedCalls();
    light.light.environment_render(light.other_context);
    EXPECT_EQ(takeRecordedCalls().front(), "glLightfv LIGHT0 AMBIENT 0.2 0.4 0.8 1");
}

} // namespace
