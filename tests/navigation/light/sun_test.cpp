#include "every_light.hpp"
#include "tests/support/light_fixture.hpp"

#include <cmath>
#include <random>

namespace {

using namespace korl::test;

constexpr const char* intensity = "SunIntensity$$";
constexpr const char* specular = "SunSpecularIntensity$$";
constexpr const char* direction = "SunDirection$$";

class Sun : public LightTest {
protected:
    Sun() : LightTest("Sun") {}
    DoubleTriple directionAt(double latitude, double time_of_day) {
        light.parameter("latitude").setGlobalValue(Qelt::VValue<double>(latitude));
        light.parameter("timeofday").setGlobalValue(Qelt::VValue<double>(time_of_day));
        return triple(direction);
    }
    void expectDirection(double latitude, double time_of_day, const DoubleTriple& expected,
                         double tolerance = 1e-15) {
        const DoubleTriple d = directionAt(latitude, time_of_day);
        for (std::size_t i = 0; i < 3; ++i)
            EXPECT_NEAR(d[i], expected[i], tolerance)
                << latitude << " degrees, " << time_of_day << " hours, " << i;
    }
};

TEST_F(Sun, HasItsParameters) {
    expectParameters({{"Intensity", typeid(double), "0.9", 0, ""},
                      {"Specular", typeid(double), "0.1", 0, ""},
                      {"latitude", typeid(double), "45", 0, "min=-90 max=90"},
                      {"timeofday", typeid(double), "12", 0, "max=24"}}); // no "min", on purpose
    EXPECT_EQ(light.light.priority(), -199990);
    expectDefaultIcons();
}

TEST_F(Sun, CreatorCarriesItsProperties) {
    expectCreators(
        {{0,
          &typeid(Orvid::PhysicalSpace::vector),
          {"description: A light source that is specified by altitude and azimuth angles, and changes its "
           "color when setting or rising..",
           "date: of the build", "name: Sun", "source: navigation/light/Sun.cpp", "category: Scenery"}}});
}

TEST_F(Sun, SnippetIsExact) {
    expectSnippet({"",
                   "",
                   "uniform vec4 SunIntensity$$         = vec4(1,1,1,1);",
                   "uniform vec4 SunSpecularIntensity$$ = vec4(1,1,1,1);",
                   "uniform vec3 SunDirection$$         = vec3(0,0,-1);",
                   "",
                   "/* Sun",
                   "",
                   "Given a vertex, provide the light at this point.",
                   "*/",
                   "void\tgetLight_$$(in vec3 vertex,",
                   "\t\t    out vec3 light_incidence,",
                   "\t\t    out vec3 intensity,",
                   "\t\t    out vec3 specular_intensity)",
                   "{",
                   "vec3\td = SunDirection$$;",
                   "\tlight_incidence    = normalize(d);",
                   "",
                   "\tintensity          = SunIntensity$$.rgb;",
                   "\tspecular_intensity = SunSpecularIntensity$$.rgb;",
                   "}",
                   ""},
                  506);
}

TEST_F(Sun, EachComponentIsRoundedAsItsFormula) {
    // The sum of the squares is not replaced by 1, from which it differs in the last bit now and then.
    int differing = 0;
    for (double latitude = -90; latitude <= 90; latitude += 0.25)
        for (const double hour : {1.5, 5.0, 7.25, 16.0, 22.75}) {
            const double phi = latitude * 0.017453292519943295, t = hour * 0.2617993877991494;
            const double sin_phi = std::sin(phi), cos_phi = std::cos(phi);
            const double squares = cos_phi * cos_phi + sin_phi * sin_phi;
            const DoubleTriple d = directionAt(latitude, hour);
            ASSERT_EQ(d[0], -std::sin(t) * squares) << latitude << " degrees, " << hour << " hours";
            ASSERT_EQ(d[1], std::cos(t) * sin_phi) << latitude << " degrees, " << hour << " hours";
            ASSERT_EQ(d[2], std::cos(t) * cos_phi) << latitude << " degrees, " << hour << " hours";
            differing += d[0] != -std::sin(t);
        }
    EXPECT_GT(differing, 100);
}

TEST_F(Sun, DefaultsGiveTheirUniforms) {
    EXPECT_EQ(light.source().uniforms().size(), 3u);
    EXPECT_EQ(color(intensity), (FloatColor{0.9f, 0.9f, 0.9f, 0.9f}));
    EXPECT_EQ(color(specular), (FloatColor{0.1f, 0.1f, 0.1f, 1}));
    const DoubleTriple d = triple(direction);
    EXPECT_NEAR(d[0], -1.2e-16, 1e-17);
    EXPECT_NEAR(d[1], -0.70710678, 1e-8);
    EXPECT_NEAR(d[2], -0.70710678, 1e-8);
    EXPECT_EQ(light.source().uniforms().at(intensity).index(), 13u);
    EXPECT_EQ(light.source().uniforms().at(direction).index(), 11u);
}

TEST_F(Sun, StandsWhereItShould) {
    const double half = std::sqrt(0.5);
    expectDirection(0, 12, {0, 0, -1});
    for (const double latitude : {-90.0, -30.0, 0.0, 45.0, 90.0}) {
        expectDirection(latitude, 6, {-1, 0, 0});
        expectDirection(latitude, 18, {1, 0, 0});
    }
    expectDirection(45, 0, {0, half, half}); // midnight: it shines upwards, undimmed
    expectDirection(45, 24, {0, half, half});
    EXPECT_EQ(color(intensity)[0], 0.9f);
    for (const double hours : {0.0, 3.0, 9.0, 15.0, 21.0}) {
        const double t = hours * std::acos(-1.0) / 12;
        expectDirection(90, hours, {-std::sin(t), std::cos(t), 0}, 3e-16); // horizontal at the pole
    }
    expectDirection(-30, 12, {0, 0.5, -0.8660254037844386});
    expectDirection(52, 9, {-0.70710678, -0.55720775, -0.43533840}, 5e-9);
}

TEST_F(Sun, TimeIsPeriodicByItself) {
    for (const double hour : {-15.0, 9.0, 33.0})
        expectDirection(52, hour, {-0.70710678, -0.55720775, -0.43533840}, 5e-9);
    for (const double hour : {-9.0, 15.0, 39.0})
        expectDirection(52, hour, {0.70710678, -0.55720775, -0.43533840}, 5e-9);
}

TEST_F(Sun, NothingIsClamped) {
    const double pi = std::acos(-1.0);
    expectDirection(120, 12, {0, -std::sin(120 * pi / 180), -std::cos(120 * pi / 180)}, 5e-16);
    set("Intensity", "-2");
    EXPECT_EQ(color(intensity), (FloatColor{-2, -2, -2, -2}));
}

TEST_F(Sun, AgreesWithALongDoubleReference) {
    // The two angles by the factors of a degree and of an hour, in double precision, then everything in
    // extended precision and by another route: the midnight direction turned about the axis of the pole.
    const double ulp = std::numeric_limits<double>::epsilon(); // of 1.0
    std::mt19937_64 random(7);
    std::uniform_real_distribution<double> latitudes(-90, 90), hours(0, 24);
    double largest = 0;
    for (int i = 0; i < 100000; ++i) {
        const double latitude = latitudes(random), hour = hours(random);
        const long double phi = latitude * 0.017453292519943295, t = hour * 0.2617993877991494;
        const long double midnight[3] = {0, std::sin(phi), std::cos(phi)};
        const long double pole[3] = {0, -std::cos(phi), std::sin(phi)};
        const long double across[3] = {pole[1] * midnight[2] - pole[2] * midnight[1],
                                       pole[2] * midnight[0] - pole[0] * midnight[2],
                                       pole[0] * midnight[1] - pole[1] * midnight[0]};
        const DoubleTriple d = directionAt(latitude, hour);
        for (std::size_t k = 0; k < 3; ++k) {
            const long double expected = std::cos(t) * midnight[k] + std::sin(t) * across[k];
            largest = std::max(largest, static_cast<double>(std::abs(d[k] - expected)));
        }
    }
    EXPECT_LE(largest, 4 * ulp);
}

const DeclaredLight sun({
    .type = "Sun",
    .parameters =
        {{"Intensity",
          "0.3",
          {{"SunIntensity$$", "13: 1 1 1 1"},
           {"glLightfv LIGHT2 DIFFUSE", "1 1 1 1"}}}, // not the default 0.9
         {"Specular",
          "0.7",
          {{"SunSpecularIntensity$$", "13: 1 1 1 1"}, {"glLightfv LIGHT2 SPECULAR", "1 1 1 1"}}},
         // The strengths may be computed, but the sky must be held.
         {"latitude",
          "-20",
          {{"SunDirection$$", "11: -0.92387953251129 -0.2705980500731 -0.2705980500731"}}, // 45 degrees
          true},
         {"timeofday",
          "7.5",
          {{"SunDirection$$", "11: -1.2246467991474e-16 0.34202014332567 -0.93969262078591"}}, // noon
          true}},
    .answers = {{"SunDirection$$", "11: -0.92387953251129 0.13088544238587 -0.3596047974905"},
                {"SunIntensity$$", "13: 0.3 0.3 0.3 0.3"},
                {"SunSpecularIntensity$$", "13: 0.7 0.7 0.7 1"},
                {"glLightf LIGHT2 CONSTANT_ATTENUATION", "1"},
                {"glLightf LIGHT2 LINEAR_ATTENUATION", "0"},
                {"glLightf LIGHT2 QUADRATIC_ATTENUATION", "0"},
                {"glLightfv LIGHT2 DIFFUSE", "0.3 0.3 0.3 1"},
                {"glLightfv LIGHT2 AMBIENT", "0 0 0 1"},
                {"glLightfv LIGHT2 SPECULAR", "0.7 0.7 0.7 1"},
                {"glLightfv LIGHT2 POSITION", "0 0 1 0"}, // whatever the latitude and the time
                {"glLightfv LIGHT2 SPOT_DIRECTION", "0 0 -1 0"},
                {"glLightf LIGHT2 SPOT_CUTOFF", "180"},
                {"glEnable LIGHT2", ""},
                {"glEnable LIGHTING", ""}},
    .formula =
        [](const glm::dvec3&) {
            const double phi = glm::radians(-20.0), t = glm::radians(7.5 * 15);
            return Lighting{{-std::sin(t), std::cos(t) * std::sin(phi), std::cos(t) * std::cos(phi)},
                            glm::dvec3(0.3),
                            glm::dvec3(0.7)};
        },
    .formula_as_declared =
        [](const glm::dvec3&) {
            return Lighting{{0, 0, -1}, glm::dvec3(1), glm::dvec3(1)};
        },
    .lighting = {{"timeofday", "10"}},
    // In OpenGL it always stands in the zenith.
    .agreements = {{{{"latitude", "0"}, {"Specular", "0"}}, 2}, {{{"latitude", "0"}, {"Specular", "1"}}, 4}},
});

TEST_F(Sun, NoStrengthLeavesTheOpenGLAlpha) {
    set("Intensity", "0");
    EXPECT_EQ(color(intensity), (FloatColor{0, 0, 0, 0}));
    EXPECT_EQ(call("DIFFUSE"), "0 0 0 1");
}

TEST_F(Sun, HasNoInputOfItsDeclaredType) {
    struct Arrow : Qelt::VObject {
        Arrow() : VObject("arrow", 0, {}) {}
        Qelt::TypedSlot<Orvid::PhysicalSpace::vector> way{this, "way", {0, 0, 1}};
    };
    const Arrow arrow;
    EXPECT_TRUE(light.light.accept(arrow).empty());
}

} // namespace
