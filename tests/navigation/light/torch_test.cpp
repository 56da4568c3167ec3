#include "every_light.hpp"
#include "tests/support/light_fixture.hpp"

#include <cmath>

namespace {

using namespace korl::test;
using Orvid::PhysicalSpace;

constexpr const char* intensity = "TorchIntensity$$";
constexpr const char* specular = "TorchSpecularIntensity$$";
constexpr const char* location = "TorchLocation$$";
constexpr const char* elevation = "TorchElevation$$";
constexpr const char* scale_distance = "TorchScaleDistance$$";

class Torch : public LightTest {
protected:
    Torch() : LightTest("Torch") {}
    PhysicalSpace::point point(const std::string& uniform) {
        return light.uniform<PhysicalSpace::point>(uniform);
    }
    double number(const std::string& uniform) { return light.uniform<double>(uniform); }
};

TEST_F(Torch, HasItsParameters) {
    expectParameters(
        {{"intensity", typeid(double), "0.8", 0, ""},
         {"specular", typeid(double), "0.8", 1, ""},
         {"elevation", typeid(double), "100", 2, "max=1000"},
         {"scaleDistance", typeid(double), "1000", 3, "max=10000"},
         {"up", typeid(PhysicalSpace::vector), "0 0 1", 8, ""}, // before "location", at a higher level
         {"location", typeid(PhysicalSpace::point), "0 0 0", 7, ""}});
    EXPECT_EQ(light.light.priority(), -199990);
}

TEST_F(Torch, HasItsIcons) {
    EXPECT_EQ(light.light.qt_icon(), ":/light/Torch.png");
    ASSERT_NE(light.light.xpm_icon(), nullptr);
    EXPECT_STREQ(light.light.xpm_icon()[0], "32 86 402 2");
    EXPECT_EQ(light.light.gimp_icon(), "");
}

TEST_F(Torch, CreatorCarriesItsProperties) {
    // No description; the name comes from the file's.
    expectCreators(
        {{0,
          nullptr,
          {"date: of the build", "name: Torch", "source: navigation/light/Torch.cpp", "category: Scenery"}}});
    EXPECT_EQ(light.light.help(), "");
}

TEST_F(Torch, SnippetIsExact) {
    expectSnippet(
        {"",
         "",
         "uniform vec4 TorchIntensity$$         = vec4(1,1,1,1);",
         "uniform vec4 TorchSpecularIntensity$$ = vec4(1,1,1,1);",
         "uniform vec3 TorchLocation$$          = vec3(0,0,0);",
         "",
         "uniform vec3 TorchElevation$$         = vec3(0,0,100.0);",
         "",
         "const float TorchDistanceAttenuation$$ = 2;",
         "uniform float TorchScaleDistance$$       = 1000.0;",
         "",
         "",
         "/* VTorch",
         "",
         "Given a vertex, provide the light at this point.",
         "*/",
         "void\tgetLight_$$(in  vec3 vertex,",
         "\t\t    out vec3 light_incidence,",
         "\t\t    out vec3 intensity,",
         "\t\t    out vec3 specular_intensity",
         "\t\t    )",
         "{",
         "vec3\tTorchAt = TorchLocation$$ + TorchElevation$$;",
         "vec3\td = vertex - TorchAt;",
         "\tlight_incidence = normalize(d);",
         "",
         "float\tdl = length(d);",
         "float\ta = pow(TorchScaleDistance$$/dl, TorchDistanceAttenuation$$ );\t// Inverse-square law",
         "float\tattenuation = a/(1+a);\t\t\t\t\t\t// smooth infinity correction",
         "",
         "\tintensity          = TorchIntensity$$.rgb*attenuation;",
         "\tspecular_intensity = TorchSpecularIntensity$$.rgb*attenuation;",
         "}",
         ""},
        933);
}

TEST_F(Torch, DefaultsGiveTheirUniforms) {
    const auto& uniforms = light.source().uniforms();
    EXPECT_EQ(uniforms.size(), 5u);
    EXPECT_EQ(uniforms.at(intensity).index(), 13u);
    EXPECT_EQ(uniforms.at(specular).index(), 13u);
    EXPECT_EQ(uniforms.at(location).index(), 10u);
    EXPECT_EQ(uniforms.at(elevation).index(), 11u);
    EXPECT_EQ(uniforms.at(scale_distance).index(), 2u);
    EXPECT_EQ(color(intensity), (FloatColor{0.8f, 0.8f, 0.8f, 1}));
    EXPECT_EQ(color(specular), (FloatColor{0.8f, 0.8f, 0.8f, 1}));
    EXPECT_EQ(point(location), (PhysicalSpace::point{0, 0, 0}));
    EXPECT_EQ(triple(elevation), (DoubleTriple{0, 0, 100}));
    EXPECT_EQ(number(scale_distance), 1000);
}

/// OpenGL's form of the fall-off: constant 1, quadratic 1/s², of the inverse distance.
Lighting lightOfATorch(const glm::dvec3& place, double scale, double strength, double specular_strength,
                       const glm::dvec3& vertex) {
    const glm::dvec3 way = vertex - place;
    const double attenuation = 1 / (1 + glm::dot(way, way) / (scale * scale));
    return {glm::normalize(way), glm::dvec3(strength * attenuation),
            glm::dvec3(specular_strength * attenuation)};
}

/// No fixed-function light: the uniforms are all there is.
const DeclaredLight torch({
    .type = "Torch",
    .parameters = {{"intensity", "0.3", {{"TorchIntensity$$", "13: 1 1 1 1"}}}, // not the default 0.8
                   {"specular", "0.7", {{"TorchSpecularIntensity$$", "13: 1 1 1 1"}}},
                   {"elevation", "7.1", {{"TorchElevation$$", "11: 0 0 100"}}},
                   {"scaleDistance", "20.3", {{"TorchScaleDistance$$", "2: 1000"}}},
                   {"up", "1 0.5 0.25", {}}, // never read
                   {"location", "3.1 -4.2 5.3", {{"TorchLocation$$", "10: 0 0 0"}}}},
    .answers = {{"TorchElevation$$", "11: 0 0 7.1"},
                {"TorchIntensity$$", "13: 0.3 0.3 0.3 1"},
                {"TorchLocation$$", "10: 3.1 -4.2 5.3"},
                {"TorchScaleDistance$$", "2: 20.3"},
                {"TorchSpecularIntensity$$", "13: 0.7 0.7 0.7 1"}},
    .formula =
        [](const glm::dvec3& vertex) {
            return lightOfATorch({3.1, -4.2, 5.3 + 7.1}, 20.3, 0.3, 0.7, vertex);
        },
    .formula_as_declared =
        [](const glm::dvec3& vertex) {
            return lightOfATorch({0, 0, 100}, 1000, 1, 1, vertex);
        },
    .lighting = {{"location", "0.2 0.55 0"}, {"elevation", "0.5"}, {"scaleDistance", "0.6"}},
    .agreements = {}, // it has no OpenGL light
});

TEST_F(Torch, ElevationActsAlongZWhateverUpSays) {
    set("elevation", "7");
    set("up", "1 0 0");
    EXPECT_EQ(triple(elevation), (DoubleTriple{0, 0, 7}));
}

TEST_F(Torch, UpKeepsItsValue) {
    set("up", "1 0 0");
    EXPECT_EQ(light.parameter("up").globalValue().Text(), "1 0 0");
}

TEST_F(Torch, ValuesBeyondTheirRangesPassUnchanged) {
    set("elevation", "5000");
    set("scaleDistance", "20000");
    set("intensity", "-3");
    EXPECT_EQ(triple(elevation)[2], 5000);
    EXPECT_EQ(number(scale_distance), 20000);
    EXPECT_EQ(color(intensity), (FloatColor{-3, -3, -3, 1}));
    set("elevation", "-50");
    set("scaleDistance", "0");
    EXPECT_EQ(triple(elevation)[2], -50);
    EXPECT_EQ(number(scale_distance), 0);
}

TEST_F(Torch, StrengthsAreRoundedToSinglePrecisionAndTheRestIsNot) {
    set("intensity", "0.1");
    set("elevation", "0.1");
    set("location", "0.1 0.2 1e-300");
    EXPECT_EQ(color(intensity)[0], 0.1f);
    EXPECT_EQ(triple(elevation)[2], 0.1);
    EXPECT_EQ(point(location), (PhysicalSpace::point{0.1, 0.2, 1e-300}));
}

} // namespace
