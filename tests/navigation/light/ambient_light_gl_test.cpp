#include "tests/support/gl_test.hpp"
#include "tests/support/module_light.hpp"

#include <array>
#include <epoxy/gl.h>
#include <gtest/gtest.h>

namespace {

using Quad = std::array<GLfloat, 4>;

Quad lightState(GLenum light, GLenum name) {
    Quad state{};
    glGetLightfv(light, name, state.data());
    return state;
}

class AmbientLightGLTest : public korl::test::GLTest {};

TEST_F(AmbientLightGLTest, StateReadsBack) {
    korl::test::ModuleLight ambient("AmbientLight");
    ambient.parameter("Color").setGlobalValueFromText("0.2 0.4 0.8 0.3");
    ambient.context.setLightNumber(2);
    glDisable(GL_LIGHTING);
    EXPECT_TRUE(ambient.light.environment_render(ambient.context));
    EXPECT_TRUE(glIsEnabled(GL_LIGHTING));
    EXPECT_TRUE(glIsEnabled(GL_LIGHT1));
    EXPECT_FALSE(glIsEnabled(GL_LIGHT0));
    EXPECT_EQ(lightState(GL_LIGHT1, GL_AMBIENT), (Quad{0.2f, 0.4f, 0.8f, 1}));
    EXPECT_EQ(lightState(GL_LIGHT1, GL_DIFFUSE), (Quad{0, 0, 0, 0}));
    EXPECT_EQ(lightState(GL_LIGHT1, GL_SPECULAR), (Quad{0, 0, 0, 0}));
    EXPECT_EQ(lightState(GL_LIGHT1, GL_POSITION), (Quad{0, 0, 0, 0}));
    EXPECT_EQ(lightState(GL_LIGHT1, GL_SPOT_DIRECTION), (Quad{0, 0, 0, 0}));
    EXPECT_EQ(lightState(GL_LIGHT1, GL_SPOT_CUTOFF)[0], 0);
    glDisable(GL_LIGHT1);
    glDisable(GL_LIGHTING);
}

} // namespace
