#include "tests/support/light_fixture.hpp"

namespace {

using namespace korl::test;
using Orvid::PhysicalSpace;
using testing::ElementsAre;
using Property = Qelt::VCreatorPropertyBase;

constexpr const char* intensity = "HeadlightIntensity$$";
constexpr const char* specular = "HeadlightSpecularIntensity$$";

class Headlight : public LightTest {
protected:
    Headlight() : LightTest("Headlight") {}
    FloatColor rendered(const std::string& uniform) {
        light.light.environment_render(light.context);
        return color(uniform);
    }
};

TEST_F(Headlight, HasItsParameters) {
    expectParameters({{"intensity", typeid(double), "0.8", 0, ""},
                      {"specular", typeid(double), "0.8", 1, ""},
                      {"positionmv", typeid(PhysicalSpace::point), "0 0 1", 2, ""}});
    EXPECT_EQ(light.light.priority(), -200010);
}

TEST_F(Headlight, HasItsIcon) {
    ASSERT_NE(light.light.xpm_icon(), nullptr);
    EXPECT_STREQ(light.light.xpm_icon()[0], "32 32 300 2");
    EXPECT_EQ(light.light.qt_icon(), "");
    EXPECT_EQ(light.light.gimp_icon(), "");
}

TEST_F(Headlight, IsRegisteredTwice) {
    const auto catalogue = Qelt::VCreatorBase::catalogue();
    const Qelt::VCreatorBase &first = *catalogue.front(), &second = *catalogue.back();
    EXPECT_EQ(first.creatorNumber(), -3000);
    EXPECT_EQ(first.keyname("/"), "Headlight");
    EXPECT_EQ(first.properties().all().size(), 1u);
    EXPECT_EQ(second.creatorNumber(), 2000);
    EXPECT_EQ(second.keyname("/"), "Scenery/Headlight");
    ASSERT_EQ(second.properties().all().size(), 4u);
    EXPECT_EQ(second.properties().all()[0].kind(), Property::Kind::date);
    EXPECT_EQ(second.properties().all()[1].text(), "Headlight");
    EXPECT_EQ(second.properties().all()[2].text(), "navigation/light/VHeadlight.cpp");
    EXPECT_EQ(second.properties().all()[3].text(), "Scenery");
    EXPECT_TRUE(first.type() == second.type());
}

TEST_F(Headlight, EitherCreatorMakesTheSameKindOfObject) {
    const auto catalogue = Qelt::VCreatorBase::catalogue();
    const auto one = catalogue.front()->create("one"), other = catalogue.back()->create("other");
    const Qelt::VObject &made_by_one = *one.get(), &made_by_other = *other.get();
    EXPECT_TRUE(typeid(made_by_one) == typeid(made_by_other));
    EXPECT_EQ(one->saveText(), other->saveText());
    EXPECT_EQ(catalogue.back()->create("")->Name(), "Headlight");
}

TEST_F(Headlight, SnippetIsExact) {
    expectSnippet({"",
                   "",
                   "uniform vec4 HeadlightIntensity$$         = vec4(1,1,1,1);",
                   "uniform vec4 HeadlightSpecularIntensity$$ = vec4(1,1,1,1);",
                   "",
                   "#pragma import \"getViewDir\"",
                   "",
                   "//",
                   "// VHeadlight",
                   "//",
                   "void\tgetLight_$$(in vec3 vertex,",
                   "\t\t    out vec3 light_incidence   ,",
                   "\t\t    out vec3 intensity         ,",
                   "\t\t    out vec3 specular_intensity)",
                   "",
                   "{",
                   "\tlight_incidence    = getViewDir();",
                   "\tintensity          = HeadlightIntensity$$.rgb;",
                   "\tspecular_intensity = HeadlightSpecularIntensity$$.rgb;",
                   "}",
                   ""},
                  454);
}

TEST_F(Headlight, WritesItsUniformsWhileItSetsUpOpenGL) {
    EXPECT_TRUE(light.source().uniforms().empty()); // neither update nor illuminate writes them
    EXPECT_EQ(rendered(intensity), (FloatColor{0.8f, 0.8f, 0.8f, 1}));
    EXPECT_EQ(rendered(specular), (FloatColor{0.8f, 0.8f, 0.8f, 1}));
    EXPECT_EQ(light.source().uniforms().size(), 2u);
    EXPECT_EQ(light.source().uniforms().at(intensity).index(), 13u);
}

TEST_F(Headlight, FixedFunctionCallsAreExact) {
    set("intensity", "0.5");
    set("specular", "0.25");
    set("positionmv", "0.1 2 -3");
    EXPECT_THAT(calls(),
                ElementsAre("glLightf LIGHT0 CONSTANT_ATTENUATION 1", "glLightf LIGHT0 LINEAR_ATTENUATION 0",
                            "glLightf LIGHT0 QUADRATIC_ATTENUATION 0",
                            "glLightfv LIGHT0 DIFFUSE 0.5 0.5 0.5 1",
                            "glLightfv LIGHT0 SPECULAR 0.25 0.25 0.25 0", "glLightfv LIGHT0 AMBIENT 0 0 0 1",
                            "glMatrixMode MODELVIEW", "glPushMatrix", "glLoadIdentity",
                            "glLightfv LIGHT0 POSITION 0.1 2 -3 1", "glPopMatrix", "glEnable LIGHT0",
                            "glEnable LIGHTING"));
}

TEST_F(Headlight, DefaultFixedFunctionLight) {
    EXPECT_EQ(call("DIFFUSE"), "0.8 0.8 0.8 1");
    EXPECT_EQ(call("SPECULAR"), "0.8 0.8 0.8 0"); // alpha 0 here, 1 in the uniform
    EXPECT_EQ(call("POSITION"), "0 0 1 1");
}

TEST_F(Headlight, MayStandAtTheEye) {
    set("positionmv", "0 0 0");
    EXPECT_EQ(call("POSITION"), "0 0 0 1");
}

TEST_F(Headlight, NoStrengthLeavesTheAlphas) {
    set("intensity", "0");
    EXPECT_EQ(rendered(intensity), (FloatColor{0, 0, 0, 1}));
    EXPECT_EQ(call("DIFFUSE"), "0 0 0 1");
}

TEST_F(Headlight, OneLightSourceServesAllContexts) {
    auto& source = light.source();
    auto& other = light.otherSource();
    EXPECT_EQ(&source, &other);
    light.parameter("intensity").getLocalValue(*light.other_pool.get(), "", true)->setValueFromText("0.25");
    light.light.environment_render(light.context);
    EXPECT_EQ(std::get<FloatColor>(source.uniforms().at(intensity))[0], 0.8f);
    light.light.environment_render(light.other_context); // the rendering that came last
    EXPECT_EQ(std::get<FloatColor>(source.uniforms().at(intensity))[0], 0.25f);
}

TEST_F(Headlight, EachContextsLightNumberCounts) {
    light.context.setLightNumber(2);
    light.other_context.setLightNumber(5);
    EXPECT_THAT(calls(), testing::Contains("glEnable LIGHT1"));
    takeRecordedCalls();
    light.light.environment_render(light.other_context);
    EXPECT_THAT(takeRecordedCalls(), testing::Contains("glEnable LIGHT4"));
}

TEST_F(Headlight, FallsBackWhereParametersWereRemoved) {
    set("positionmv", "1 2 3");
    for (const char* const name : {"intensity", "specular", "positionmv"})
        remove(name);
    EXPECT_EQ(rendered(intensity), (FloatColor{1, 1, 1, 1})); // not the default 0.8
    EXPECT_EQ(rendered(specular), (FloatColor{1, 1, 1, 1}));
    EXPECT_EQ(call("SPECULAR"), "1 1 1 0");
    EXPECT_EQ(call("POSITION"), "0 0 1 1");
}

TEST_F(Headlight, FallsBackWhereValuesAreOfAnotherType) {
    putColor("intensity");
    putColor("specular");
    putNumber("positionmv");
    EXPECT_EQ(rendered(intensity), (FloatColor{1, 1, 1, 1}));
    EXPECT_EQ(call("POSITION"), "0 0 1 1");
}

TEST_F(Headlight, TakesComputedValues) {
    put("intensity", new ComputedValue<double>(0.5));
    put("positionmv", new ComputedValue<PhysicalSpace::point>({1, 2, 3}));
    EXPECT_EQ(rendered(intensity)[0], 0.5f);
    EXPECT_EQ(call("POSITION"), "1 2 3 1");
}

} // namespace
