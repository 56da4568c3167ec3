#include "shell/base/error.hpp"
#include "shell/render/gl_context.hpp"
#include "tests/support/gl_test.hpp"

#include <array>
#include <cstdint>
#include <cstdlib>
#include <epoxy/egl.h>
#include <epoxy/gl.h>
#include <gmock/gmock.h>
#include <gtest/gtest-spi.h>
#include <iostream>
#include <thread>

namespace korl {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::StartsWith;
using GLContextGLTest = test::GLTest;
using GLErrorHearingGLTest = test::GLTest;

/// Tries to make a context where the environment has the variable, in this (child) process; prints the
/// error's text.
[[noreturn]] void printErrorWith(const char* variable, const char* value, const GLContext::Options& options) {
    setenv(variable, value, 1);
    try {
        const GLContext context(options);
        std::cerr << "made " << context.info().renderer << " by " << context.info().how;
    } catch (const Error& error) {
        std::cerr << error.what() << "\n(end)";
    }
    std::_Exit(0);
}

/// The colour that a context's own drawing gives, in a framebuffer of one pixel.
std::array<std::uint8_t, 4> clearedPixel(float red) {
    GLuint renderbuffer = 0;
    GLuint framebuffer = 0;
    glGenRenderbuffers(1, &renderbuffer);
    glGenFramebuffers(1, &framebuffer);
    glBindRenderbuffer(GL_RENDERBUFFER, renderbuffer);
    glRenderbufferStorage(GL_RENDERBUFFER, GL_RGBA8, 1, 1);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, renderbuffer);
    glClearColor(red, 0, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    std::array<std::uint8_t, 4> pixel{};
    glReadPixels(0, 0, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, pixel.data());
    glDeleteFramebuffers(1, &framebuffer);
    glDeleteRenderbuffers(1, &renderbuffer);
    return pixel;
}

TEST_F(GLContextGLTest, HasCompatibilityProfileOfVersion3OrLater) {
    EXPECT_GE(epoxy_gl_version(), 30);
    // Calls that a core profile refuses.
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glEnable(GL_LIGHTING);
    glDisable(GL_LIGHTING);
    glPopMatrix();
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(GLContextGLTest, InfoIsTheDriversOwn) {
    const GLContext::Info& info = context().info();
    EXPECT_EQ(info.renderer, reinterpret_cast<const char*>(glGetString(GL_RENDERER)));
    EXPECT_EQ(info.version, reinterpret_cast<const char*>(glGetString(GL_VERSION)));
    EXPECT_THAT(info.how, StartsWith("EGL "));
}

TEST_F(GLContextGLTest, DebugIsAsAskedFor) {
    GLint flags = 0;
    glGetIntegerv(GL_CONTEXT_FLAGS, &flags);
    EXPECT_NE(flags & GL_CONTEXT_FLAG_DEBUG_BIT, 0);
    const GLContext plain;
    glGetIntegerv(GL_CONTEXT_FLAGS, &flags);
    EXPECT_EQ(flags & GL_CONTEXT_FLAG_DEBUG_BIT, 0);
}

TEST_F(GLContextGLTest, EachWayGivesAContextThatDraws) {
    for (const bool devices_only : {false, true}) {
        for (const bool pbuffer : {false, true}) {
            const GLContext made({.devices_only = devices_only, .pbuffer = pbuffer});
            EXPECT_EQ(clearedPixel(1), (std::array<std::uint8_t, 4>{255, 0, 0, 255})) << made.info().how;
            EXPECT_EQ(eglGetCurrentSurface(EGL_DRAW) != EGL_NO_SURFACE, pbuffer);
            EXPECT_EQ(made.info().how.ends_with(", pbuffer"), pbuffer) << made.info().how;
            if (devices_only) {
                EXPECT_THAT(made.info().how, StartsWith("EGL device "));
            }
        }
    }
}

TEST_F(GLContextGLTest, EndOfOneContextLeavesAnother) {
    const EGLContext kept = eglGetCurrentContext();
    {
        const GLContext other;
        EXPECT_NE(eglGetCurrentContext(), kept);
    }
    EXPECT_EQ(eglGetCurrentContext(), EGL_NO_CONTEXT);
    context().makeCurrent();
    EXPECT_EQ(eglGetCurrentContext(), kept);
    EXPECT_EQ(clearedPixel(0), (std::array<std::uint8_t, 4>{0, 0, 0, 255}));
}

TEST_F(GLContextGLTest, EndOfAContextThatIsNotCurrentLeavesTheCurrentOne) {
    const EGLContext kept = eglGetCurrentContext();
    {
        const GLContext other;
        context().makeCurrent();
    }
    EXPECT_EQ(eglGetCurrentContext(), kept);
}

TEST_F(GLContextGLTest, AnotherThreadGetsItOnlyOnceReleased) {
    GLContext other;
    std::string refusal = "none";
    std::thread([&] {
        try {
            other.makeCurrent();
        } catch (const Error& error) {
            refusal = error.what();
        }
    }).join();
    EXPECT_EQ(refusal, "the OpenGL context of " + other.info().renderer +
                           " can't be made current: eglMakeCurrent: EGL_BAD_ACCESS\n"
                           "It can be current on one thread only; release it there first.");
    other.release();
    EXPECT_EQ(eglGetCurrentContext(), EGL_NO_CONTEXT);
    refusal = "none";
    std::thread([&] {
        try {
            other.makeCurrent();
            other.release();
        } catch (const Error& error) {
            refusal = error.what();
        }
    }).join();
    EXPECT_EQ(refusal, "none");
    context().makeCurrent();
}

TEST_F(GLContextGLTest, ReleaseOfAContextThatIsNotCurrentChangesNothing) {
    GLContext other;
    context().makeCurrent();
    const EGLContext kept = eglGetCurrentContext();
    other.release();
    EXPECT_EQ(eglGetCurrentContext(), kept);
}

// The child makes its first context after the variable is set; with "threadsafe" it starts the program anew.
class GLContextFailureGLTest : public ::testing::Test {
protected:
    void SetUp() override { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
};

constexpr const char* packages =
    "On Debian the packages libegl1, libopengl0, libegl-mesa0 and libgl1-mesa-dri give "
    "one that needs no GPU.\n\\(end\\)";

TEST_F(GLContextFailureGLTest, WithoutAnyDriverTheErrorListsWhatWasTried) {
    EXPECT_EXIT(
        printErrorWith("__EGL_VENDOR_LIBRARY_FILENAMES", "/nonexistent.json", {}),
        ::testing::ExitedWithCode(0),
        std::string("^no OpenGL context could be made \\(3.0 or later, compatibility profile\\). Tried:\n"
                    "  EGL surfaceless platform: .*\n"
                    "  EGL devices: .*\n") +
            packages);
}

// Mesa can be told to be older than it is, so these two take its driver, also where there is another.
[[noreturn]] void printErrorOfMesaAs(const char* version) {
    setenv("__EGL_VENDOR_LIBRARY_FILENAMES", "/usr/share/glvnd/egl_vendor.d/50_mesa.json", 1);
    printErrorWith("MESA_GL_VERSION_OVERRIDE", version, {});
}

TEST_F(GLContextFailureGLTest, TooOldAnOpenGLIsNamed) {
    EXPECT_EXIT(
        printErrorOfMesaAs("2.1"), ::testing::ExitedWithCode(0),
        "  EGL surfaceless platform: OpenGL 2\\.1 .* of .* is too old, 3\\.0 with framebuffer objects is "
        "needed\n");
}

TEST_F(GLContextFailureGLTest, CoreProfileIsRefused) {
    EXPECT_EXIT(printErrorOfMesaAs("3.3FC"), ::testing::ExitedWithCode(0),
                "  EGL surfaceless platform: OpenGL 3\\.3 .* of .* lacks the compatibility profile\n");
}

TEST_F(GLErrorHearingGLTest, ExpectedErrorIsCollected) {
    const test::ExpectedGLErrors errors;
    glEnable(GL_TRIANGLES);
    EXPECT_THAT(errors.messages(), ElementsAre(HasSubstr("GL_INVALID_ENUM")));
}

TEST_F(GLErrorHearingGLTest, UnexpectedErrorFails) {
    EXPECT_NONFATAL_FAILURE(glEnable(GL_TRIANGLES), "OpenGL reports: GL_INVALID_ENUM");
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_INVALID_ENUM));
}

TEST_F(GLErrorHearingGLTest, ExpectedErrorThatDoesNotComeFails) {
    EXPECT_NONFATAL_FAILURE(test::ExpectedGLErrors(), "an OpenGL error was expected, but none came");
}

} // namespace
} // namespace korl
