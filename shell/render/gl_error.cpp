#include "shell/render/gl_error.hpp"

#include "shell/base/error.hpp"
#include "shell/base/printable.hpp"

#include <epoxy/gl.h>
#include <fmt/core.h>

namespace korl {

namespace {

std::string errorName(GLenum error) {
    switch (error) {
    case GL_INVALID_ENUM:
        return "GL_INVALID_ENUM";
    case GL_INVALID_VALUE:
        return "GL_INVALID_VALUE";
    case GL_INVALID_OPERATION:
        return "GL_INVALID_OPERATION";
    case GL_STACK_OVERFLOW:
        return "GL_STACK_OVERFLOW";
    case GL_STACK_UNDERFLOW:
        return "GL_STACK_UNDERFLOW";
    case GL_OUT_OF_MEMORY:
        return "GL_OUT_OF_MEMORY";
    default:
        return fmt::format("error {}", error);
    }
}

} // namespace

void requireNoGLError(const char* what, const std::string& name) {
    if (const GLenum error = glGetError(); error != GL_NO_ERROR)
        throw Error(fmt::format("{} {} has made OpenGL report {}; {}", what, inQuotes(name), errorName(error),
                                error == GL_OUT_OF_MEMORY ? "ask for a smaller picture or model"
                                                          : "report it to the author of the module"));
}

} // namespace korl
