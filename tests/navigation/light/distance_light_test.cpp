#include "every_light.hpp"
#include "tests/support/light_fixture.hpp"
#include "tests/support/normalisation_reference.hpp"

#include <cmath>

namespace {

using namespace korl::test;
using Orvid::PhysicalSpace;

constexpr const char* intensity = "DistanceLightIntensity$$";
constexpr const char* specular = "DistanceLightSpecularIntensity$$";
constexpr const char* direction = "DistanceLightDirection$$";

class DistanceLight : public LightTest {
protected:
    DistanceLight() : LightTest("DistanceLight") {}
};

TEST_F(DistanceLight, HasItsParameters) {
    expectParameters({{"Intensity", typeid(double), "0.8", 0, ""},
                      {"Specular", typeid(double), "0.8", 0, ""},
                      {"lightposition", typeid(PhysicalSpace::point), "0 0 1", 0, ""},
                      {"shineat", typeid(PhysicalSpace::point), "0 0 0", 0, ""},
                      {"color", typeid(Orvid::rgba_float_t), "1 1 1 1", 1, ""}});
    EXPECT_EQ(light.light.priority(), -199990);
    expectDefaultIcons();
}

TEST_F(DistanceLight, CreatorCarriesItsProperties) {
    expectCreators({{0,
                     &typeid(PhysicalSpace::point),
                     {"description: A light source that shines from one light source to one specific point.",
                      "date: of the build", "name: DistanceLight",
                      "source: navigation/light/DistanceLight.cpp", "category: Scenery"}}});
}

TEST_F(DistanceLight, SnippetIsExact) {
    expectSnippet({"",
                   "",
                   "uniform vec4 DistanceLightIntensity$$         = vec4(1,1,1,1);",
                   "uniform vec4 DistanceLightSpecularIntensity$$ = vec4(1,1,1,1);",
                   "uniform vec3 DistanceLightDirection$$           = vec3(0,0,-1);",
                   "",
                   "/* DistanceLight",
                   "",
                   "Given a vertex, provide the light at this point.",
                   "*/",
                   "void\tgetLight_$$(in vec3 vertex,",
                   "\t\t    out vec3 light_incidence,",
                   "\t\t    out vec3 intensity,",
                   "\t\t    out vec3 specular_intensity)",
                   "{",
                   "\tlight_incidence    = normalize(DistanceLightDirection$$);",
                   "",
                   "\tintensity          = DistanceLightIntensity$$.rgb;",
                   "\tspecular_intensity = DistanceLightSpecularIntensity$$.rgb;",
                   "}",
                   ""},
                  566);
}

TEST_F(DistanceLight, DefaultsGiveTheirUniforms) {
    EXPECT_EQ(light.source().uniforms().size(), 3u);
    EXPECT_EQ(color(intensity), (FloatColor{0.8f, 0.8f, 0.8f, 0.8f}));
    EXPECT_EQ(color(specular), (FloatColor{0.8f, 0.8f, 0.8f, 1}));
    EXPECT_EQ(triple(direction), (DoubleTriple{0, 0, -1}));
    EXPECT_EQ(light.source().uniforms().at(intensity).index(), 13u);
    EXPECT_EQ(light.source().uniforms().at(direction).index(), 11u);
}

/// A strength and a colour for which it makes a difference in each component whether the strength is rounded
/// before it is multiplied, as in the uniform, or the product, as for OpenGL. The position falls back to
/// (0, 0, 10) in the uniform and to (0, 0, 1) in OpenGL.
const DeclaredLight distance({
    .type = "DistanceLight",
    .parameters =
        {{"Intensity",
          "0.65",
          {{"DistanceLightIntensity$$", "13: 0.21 0.44 0.79 0.57"}, // full strength, not the default
           {"glLightfv LIGHT2 DIFFUSE", "0.21 0.44 0.79 1"}}},
         {"Specular",
          "0.123456789",
          {{"DistanceLightSpecularIntensity$$", "13: 1 1 1 1"}, {"glLightfv LIGHT2 SPECULAR", "1 1 1 1"}}},
         {"lightposition",
          "3.1 -4.2 5.6",
          {{"DistanceLightDirection$$", "11: 0.34793873004788 0.29074332236877 -0.89129510299936"},
           {"glLightfv LIGHT2 POSITION", "0 0 1 1"},
           {"glLightfv LIGHT2 SPOT_DIRECTION", "7.3 6.1 -9.7 0"}}},
         {"shineat",
          "7.3 6.1 -8.7",
          {{"DistanceLightDirection$$", "11: -0.40492615827205 0.54860963378794 -0.73147951171725"},
           {"glLightfv LIGHT2 SPOT_DIRECTION", "-3.1 4.2 -5.6 0"}}},
         {"color",
          "0.21 0.44 0.79 0.57",
          {{"DistanceLightIntensity$$", "13: 0.65 0.65 0.65 0.65"},
           {"glLightfv LIGHT2 DIFFUSE", "0.65 0.65 0.65 1"}}}},
    .answers = {{"DistanceLightDirection$$", "11: 0.23182847043682 0.56853172511887 -0.78932074458251"},
                {"DistanceLightIntensity$$", "13: 0.13649999 0.28599998 0.5135 0.37049997"}, // alpha as well
                {"DistanceLightSpecularIntensity$$", "13: 0.12345679 0.12345679 0.12345679 1"},
                // Nothing of attenuation, ambient colour and cut-off.
                {"glLightfv LIGHT2 DIFFUSE", "0.1365 0.286 0.51350003 1"},
                {"glLightfv LIGHT2 SPECULAR", "0.12345679 0.12345679 0.12345679 1"},
                {"glLightfv LIGHT2 POSITION", "3.1 -4.2 5.6 1"},
                {"glLightfv LIGHT2 SPOT_DIRECTION", "4.2 10.3 -14.3 0"}, // of any length
                {"glEnable LIGHT2", ""},
                {"glEnable LIGHTING", ""}},
    .formula =
        [](const glm::dvec3&) {
            return Lighting{glm::normalize(glm::dvec3(7.3, 6.1, -8.7) - glm::dvec3(3.1, -4.2, 5.6)),
                            0.65 * glm::dvec3(0.21, 0.44, 0.79), glm::dvec3(0.123456789)};
        },
    .formula_as_declared =
        [](const glm::dvec3&) {
            return Lighting{{0, 0, -1}, glm::dvec3(1), glm::dvec3(1)};
        },
    .lighting = {{"lightposition", "0.6 1 1"}},
    // Parallel in the snippet and all around in OpenGL: alike from far away.
    .agreements = {{{{"lightposition", "1000 2000 2000"}, {"Specular", "0"}}, 2}},
});

TEST_F(DistanceLight, DefaultFixedFunctionLight) {
    EXPECT_EQ(call("POSITION"), "0 0 1 1");
    EXPECT_EQ(call("SPOT_DIRECTION"), "0 0 -1 0");
    EXPECT_EQ(call("DIFFUSE"), "0.8 0.8 0.8 1");
}

TEST_F(DistanceLight, DirectionIsNormalisedInTheUniformOnly) {
    set("lightposition", "0 0 0");
    set("shineat", "0 30 -40");
    EXPECT_EQ(triple(direction)[1], 0.6);
    EXPECT_NEAR(triple(direction)[2], -0.8, 1e-16);
    EXPECT_EQ(call("SPOT_DIRECTION"), "0 30 -40 0");
}

TEST_F(DistanceLight, NormalisationAgreesWithTheReference) {
    set("lightposition", "0 0 0"); // so that the difference of the points has no rounding
    const NormalisationReference reference([this](const PhysicalSpace::vector& v) {
        light.parameter("shineat").setGlobalValue(
            Qelt::VValue<PhysicalSpace::point>(PhysicalSpace::point{v.x, v.y, v.z}));
        return triple(direction);
    });
    reference.expectAxesToStay();
    reference.expectRoundingsOfTheFormula();
    reference.expectAgreementEverywhere();
    reference.expectAgreementOfDenormals();
}

TEST_F(DistanceLight, PositionAtTheTargetIsNotGuarded) {
    set("lightposition", "1 2 3");
    set("shineat", "1 2 3");
    for (std::size_t i = 0; i < 3; ++i)
        EXPECT_TRUE(std::isnan(triple(direction)[i]));
    EXPECT_EQ(call("SPOT_DIRECTION"), "0 0 0 0");
}

TEST_F(DistanceLight, MovingBothPointsMovesTheFixedFunctionLightAlone) {
    set("lightposition", "1 2 4");
    set("shineat", "2 4 6");
    const DoubleTriple along{1 / 3.0, 2 / 3.0, 2 * (1 / 3.0)};
    EXPECT_EQ(triple(direction), along);
    set("lightposition", "11 2 4");
    set("shineat", "12 4 6");
    EXPECT_EQ(triple(direction), along);
    EXPECT_EQ(call("POSITION"), "11 2 4 1");
}

TEST_F(DistanceLight, AcceptsObjectsThatProvideAPoint) {
    struct Marker : Qelt::VObject {
        Marker() : VObject("marker", 0, {}) {}
        Qelt::TypedSlot<PhysicalSpace::point> place{this, "place", {0, 0, 1}};
    };
    const Marker marker;
    const std::string point = Tessan::Typename(typeid(PhysicalSpace::point));
    EXPECT_EQ(light.light.accept(marker), (Qelt::AcceptList{{"lightposition", point}, {"shineat", point}}));
}

} // namespace
