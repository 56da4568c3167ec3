#include "shell/base/error.hpp"
#include "shell/render/offscreen_target.hpp"
#include "tests/support/error_of.hpp"
#include "tests/support/gl_test.hpp"

#include <gmock/gmock.h>
#include <limits>
#include <string>
#include <vector>

namespace korl {
namespace {

using ::testing::Each;
using OffscreenTargetGLTest = test::GLTest;
using GLObjectsGLTest = test::GLTest;
using Format = OffscreenTarget::Format;

std::vector<std::uint8_t> bytesOf(const OffscreenTarget& target) {
    std::vector<std::uint8_t> pixels(static_cast<std::size_t>(target.width() * target.height() * 4));
    target.read(pixels);
    return pixels;
}

std::string errorOf(int width, int height) {
    return korl::test::errorOf([&] { const OffscreenTarget target(width, height); });
}

void clear(float red, float green, float blue, float alpha) {
    glClearColor(red, green, blue, alpha);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
}

/// A triangle with corners in normalised device coordinates, in the current colour.
void drawTriangle(std::array<float, 9> corners) {
    glBegin(GL_TRIANGLES);
    for (std::size_t i = 0; i < 9; i += 3)
        glVertex3f(corners[i], corners[i + 1], corners[i + 2]);
    glEnd();
}

TEST_F(OffscreenTargetGLTest, RowsComeFromTopToBottom) {
    for (const int samples : {1, 4}) {
        const OffscreenTarget target(3, 4, samples);
        clear(0, 0, 0, 1);
        glEnable(GL_SCISSOR_TEST);
        glScissor(1, 3, 1, 1); // the upper row, in OpenGL's count from below
        clear(1, 0, 0, 1);
        glScissor(2, 0, 1, 1);
        clear(0, 1, 0, 0.6f);
        const std::vector<std::uint8_t> pixels = bytesOf(target);
        glDisable(GL_SCISSOR_TEST);

        std::vector<std::uint8_t> expected(48, 0);
        for (std::size_t i = 3; i < expected.size(); i += 4)
            expected[i] = 255;
        expected[4] = 255;  // row 0, column 1: red
        expected[45] = 255; // row 3, column 2: green
        expected[47] = 153;
        EXPECT_EQ(pixels, expected) << samples << " samples";
    }
}

TEST_F(OffscreenTargetGLTest, MultisamplingSmoothsAnEdge) {
    const auto grey_levels = [](int samples) {
        const OffscreenTarget target(16, 16, samples);
        clear(0, 0, 0, 1);
        glColor3f(1, 1, 1);
        drawTriangle({-1, -1, 0, 0.37f, 1, 0, -1, 1, 0});
        int count = 0;
        const std::vector<std::uint8_t> pixels = bytesOf(target);
        for (std::size_t i = 0; i < pixels.size(); i += 4)
            count += pixels[i] != 0 && pixels[i] != 255;
        return count;
    };
    GLint max_samples = 0;
    glGetIntegerv(GL_MAX_SAMPLES, &max_samples);
    ASSERT_GE(max_samples, 4) << "every driver of OpenGL 3.0 must have four";
    EXPECT_GE(OffscreenTarget(8, 8, 4).samples(), 4);
    EXPECT_EQ(OffscreenTarget(8, 8, 1).samples(), 1);
    EXPECT_LE(OffscreenTarget(8, 8, 1000).samples(), std::max(1, max_samples));
    EXPECT_GT(grey_levels(4), 8);
    EXPECT_EQ(grey_levels(1), 0);
}

TEST_F(OffscreenTargetGLTest, NearerTriangleHidesTheOneBehind) {
    // Too close together for a depth buffer of 16 bits.
    const auto drawGreenInFront = [] {
        glColor3f(0, 1, 0);
        drawTriangle({-3, -3, 0.5f, 3, -3, 0.5f, 0, 9, 0.5f});
    };
    const auto drawRedBehind = [] {
        glColor3f(1, 0, 0);
        drawTriangle({-3, -3, 0.500002f, 3, -3, 0.500002f, 0, 9, 0.500002f});
    };
    for (const int samples : {1, 4}) {
        for (const bool is_front_first : {true, false}) {
            const OffscreenTarget target(2, 2, samples);
            clear(0, 0, 0, 1);
            glEnable(GL_DEPTH_TEST);
            if (is_front_first)
                drawGreenInFront();
            drawRedBehind();
            if (!is_front_first)
                drawGreenInFront();
            glDisable(GL_DEPTH_TEST);
            const std::vector<std::uint8_t> pixels = bytesOf(target);
            EXPECT_EQ(pixels[0], 0) << samples << " samples, front first: " << is_front_first;
            EXPECT_EQ(pixels[1], 255);
        }
    }
}

TEST_F(OffscreenTargetGLTest, FloatsAreNotClamped) {
    const OffscreenTarget target(3, 2, 4, Format::RGBA32F);
    EXPECT_EQ(target.samples(), 1);
    clear(-2.5f, 3e20f, 1e-7f, 7);
    std::vector<float> pixels(24);
    target.read(pixels);
    for (std::size_t i = 0; i < pixels.size(); i += 4) {
        EXPECT_EQ((std::vector<float>(pixels.begin() + static_cast<std::ptrdiff_t>(i),
                                      pixels.begin() + static_cast<std::ptrdiff_t>(i) + 4)),
                  (std::vector<float>{-2.5f, 3e20f, 1e-7f, 7}));
    }
}

TEST_F(OffscreenTargetGLTest, ReadingLeavesTheTargetBoundAndOthersAlone) {
    const OffscreenTarget first(2, 2);
    clear(1, 0, 0, 1);
    const OffscreenTarget second(4, 4);
    clear(0, 0, 1, 1);
    EXPECT_EQ(bytesOf(first)[0], 255);
    clear(0, 1, 0, 1); // goes into the first
    EXPECT_EQ(bytesOf(first)[1], 255);
    EXPECT_EQ(bytesOf(second)[2], 255);
    std::array<GLint, 4> viewport{};
    glGetIntegerv(GL_VIEWPORT, viewport.data());
    EXPECT_EQ(viewport, (std::array<GLint, 4>{0, 0, 4, 4}));
}

TEST_F(OffscreenTargetGLTest, SizesBeyondReasonAreErrors) {
    std::array<GLint, 2> viewport{};
    GLint renderbuffer = 0;
    glGetIntegerv(GL_MAX_VIEWPORT_DIMS, viewport.data());
    glGetIntegerv(GL_MAX_RENDERBUFFER_SIZE, &renderbuffer);
    const int widest = std::min(renderbuffer, viewport[0]);
    const int highest = std::min(renderbuffer, viewport[1]);
    const auto tooLarge = [&](int width, int height) {
        return "a picture of " + std::to_string(width) + " x " + std::to_string(height) +
               " pixels was asked for, but this driver draws at most " + std::to_string(widest) + " x " +
               std::to_string(highest) + ".\nAsk for a smaller one.";
    };
    const int huge = std::numeric_limits<int>::max();
    EXPECT_EQ(errorOf(widest + 1, 1), tooLarge(widest + 1, 1));
    EXPECT_EQ(errorOf(1, highest + 1), tooLarge(1, highest + 1));
    EXPECT_EQ(errorOf(huge, huge), tooLarge(huge, huge));
    EXPECT_EQ(errorOf(widest, 1), "no error");
    EXPECT_EQ(errorOf(1, highest), "no error");
    EXPECT_EQ(errorOf(0, 0), "a picture of 0 x 0 pixels was asked for.\nWidth and height must be 1 or more.");
    EXPECT_EQ(errorOf(5, -1),
              "a picture of 5 x -1 pixels was asked for.\nWidth and height must be 1 or more.");
}

TEST_F(OffscreenTargetGLTest, RoomOfTheWrongSizeOrTypeIsAnError) {
    const OffscreenTarget target(2, 3);
    const auto errorOfReading = [&](auto pixels) -> std::string {
        return korl::test::errorOf([&] { target.read(pixels); });
    };
    const std::string start = "a picture of 2 x 3 pixels has 24 byte values, but the buffer holds ";
    std::vector<std::uint8_t> bytes(25);
    std::vector<float> floats(24);
    EXPECT_EQ(errorOfReading(std::span(bytes)), start + "25 byte values.");
    EXPECT_EQ(errorOfReading(std::span(bytes).first(23)), start + "23 byte values.");
    EXPECT_EQ(errorOfReading(std::span(floats)), start + "24 float values.");
    EXPECT_EQ(errorOfReading(std::span(bytes).first(24)), "no error");
}

TEST_F(GLObjectsGLTest, EachKindIsMadeMovedAndDeleted) {
    const auto check = []<typename Object>(Object made, auto bind, auto exists) {
        const GLuint name = made.name();
        bind(name); // a name becomes an object when it is first bound
        Object moved(std::move(made));
        // NOLINTNEXTLINE(bugprone-use-after-move,clang-analyzer-cplusplus.Move): promised to hold 0
        EXPECT_EQ(made.name(), 0u);
        EXPECT_EQ(moved.name(), name);
        {
            Object other;
            const GLuint replaced = other.name();
            bind(replaced);
            other = std::move(moved);
            EXPECT_EQ(other.name(), name);
            EXPECT_EQ(exists(replaced), GL_FALSE);
            EXPECT_EQ(exists(name), GL_TRUE);
        }
        EXPECT_EQ(exists(name), GL_FALSE);
    };
    check(
        Buffer(), [](GLuint name) { glBindBuffer(GL_ARRAY_BUFFER, name); },
        [](GLuint name) { return glIsBuffer(name); });
    check(
        VertexArray(), [](GLuint name) { glBindVertexArray(name); },
        [](GLuint name) { return glIsVertexArray(name); });
    check(
        Texture(), [](GLuint name) { glBindTexture(GL_TEXTURE_2D, name); },
        [](GLuint name) { return glIsTexture(name); });
    check(
        Renderbuffer(), [](GLuint name) { glBindRenderbuffer(GL_RENDERBUFFER, name); },
        [](GLuint name) { return glIsRenderbuffer(name); });
    check(
        Framebuffer(), [](GLuint name) { glBindFramebuffer(GL_FRAMEBUFFER, name); },
        [](GLuint name) { return glIsFramebuffer(name); });
    check(
        Program(), [](GLuint) {}, [](GLuint name) { return glIsProgram(name); });
}

TEST_F(GLObjectsGLTest, LinkDetachesTheShaders) {
    Shader vertex(GL_VERTEX_SHADER);
    ASSERT_TRUE(vertex.compile("#version 120\nuniform vec4 place;\nvoid main() { gl_Position = place; }\n"))
        << vertex.log();
    Shader fragment(GL_FRAGMENT_SHADER);
    ASSERT_TRUE(fragment.compile("#version 120\nvoid main() { gl_FragColor = vec4(1.0); }\n"))
        << fragment.log();
    Program program;
    program.attach(vertex);
    program.attach(fragment);
    ASSERT_TRUE(program.link()) << program.log();
    GLint attached = -1;
    glGetProgramiv(program.name(), GL_ATTACHED_SHADERS, &attached);
    EXPECT_EQ(attached, 0);
    EXPECT_GE(program.uniformLocation("place"), 0);
    EXPECT_EQ(program.uniformLocation("elsewhere"), -1);
}

TEST_F(GLObjectsGLTest, RefusalsAreLogged) {
    const test::ExpectedGLErrors errors;
    Shader vertex(GL_VERTEX_SHADER);
    EXPECT_FALSE(vertex.compile("#version 120\nvoid main() { gl_Position = no_such_name; }\n"));
    EXPECT_THAT(vertex.log(), ::testing::HasSubstr("no_such_name"));
    EXPECT_THAT(vertex.log(), Each(::testing::Ne('\0')));

    Shader calling(GL_VERTEX_SHADER);
    ASSERT_TRUE(calling.compile("#version 120\nvec4 nowhere();\nvoid main() { gl_Position = nowhere(); }\n"))
        << calling.log();
    Program program;
    program.attach(calling);
    EXPECT_FALSE(program.link());
    EXPECT_THAT(program.log(), ::testing::HasSubstr("nowhere"));
}

} // namespace
} // namespace korl
