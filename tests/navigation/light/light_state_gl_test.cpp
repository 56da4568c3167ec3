// The fixed-function lights as a real context stores them.

#include "tests/support/gl_test.hpp"
#include "tests/support/module_light.hpp"

#include <array>
#include <epoxy/gl.h>
#include <gmock/gmock.h>
#include <map>
#include <string>

namespace {

using korl::test::ModuleLight;
using Quad = std::array<GLfloat, 4>;
using Triple = std::array<GLfloat, 3>;

Quad state(GLenum name) {
    Quad values{};
    glGetLightfv(GL_LIGHT2, name, values.data());
    return values;
}

Triple spotDirection() {
    Quad values = state(GL_SPOT_DIRECTION);
    return {values[0], values[1], values[2]};
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

    static void expectNoAttenuation() {
        EXPECT_EQ(state(GL_CONSTANT_ATTENUATION)[0], 1);
        EXPECT_EQ(state(GL_LINEAR_ATTENUATION)[0], 0);
        EXPECT_EQ(state(GL_QUADRATIC_ATTENUATION)[0], 0);
    }

    void setUp(ModuleLight& light) {
        light.context.setLightNumber(3);
        EXPECT_TRUE(light.light.environment_render(light.context));
        EXPECT_TRUE(glIsEnabled(GL_LIGHTING));
        EXPECT_TRUE(glIsEnabled(GL_LIGHT2));
    }
};

TEST_F(LightStateGLTest, DirectionalLight) {
    ModuleLight light("DirectionalLight");
    set(light,
        {{"Intensity", "0.5"}, {"Specular", "0.1"}, {"direction", "1 -2 -2"}, {"color", "0.2 0.4 0.8 0.3"}});
    setUp(light);
    EXPECT_EQ(state(GL_DIFFUSE), (Quad{0.1f, 0.2f, 0.4f, 1}));
    EXPECT_EQ(state(GL_AMBIENT), (Quad{0, 0, 0, 1}));
    EXPECT_EQ(state(GL_SPECULAR), (Quad{0.1f, 0.1f, 0.1f, 1}));
    EXPECT_EQ(state(GL_POSITION), (Quad{-1 / 3.0f, 2 / 3.0f, 2 / 3.0f, 0}));
    EXPECT_EQ(spotDirection(), (Triple{1 / 3.0f, -2 / 3.0f, -2 / 3.0f}));
    EXPECT_EQ(state(GL_SPOT_CUTOFF)[0], 180);
    expectNoAttenuation();
}

TEST_F(LightStateGLTest, Sun) {
    ModuleLight light("Sun");
    set(light, {{"Intensity", "0.3"}, {"Specular", "0.7"}, {"latitude", "10"}, {"timeofday", "8"}});
    setUp(light);
    EXPECT_EQ(state(GL_DIFFUSE), (Quad{0.3f, 0.3f, 0.3f, 1}));
    EXPECT_EQ(state(GL_AMBIENT), (Quad{0, 0, 0, 1}));
    EXPECT_EQ(state(GL_SPECULAR), (Quad{0.7f, 0.7f, 0.7f, 1}));
    EXPECT_EQ(state(GL_POSITION), (Quad{0, 0, 1, 0}));
    EXPECT_EQ(spotDirection(), (Triple{0, 0, -1}));
    EXPECT_EQ(state(GL_SPOT_CUTOFF)[0], 180);
    expectNoAttenuation();
}

TEST_F(LightStateGLTest, SunIsTakenInTheCurrentMatrix) {
    ModuleLight light("Sun");
    glRotatef(90, 1, 0, 0); // z becomes -y
    setUp(light);
    EXPECT_NEAR(state(GL_POSITION)[1], -1, 1e-6);
}

TEST_F(LightStateGLTest, DistanceLightLeavesWhatItDoesNotSet) {
    ModuleLight light("DistanceLight");
    constexpr Quad odd{0.1f, 0.2f, 0.3f, 0.4f};
    glLightfv(GL_LIGHT2, GL_AMBIENT, odd.data());
    glLightf(GL_LIGHT2, GL_SPOT_CUTOFF, 33);
    glLightf(GL_LIGHT2, GL_LINEAR_ATTENUATION, 0.25f);
    set(light, {{"Intensity", "0.5"},
                {"Specular", "0.7"},
                {"lightposition", "1 2 3"},
                {"shineat", "5 4 -3"},
                {"color", "0.2 0.4 0.8 0.3"}});
    setUp(light);
    EXPECT_EQ(state(GL_AMBIENT), odd);
    EXPECT_EQ(state(GL_SPOT_CUTOFF)[0], 33);
    EXPECT_EQ(state(GL_LINEAR_ATTENUATION)[0], 0.25f);
    EXPECT_EQ(state(GL_POSITION), (Quad{1, 2, 3, 1}));
    EXPECT_EQ(spotDirection(), (Triple{4, 2, -6}));
    EXPECT_EQ(state(GL_DIFFUSE), (Quad{0.1f, 0.2f, 0.4f, 1}));
    EXPECT_EQ(state(GL_SPECULAR), (Quad{0.7f, 0.7f, 0.7f, 1}));
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

TEST_F(LightStateGLTest, TorchEnablesNothing) {
    ModuleLight light("Torch");
    glDisable(GL_LIGHTING);
    EXPECT_TRUE(light.light.environment_render(light.context));
    EXPECT_FALSE(glIsEnabled(GL_LIGHT0));
    EXPECT_FALSE(glIsEnabled(GL_LIGHTING));
}

} // namespace
