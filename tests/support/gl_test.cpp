#include "tests/support/gl_test.hpp"

#include <epoxy/gl.h>

namespace korl::test {

namespace {

ToleratedGLErrors* listener = nullptr;

bool hasDebugMessages() {
    return epoxy_has_gl_extension("GL_KHR_debug");
}

} // namespace

void handleGLError(const std::string& message) {
    if (listener != nullptr)
        listener->my_messages.push_back(message);
    else
        ADD_FAILURE() << "OpenGL reports: " << message;
}

namespace {

void debugCallback(GLenum, GLenum type, GLuint, GLenum, GLsizei length, const GLchar* message, const void*) {
    if (type == GL_DEBUG_TYPE_ERROR) {
        handleGLError(length < 0 ? std::string(message)
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
    glFinish(); // so that the driver's threads are at rest when a leak check looks
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

ToleratedGLErrors::ToleratedGLErrors() : my_outer(listener) {
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR)) << "before any error was expected";
    listener = this;
}

ToleratedGLErrors::~ToleratedGLErrors() {
    listener = my_outer;
    while (glGetError() != GL_NO_ERROR) {
    }
}

ExpectedGLErrors::~ExpectedGLErrors() {
    EXPECT_TRUE(glGetError() != GL_NO_ERROR || !messages().empty() || !hasDebugMessages())
        << "an OpenGL error was expected, but none came";
}

} // namespace korl::test
