#include "tests/support/light_fixture.hpp"
#include "tests/support/normalisation_reference.hpp"

#include <cmath>

namespace {

using namespace korl::test;
using Orvid::PhysicalSpace;
using testing::ElementsAre;

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
    expectCreator("DistanceLight",
                  {"A light source that shines from one light source to one specific point.", "DATE",
                   "DistanceLight", "navigation/light/DistanceLight.cpp", "Scenery"},
                  &typeid(PhysicalSpace::point));
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

TEST_F(DistanceLight, FixedFunctionCallsAreExact) {
    set("Intensity", "0.5");
    set("Specular", "0.25");
    set("lightposition", "1 2 3");
    set("shineat", "4 6 5");
    set("color", "0.2 0.4 0.8 0.3");
    // Nothing of attenuation, ambient colour and cut-off.
    EXPECT_THAT(calls(),
                ElementsAre("glLightfv LIGHT0 DIFFUSE 0.1 0.2 0.4 1",
                            "glLightfv LIGHT0 SPECULAR 0.25 0.25 0.25 1", "glLightfv LIGHT0 POSITION 1 2 3 1",
                            "glLightfv LIGHT0 SPOT_DIRECTION 3 4 2 0", "glEnable LIGHT0",
                            "glEnable LIGHTING"));
}

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

TEST_F(DistanceLight, NormalisationAgreesWithALongDoubleReference) {
    set("lightposition", "0 0 0"); // so that the difference of the points has no rounding
    const NormalisationReference reference([this](const PhysicalSpace::vector& v) {
        light.parameter("shineat").setGlobalValue(
            Qelt::VValue<PhysicalSpace::point>(PhysicalSpace::point{v.x, v.y, v.z}));
        return triple(direction);
    });
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
    const auto before = light.source().uniforms();
    set("lightposition", "11 2 4");
    set("shineat", "12 4 6");
    EXPECT_EQ(light.source().uniforms(), before);
    EXPECT_EQ(call("POSITION"), "11 2 4 1");
}

TEST_F(DistanceLight, StrengthRoundsFirstInTheUniformAndLastInOpenGL) {
    const float component = 0.7f;
    double strength = 0.1;
    while (static_cast<float>(strength) * component == static_cast<float>(component * strength))
        strength += 0.001;
    light.parameter("Intensity").setGlobalValue(Qelt::VValue<double>(strength));
    set("color", "0.7 0.7 0.7 1");
    EXPECT_EQ(color(intensity)[0], static_cast<float>(strength) * component);
    const std::string product = Qelt::VValueTrait<Orvid::rgba_float_t>::Text(
        {static_cast<float>(component * strength), static_cast<float>(component * strength),
         static_cast<float>(component * strength), 1});
    EXPECT_EQ(call("DIFFUSE"), product);
}

TEST_F(DistanceLight, FallbacksDifferBetweenThePaths) {
    set("lightposition", "5 5 5");
    set("shineat", "1 2 3");
    for (const char* const name : {"Intensity", "Specular", "lightposition", "shineat", "color"})
        remove(name);
    EXPECT_EQ(color(intensity), (FloatColor{1, 1, 1, 1})); // full strength of white
    EXPECT_EQ(color(specular), (FloatColor{1, 1, 1, 1}));
    EXPECT_EQ(triple(direction), (DoubleTriple{0, 0, -1})); // from (0, 0, 10) to the origin
    EXPECT_EQ(call("POSITION"), "0 0 1 1");
    EXPECT_EQ(call("SPOT_DIRECTION"), "0 0 -1 0");
    EXPECT_EQ(call("DIFFUSE"), "1 1 1 1");
}

TEST_F(DistanceLight, PositionAloneFallsBack) {
    set("shineat", "0 10 10");
    remove("lightposition");
    EXPECT_EQ(triple(direction), (DoubleTriple{0, 1, 0})); // from (0, 0, 10)
    EXPECT_EQ(call("SPOT_DIRECTION"), "0 10 9 0");         // from (0, 0, 1)
}

TEST_F(DistanceLight, TargetAloneFallsBack) {
    set("lightposition", "0 3 4");
    set("shineat", "5 5 5");
    remove("shineat");
    EXPECT_EQ(triple(direction), (DoubleTriple{0, -0.6, -4 * (1 / 5.0)})); // to the origin
    EXPECT_EQ(call("SPOT_DIRECTION"), "0 -3 -4 0");
    EXPECT_EQ(call("POSITION"), "0 3 4 1");
}

TEST_F(DistanceLight, ColorAloneFallsBack) {
    set("Intensity", "0.5");
    set("color", "1 0 0 1");
    putNumber("color");
    EXPECT_EQ(color(intensity), (FloatColor{0.5f, 0.5f, 0.5f, 0.5f}));
    EXPECT_EQ(call("DIFFUSE"), "0.5 0.5 0.5 1");
}

TEST_F(DistanceLight, FallsBackWhereValuesAreOfAnotherType) {
    for (const char* const name : {"Intensity", "Specular"})
        putColor(name);
    for (const char* const name : {"lightposition", "shineat"})
        putNumber(name);
    EXPECT_EQ(color(intensity)[0], 1);
    EXPECT_EQ(triple(direction), (DoubleTriple{0, 0, -1}));
    EXPECT_EQ(call("POSITION"), "0 0 1 1");
}

TEST_F(DistanceLight, TakesComputedValues) {
    put("lightposition", new ComputedValue<PhysicalSpace::point>({0, 0, 3}));
    put("shineat", new ComputedValue<PhysicalSpace::point>({4, 0, 0}));
    EXPECT_EQ(triple(direction), (DoubleTriple{0.8, 0, -3 * (1 / 5.0)}));
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
