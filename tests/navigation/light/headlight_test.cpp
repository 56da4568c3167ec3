#include "every_light.hpp"
#include "tests/support/light_fixture.hpp"

namespace {

using namespace korl::test;
using Orvid::PhysicalSpace;

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
    expectCreators({{-3000, nullptr, {"name: Headlight"}},
                    {2000,
                     nullptr,
                     {"date: of the build", "name: Headlight", "source: navigation/light/VHeadlight.cpp",
                      "category: Scenery"}}});
    EXPECT_EQ(Qelt::VCreatorBase::catalogue().front()->creatorNumber(), -3000); // ahead of all others
    EXPECT_EQ(Qelt::VCreatorBase::catalogue().back()->creatorNumber(), 2000);   // and behind them
}

TEST_F(Headlight, EitherCreatorMakesTheSameKindOfObject) {
    const auto catalogue = Qelt::VCreatorBase::catalogue();
    const auto one = catalogue.front()->create("one"), other = catalogue.back()->create("other");
    const Qelt::VObject &made_by_one = *one, &made_by_other = *other;
    EXPECT_TRUE(typeid(made_by_one) == typeid(made_by_other));
    for (const auto& [name, text] :
         {std::pair("intensity", "0.8"), {"specular", "0.8"}, {"positionmv", "0 0 1"}})
        for (const Qelt::VObject* const made : {&made_by_one, &made_by_other})
            EXPECT_EQ(made->findParameter(name)->globalValue().Text(), text);
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

const DeclaredLight headlight({
    .type = "Headlight",
    .parameters = {{"intensity",
                    "0.3",
                    {{"HeadlightIntensity$$", "13: 1 1 1 1"}, // not the default 0.8
                     {"glLightfv LIGHT2 DIFFUSE", "1 1 1 1"}}},
                   {"specular",
                    "0.7",
                    {{"HeadlightSpecularIntensity$$", "13: 1 1 1 1"},
                     {"glLightfv LIGHT2 SPECULAR", "1 1 1 0"}}},
                   {"positionmv", "3.1 -4.2 5.3", {{"glLightfv LIGHT2 POSITION", "0 0 1 1"}}}},
    .answers = {{"HeadlightIntensity$$", "13: 0.3 0.3 0.3 1"},
                {"HeadlightSpecularIntensity$$", "13: 0.7 0.7 0.7 1"},
                {"glLightf LIGHT2 CONSTANT_ATTENUATION", "1"},
                {"glLightf LIGHT2 LINEAR_ATTENUATION", "0"},
                {"glLightf LIGHT2 QUADRATIC_ATTENUATION", "0"},
                {"glLightfv LIGHT2 DIFFUSE", "0.3 0.3 0.3 1"},
                {"glLightfv LIGHT2 SPECULAR", "0.7 0.7 0.7 0"}, // alpha 0 here, 1 in the uniform
                {"glLightfv LIGHT2 AMBIENT", "0 0 0 1"},
                {"glMatrixMode MODELVIEW", ""},
                {"glPushMatrix", ""},
                {"glLoadIdentity", ""},
                {"glLightfv LIGHT2 POSITION", "3.1 -4.2 5.3 1"},
                {"glPopMatrix", ""},
                {"glEnable LIGHT2", ""},
                {"glEnable LIGHTING", ""}},
    .formula =
        [](const glm::dvec3& vertex) {
            return Lighting{glm::normalize(vertex - eye), glm::dvec3(0.3), glm::dvec3(0.7)};
        },
    .formula_as_declared =
        [](const glm::dvec3& vertex) {
            return Lighting{glm::normalize(vertex - eye), glm::dvec3(1), glm::dvec3(1)};
        },
    .lighting = {{"specular", "0.5"}},
    .agreements = {{{{"positionmv", "0 0 0"}, {"specular", "0"}}, 2}, {{{"positionmv", "0 0 0"}}, 4}},
    .has_one_source = true,
});

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
    light.parameter("intensity").getLocalValue(*light.other_pool, "", true)->setValueFromText("0.25");
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

} // namespace
