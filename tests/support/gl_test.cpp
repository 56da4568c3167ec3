#include "tests/support/gl_test.hpp"

#include <epoxy/gl.h>

namespace korl::test {

namespace {

ExpectedGLErrors* expected_errors = nullptr;

bool hasDebugMessages() {
    return epoxy_has_gl_extension("GL_KHR_debug");
}

} // namespace

void hearGLError(const std::string& message) {
    if (expected_errors != nullptr) {
        expected_errors->my_messages.push_back(message);
    } else {
        ADD_FAILURE() << "OpenGL reports: " << message;
    }
}

namespace {

void debugCallback(GLenum, GLenum type, GLuint, GLenum, GLsizei length, const GLchar* message, const void*) {
    if (type == GL_DEBUG_TYPE_ERROR) {
        hearGLError(length < 0 ? std::string(message)
                               : std::string(message, static_cast<std::size_t>(length)));
    }
}

} // namespace

GLContext& GLTest::context() {
    static GLContext& the_context = *new GLContext({.debug = true});
    return the_context;
}

void GLTest::SetUp() {
    context().makeCurrent();
    if (hasDebugMessages()) {
        glEnable(GL_DEBUG_OUTPUT);
        glEnable(GL_DEBUG_OUTPUT_SYNCHRONOUS);
        glDebugMessageCallback(&debugCallback, nullptr);
    }
}

void GLTest::TearDown() {
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

ExpectedGLErrors::ExpectedGLErrors() : my_outer(expected_errors) {
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR)) << "before any error was expected";
    expected_errors = this;
}

ExpectedGLErrors::~ExpectedGLErrors() {
    expected_errors = my_outer;
    const GLenum error = glGetError();
    EXPECT_TRUE(error != GL_NO_ERROR || !my_messages.empty() || !hasDebugMessages())
        << "an OpenGL error was expected, but none came";
}

} // namespace korl::test
