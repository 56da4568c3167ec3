#include "every_light.hpp"
#include "tests/support/light_fixture.hpp"
#include "tests/support/normalisation_reference.hpp"

#include <cmath>
#include <limits>

namespace {

using namespace korl::test;
using Orvid::PhysicalSpace;
using Orvid::rgba_float_t;

constexpr const char* intensity = "DirectionalLightIntensity$$";
constexpr const char* specular = "DirectionalLightSpecularIntensity$$";
constexpr const char* direction = "DirectionalLightDirection$$";

class DirectionalLight : public LightTest {
protected:
    DirectionalLight() : LightTest("DirectionalLight") {}
    DoubleTriple directionOf(const PhysicalSpace::vector& v) {
        light.parameter("direction").setGlobalValue(Qelt::VValue<PhysicalSpace::vector>(v));
        return triple(direction);
    }
};

TEST_F(DirectionalLight, HasItsParameters) {
    expectParameters({{"Intensity", typeid(double), "0.9", 0, ""},
                      {"Specular", typeid(double), "0.1", 0, ""},
                      {"direction", typeid(PhysicalSpace::vector), "0 0 -1", 0, ""},
                      {"color", typeid(rgba_float_t), "0.7 0.7 0.7 1", 1, ""}});
    EXPECT_EQ(light.light.priority(), -199990);
    expectDefaultIcons();
}

TEST_F(DirectionalLight, CreatorCarriesItsProperties) {
    expectCreators(
        {{0,
          &typeid(PhysicalSpace::vector),
          {"description: A directional light source.", "date: of the build", "name: DirectionalLight",
           "source: navigation/light/DirectionalLight.cpp", "category: Scenery"}}});
}

TEST_F(DirectionalLight, SnippetIsExact) {
    expectSnippet({"",
                   "",
                   "uniform vec4 DirectionalLightIntensity$$         = vec4(1,1,1,1);",
                   "uniform vec4 DirectionalLightSpecularIntensity$$ = vec4(1,1,1,1);",
                   "uniform vec3 DirectionalLightDirection$$         = vec3(0,0,-1);",
                   "",
                   "/* DirectionalLight",
                   "",
                   "Given a vertex, provide the light at this point.",
                   "*/",
                   "void\tgetLight_$$(in vec3 vertex,",
                   "\t\t    out vec3 light_incidence,",
                   "\t\t    out vec3 intensity,",
                   "\t\t    out vec3 specular_intensity)",
                   "{",
                   "vec3\td = DirectionalLightDirection$$;",
                   "\tlight_incidence    = normalize(d);",
                   "",
                   "\tintensity          = DirectionalLightIntensity$$.rgb;",
                   "\tspecular_intensity = DirectionalLightSpecularIntensity$$.rgb;",
                   "}",
                   ""},
                  597);
}

TEST_F(DirectionalLight, DefaultsGiveTheirUniforms) {
    EXPECT_EQ(light.source().uniforms().size(), 3u);
    EXPECT_EQ(color(intensity), (FloatColor{0.9f * 0.7f, 0.9f * 0.7f, 0.9f * 0.7f, 0.9f}));
    EXPECT_EQ(color(specular), (FloatColor{0.1f, 0.1f, 0.1f, 1}));
    EXPECT_EQ(triple(direction), (DoubleTriple{0, 0, -1}));
    EXPECT_EQ(light.source().uniforms().at(intensity).index(), 13u);
    EXPECT_EQ(light.source().uniforms().at(direction).index(), 11u);
}

/// A strength and a colour for which it makes a difference in each component whether the strength is rounded
/// before it is multiplied, as in the uniform, or the product, as for OpenGL.
const DeclaredLight directional({
    .type = "DirectionalLight",
    .parameters =
        {{"Intensity",
          "0.3",
          {{"DirectionalLightIntensity$$", "13: 0.17 0.41 0.85 0.54"}, // full strength, not the default
           {"glLightfv LIGHT2 DIFFUSE", "0.17 0.41 0.85 1"}}},
         {"Specular",
          "0.123456789",
          {{"DirectionalLightSpecularIntensity$$", "13: 1 1 1 1"}, {"glLightfv LIGHT2 SPECULAR", "1 1 1 1"}}},
         {"direction",
          "1 -2 2.5",
          {{"DirectionalLightDirection$$", "11: 0 0 -1"},
           {"glLightfv LIGHT2 POSITION", "-0 -0 1 0"},
           {"glLightfv LIGHT2 SPOT_DIRECTION", "0 0 -1 0"}}},
         {"color",
          "0.17 0.41 0.85 0.54",
          {{"DirectionalLightIntensity$$", "13: 0.21000001 0.21000001 0.21000001 0.3"}, // the default colour
           {"glLightfv LIGHT2 DIFFUSE", "0.21 0.21 0.21 1"}}}},
    .answers = {{"DirectionalLightDirection$$", "11: 0.29814239699997 -0.59628479399994 0.74535599249993"},
                {"DirectionalLightIntensity$$",
                 "13: 0.051000003 0.123 0.25500003 0.16200002"}, // alpha as well
                {"DirectionalLightSpecularIntensity$$", "13: 0.12345679 0.12345679 0.12345679 1"},
                {"glLightf LIGHT2 CONSTANT_ATTENUATION", "1"},
                {"glLightf LIGHT2 LINEAR_ATTENUATION", "0"},
                {"glLightf LIGHT2 QUADRATIC_ATTENUATION", "0"},
                {"glLightfv LIGHT2 DIFFUSE", "0.051 0.122999996 0.255 1"},
                {"glLightfv LIGHT2 AMBIENT", "0 0 0 1"},
                {"glLightfv LIGHT2 SPECULAR", "0.12345679 0.12345679 0.12345679 1"},
                {"glLightfv LIGHT2 POSITION", "-0.2981424 0.5962848 -0.74535596 0"},
                {"glLightfv LIGHT2 SPOT_DIRECTION", "0.2981424 -0.5962848 0.74535596 0"},
                {"glLightf LIGHT2 SPOT_CUTOFF", "180"},
                {"glEnable LIGHT2", ""},
                {"glEnable LIGHTING", ""}},
    .formula =
        [](const glm::dvec3&) {
            return Lighting{glm::normalize(glm::dvec3(1, -2, 2.5)), 0.3 * glm::dvec3(0.17, 0.41, 0.85),
                            glm::dvec3(0.123456789)};
        },
    .formula_as_declared =
        [](const glm::dvec3&) {
            return Lighting{{0, 0, -1}, glm::dvec3(1), glm::dvec3(1)};
        },
    .lighting = {{"direction", "-0.6 -1 -0.8"}, {"color", "1 0.9 0.5 1"}},
    .agreements = {{{{"direction", "-1 -2 -2"}, {"Specular", "0"}}, 2},
                   {{{"direction", "-1 -2 -2"}, {"Specular", "1"}}, 4}},
});

TEST_F(DirectionalLight, DefaultFixedFunctionLightStandsAbove) {
    EXPECT_EQ(call("POSITION"), "-0 -0 1 0");
    EXPECT_EQ(call("SPOT_DIRECTION"), "0 0 -1 0");
}

TEST_F(DirectionalLight, NoStrengthLeavesTheOpenGLAlpha) {
    set("Intensity", "0");
    EXPECT_EQ(color(intensity), (FloatColor{0, 0, 0, 0}));
    EXPECT_EQ(call("DIFFUSE"), "0 0 0 1");
}

TEST_F(DirectionalLight, ColorLeavesTheHighlightsWhite) {
    set("color", "1 0 0 1");
    EXPECT_EQ(color(specular), (FloatColor{0.1f, 0.1f, 0.1f, 1}));
    EXPECT_EQ(call("SPECULAR"), "0.1 0.1 0.1 1");
}

TEST_F(DirectionalLight, LengthOfTheDirectionDoesNotMatter) {
    EXPECT_EQ(directionOf({0, 0, -5}), (DoubleTriple{0, 0, -1}));
    EXPECT_EQ(directionOf({0, 300, 400}), (DoubleTriple{0, 0.6, 400 * (1 / 500.0)}));
}

TEST_F(DirectionalLight, HugeDirectionDoesNotOverflow) {
    const DoubleTriple d = directionOf({1e300, 1e300, 0});
    EXPECT_NEAR(d[0], std::sqrt(0.5), 1e-15);
    EXPECT_NEAR(d[1], std::sqrt(0.5), 1e-15);
    EXPECT_EQ(d[2], 0);
    EXPECT_NEAR(directionOf({0, 1e-300, 1e-300})[2], std::sqrt(0.5), 1e-15);
}

TEST_F(DirectionalLight, ZeroDirectionIsNotGuarded) {
    for (const double component :
         {directionOf({0, 0, 0})[0], directionOf({0, 0, 0})[1], directionOf({0, 0, 0})[2]})
        EXPECT_TRUE(std::isnan(component));
    EXPECT_THAT(call("POSITION"), testing::MatchesRegex("-?nan -?nan -?nan 0"));
    EXPECT_THAT(call("SPOT_DIRECTION"), testing::MatchesRegex("-?nan -?nan -?nan 0"));
}

TEST_F(DirectionalLight, NotANumberStaysOne) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const PhysicalSpace::vector& v : {PhysicalSpace::vector{nan, 1, 2}, {1, nan, 2}, {1, 2, nan}}) {
        const DoubleTriple d = directionOf(v);
        EXPECT_TRUE(std::isnan(d[0]) && std::isnan(d[1]) && std::isnan(d[2]));
    }
}

TEST_F(DirectionalLight, NormalisationAgreesWithTheReference) {
    const NormalisationReference reference([this](const auto& v) { return directionOf(v); });
    reference.expectAxesToStay();
    reference.expectRoundingsOfTheFormula();
    reference.expectAgreementEverywhere();
    reference.expectAgreementOfDenormals();
}

TEST_F(DirectionalLight, SmallestDenormalOverflowsInZAlone) {
    // 1/length overflows where the length is the smallest number: x and y are divided and do not notice.
    const double tiny = std::numeric_limits<double>::denorm_min();
    EXPECT_EQ(directionOf({tiny, 0, 0})[0], 1);
    EXPECT_TRUE(std::isinf(directionOf({0, 0, tiny})[2]));
    const double largest_that_overflows = std::ldexp(1.0, -1024);
    EXPECT_TRUE(std::isinf(directionOf({0, 0, largest_that_overflows})[2]));
    EXPECT_NEAR(directionOf({0, 0, largest_that_overflows + tiny})[2], 1, 1e-15);
}

TEST_F(DirectionalLight, StrengthIsNotClamped) {
    set("Intensity", "-2");
    set("Specular", "1e30");
    set("color", "1 1 1 1");
    EXPECT_EQ(color(intensity), (FloatColor{-2, -2, -2, -2}));
    EXPECT_EQ(color(specular)[0], 1e30f);
}

TEST_F(DirectionalLight, AcceptsObjectsThatProvideAVector) {
    struct Arrow : Qelt::VObject {
        Arrow() : VObject("arrow", 0, {}) {}
        Qelt::TypedSlot<PhysicalSpace::vector> way{this, "way", {0, 0, 1}};
    };
    const Arrow arrow;
    EXPECT_EQ(light.light.accept(arrow),
              (Qelt::AcceptList{{"direction", Tessan::Typename(typeid(PhysicalSpace::vector))}}));
}

} // namespace
