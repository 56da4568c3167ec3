// The fixed-function lights as a real context stores them.

#include "every_light.hpp"
#include "tests/support/gl_test.hpp"

#include <array>
#include <epoxy/gl.h>
#include <iterator>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace {

using korl::test::ModuleLight;
using Quad = std::array<GLfloat, 4>;

Quad state(GLenum name) {
    Quad values{};
    glGetLightfv(GL_LIGHT2, name, values.data());
    return values;
}

class LightStateGLTest : public korl::test::GLTest {
protected:
    void SetUp() override {
        GLTest::SetUp();
        glPushAttrib(GL_ALL_ATTRIB_BITS);
        glMatrixMode(GL_MODELVIEW);
        glLoadIdentity();
    }
    void TearDown() override {
        glPopAttrib();
        GLTest::TearDown();
    }

    static void set(ModuleLight& light, const std::map<std::string, std::string>& values) {
        for (const auto& [parameter, text] : values)
            ASSERT_TRUE(light.parameter(parameter).setGlobalValueFromText(text)) << parameter;
    }

    void setUp(ModuleLight& light) {
        light.context.setLightNumber(3);
        EXPECT_TRUE(light.light.environment_render(light.context));
        EXPECT_TRUE(glIsEnabled(GL_LIGHTING));
        EXPECT_TRUE(glIsEnabled(GL_LIGHT2));
    }
};

class EveryLightsStateGLTest : public LightStateGLTest,
                               public testing::WithParamInterface<korl::test::LightDeclaration> {};

/// The numbers of the call of a light's answers that sets a value, such as "DIFFUSE"; empty if none does.
std::vector<GLfloat> numbersFor(const korl::test::LightDeclaration& light, const std::string& name) {
    for (const auto& [call, text] : light.answers)
        if (call.starts_with("glLight") && call.ends_with(" " + name)) {
            std::istringstream stream(text);
            return {std::istream_iterator<GLfloat>(stream), {}};
        }
    return {};
}

TEST_P(EveryLightsStateGLTest, HoldsWhatTheLightSetsAndNothingElse) {
    struct Value {
        GLenum name;
        std::string text;
        std::vector<GLfloat> before;
    };
    const Value values[]{{GL_AMBIENT, "AMBIENT", {0.1f, 0.2f, 0.3f, 0.4f}},
                         {GL_DIFFUSE, "DIFFUSE", {0.2f, 0.3f, 0.4f, 0.5f}},
                         {GL_SPECULAR, "SPECULAR", {0.3f, 0.4f, 0.5f, 0.6f}},
                         {GL_POSITION, "POSITION", {7, 8, 9, 1}},
                         {GL_SPOT_DIRECTION, "SPOT_DIRECTION", {4, 5, 6}},
                         {GL_SPOT_EXPONENT, "SPOT_EXPONENT", {3}},
                         {GL_SPOT_CUTOFF, "SPOT_CUTOFF", {33}},
                         {GL_CONSTANT_ATTENUATION, "CONSTANT_ATTENUATION", {0.5f}},
                         {GL_LINEAR_ATTENUATION, "LINEAR_ATTENUATION", {0.25f}},
                         {GL_QUADRATIC_ATTENUATION, "QUADRATIC_ATTENUATION", {0.125f}}};
    for (const Value& value : values)
        glLightfv(GL_LIGHT2, value.name, value.before.data());
    glDisable(GL_LIGHTING);
    glDisable(GL_LIGHT2);
    ModuleLight light(GetParam().type);
    setValues(light, GetParam());
    light.context.setLightNumber(3);
    EXPECT_TRUE(light.light.environment_render(light.context));
    EXPECT_EQ(glIsEnabled(GL_LIGHT2) == GL_TRUE, GetParam().hasOpenGLLight());
    EXPECT_EQ(glIsEnabled(GL_LIGHTING) == GL_TRUE, GetParam().hasOpenGLLight());
    for (const Value& value : values) {
        std::vector<GLfloat> expected = numbersFor(GetParam(), value.text);
        if (expected.empty())
            expected = value.before;
        expected.resize(value.before.size()); // of a direction, the fourth number does not count
        const Quad found = state(value.name);
        EXPECT_EQ(
            std::vector<GLfloat>(found.begin(), found.begin() + static_cast<std::ptrdiff_t>(expected.size())),
            expected)
            << value.text;
    }
}

FOR_EVERY_LIGHT(EveryLightsStateGLTest);

TEST_F(LightStateGLTest, SunIsTakenInTheCurrentMatrix) {
    ModuleLight light("Sun");
    glRotatef(90, 1, 0, 0); // z becomes -y
    setUp(light);
    EXPECT_NEAR(state(GL_POSITION)[1], -1, 1e-6);
}

TEST_F(LightStateGLTest, HeadlightStandsInEyeSpaceWhateverTheScene) {
    ModuleLight light("Headlight");
    set(light, {{"intensity", "0.3"}, {"specular", "0.7"}, {"positionmv", "1 2 3"}});
    glMatrixMode(GL_MODELVIEW);
    glTranslatef(10, 20, 30);
    glRotatef(40, 1, 1, 0);
    std::array<GLfloat, 16> before{}, after{};
    glGetFloatv(GL_MODELVIEW_MATRIX, before.data());
    glMatrixMode(GL_PROJECTION);
    setUp(light);
    EXPECT_EQ(state(GL_POSITION), (Quad{1, 2, 3, 1}));
    EXPECT_EQ(state(GL_DIFFUSE), (Quad{0.3f, 0.3f, 0.3f, 1}));
    EXPECT_EQ(state(GL_SPECULAR), (Quad{0.7f, 0.7f, 0.7f, 0}));
    EXPECT_EQ(state(GL_AMBIENT), (Quad{0, 0, 0, 1}));
    glGetFloatv(GL_MODELVIEW_MATRIX, after.data());
    EXPECT_EQ(before, after);
    GLint mode = 0;
    glGetIntegerv(GL_MATRIX_MODE, &mode);
    EXPECT_EQ(mode, GL_MODELVIEW); // not restored, on purpose
}

} // namespace
