#include "tests/support/computed_value.hpp"
#include "tests/support/gl_recorder.hpp"
#include "tests/support/module_light.hpp"

#include <orvid/fixed_array.hpp>
#include <orvid/rgba_float.hpp>
#include <palune/geometry_traits.hpp>

#include <gmock/gmock.h>

namespace {

using korl::test::takeRecordedCalls;
using Orvid::rgba_float_t;
using Qelt::VValue;
using Qelt::VValueBase;
using Tessan::StrongPtr;
using testing::ElementsAre;
using FloatColor = Orvid::FixedArray<float, 4>;

constexpr const char* uniform = "AmbientIntensity$$";
constexpr FloatColor fallback{0.5f, 0.5f, 0.5f, 1};

class AmbientLight : public testing::Test {
protected:
    korl::test::ModuleLight ambient{"AmbientLight"};
    FloatColor intensity() { return ambient.uniform<FloatColor>(uniform); }
    std::string openGLAmbient() {
        takeRecordedCalls();
        ambient.light.environment_render(ambient.context);
        return takeRecordedCalls().front();
    }
};

TEST_F(AmbientLight, HasOneParameter) {
    const auto& parameters = ambient.light.parameters();
    ASSERT_EQ(parameters.size(), 1u);
    EXPECT_EQ(parameters[0].parameter->Name(), "Color");
    EXPECT_EQ(parameters[0].parameter->type(), typeid(rgba_float_t));
    EXPECT_EQ(parameters[0].parameter->DefaultValue().Text(), "1 1 1 1");
    EXPECT_EQ(parameters[0].expert_level, 1);
    EXPECT_TRUE(parameters[0].parameter->properties().empty());
}

TEST_F(AmbientLight, HasItsPriorityAndTheDefaultIcons) {
    EXPECT_EQ(ambient.light.priority(), -199990);
    EXPECT_EQ(ambient.light.qt_icon(), "");
    EXPECT_EQ(ambient.light.xpm_icon(), nullptr);
    EXPECT_EQ(ambient.light.gimp_icon(), "");
}

TEST_F(AmbientLight, SnippetIsExact) {
    const std::string lines[] = {"",
                                 "",
                                 "uniform vec4 AmbientIntensity$$         = vec4(1,1,1,1);",
                                 "",
                                 "//",
                                 "// AmbientLight",
                                 "//",
                                 "void\tgetLight_$$(in vec3 vertex,",
                                 "\t\t    out vec3 light_incidence,",
                                 "\t\t    out vec3 intensity,",
                                 "\t\t    out vec3 specular_intensity",
                                 "\t\t    )",
                                 "",
                                 "{",
                                 "\tlight_incidence = vec3(0,0,0);",
                                 "\tintensity = AmbientIntensity$$.rgb;",
                                 "\tspecular_intensity = vec3(0,0,0);",
                                 "}",
                                 ""};
    std::string expected;
    for (const std::string& line : lines)
        expected += line + "\n";
    EXPECT_EQ(ambient.source().snippet(), expected);
    EXPECT_EQ(ambient.source().snippet().size(), 325u);
}

TEST_F(AmbientLight, NewOneIsWhite) {
    EXPECT_EQ(ambient.source().uniforms().size(), 1u);
    EXPECT_EQ(ambient.source().uniforms().at(uniform).index(), 13u); // four floats
    EXPECT_EQ(intensity(), (FloatColor{1, 1, 1, 1}));
    EXPECT_EQ(openGLAmbient(), "glLightfv LIGHT0 AMBIENT 1 1 1 1");
}

TEST_F(AmbientLight, FixedFunctionCallsAreExact) {
    ambient.parameter("Color").setGlobalValueFromText("0.2 0.4 0.8 0.3");
    takeRecordedCalls();
    EXPECT_TRUE(ambient.light.environment_render(ambient.context));
    EXPECT_THAT(takeRecordedCalls(), ElementsAre("glLightfv LIGHT0 AMBIENT 0.2 0.4 0.8 1", //
                                                 "glLightfv LIGHT0 DIFFUSE 0 0 0 0",       //
                                                 "glLightfv LIGHT0 SPECULAR 0 0 0 0",      //
                                                 "glLightfv LIGHT0 SPOT_DIRECTION 0 0 0 0",
                                                 "glLightfv LIGHT0 POSITION 0 0 0 0", //
                                                 "glLightf LIGHT0 SPOT_CUTOFF 0",     //
                                                 "glEnable LIGHT0",                   //
                                                 "glEnable LIGHTING"));
}

TEST_F(AmbientLight, AlphaGoesToTheUniformButNotToOpenGL) {
    ambient.parameter("Color").setGlobalValueFromText("0.2 0.4 0.8 0.3");
    EXPECT_EQ(intensity(), (FloatColor{0.2f, 0.4f, 0.8f, 0.3f}));
    EXPECT_EQ(openGLAmbient(), "glLightfv LIGHT0 AMBIENT 0.2 0.4 0.8 1");
}

TEST_F(AmbientLight, ChangesShowAtTheNextUpdate) {
    EXPECT_EQ(intensity(), (FloatColor{1, 1, 1, 1}));
    ambient.parameter("Color").setGlobalValueFromText("-1 0 1e30 0");
    EXPECT_EQ(intensity(), (FloatColor{-1, 0, 1e30f, 0})); // nothing is clamped
}

TEST_F(AmbientLight, FallsBackWhereTheParameterWasRemoved) {
    ambient.light.removeParameter("Color");
    EXPECT_EQ(intensity(), fallback);
    EXPECT_EQ(openGLAmbient(), "glLightfv LIGHT0 AMBIENT 0.5 0.5 0.5 1");
}

TEST_F(AmbientLight, FallsBackWhereTheValueIsNoColor) {
    ambient.pool->createVariable(ambient.parameter("Color"), StrongPtr<VValueBase>(new VValue<double>(3)));
    EXPECT_EQ(intensity(), fallback);
    EXPECT_EQ(openGLAmbient(), "glLightfv LIGHT0 AMBIENT 0.5 0.5 0.5 1");
}

TEST_F(AmbientLight, FallsBackWhereTheSourceHasGone) {
    {
        const StrongPtr<Qelt::VParameter> source(
            new Qelt::VValueParameter<rgba_float_t>({0.1f, 0.2f, 0.3f, 1}, "source"));
        ambient.light.findSlot("Color")->connect(source);
        EXPECT_EQ(intensity(), (FloatColor{0.1f, 0.2f, 0.3f, 1}));
    }
    EXPECT_EQ(intensity(), fallback);
}

TEST_F(AmbientLight, FallsBackWhereTheColorIsComputedNotHeld) {
    ambient.pool->createVariable(
        ambient.parameter("Color"),
        StrongPtr<VValueBase>(new korl::test::ComputedValue<rgba_float_t>({1, 0, 0, 1})));
    EXPECT_EQ(intensity(), fallback); // only a held colour value counts
}

TEST_F(AmbientLight, EachContextHasItsOwnLightSource) {
    ambient.parameter("Color")
        .getLocalValue(*ambient.other_pool.get(), "", true)
        ->setValueFromText("0 0 1 1");
    auto& source = ambient.source();
    auto& other = ambient.otherSource();
    EXPECT_NE(&source, &other);
    EXPECT_NE(source.serialNumber(), other.serialNumber());
    EXPECT_EQ(std::get<FloatColor>(source.uniforms().at(uniform)), (FloatColor{1, 1, 1, 1}));
    EXPECT_EQ(std::get<FloatColor>(other.uniforms().at(uniform)), (FloatColor{0, 0, 1, 1}));
}

TEST_F(AmbientLight, KeepsItsLightSourceFromFrameToFrame) {
    const auto serial = ambient.source().serialNumber();
    EXPECT_EQ(ambient.source().serialNumber(), serial);
}

} // namespace
