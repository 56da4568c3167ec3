#include "shell/render/gl_objects.hpp"

#include <array>

namespace korl {

namespace {

std::string withoutTerminator(std::string log) {
    log.resize(log.find('\0') == std::string::npos ? log.size() : log.find('\0'));
    return log;
}

} // namespace

Shader::Shader(GLenum stage) : GLObject(glCreateShader(stage)) {}

bool Shader::compile(const std::string& source) {
    const char* text = source.data();
    const auto length = static_cast<GLint>(source.size());
    glShaderSource(name(), 1, &text, &length);
    glCompileShader(name());
    GLint is_compiled = GL_FALSE;
    glGetShaderiv(name(), GL_COMPILE_STATUS, &is_compiled);
    return is_compiled == GL_TRUE;
}

std::string Shader::log() const {
    GLint length = 0;
    glGetShaderiv(name(), GL_INFO_LOG_LENGTH, &length);
    std::string log(static_cast<std::size_t>(length), '\0');
    glGetShaderInfoLog(name(), length, nullptr, log.data());
    return withoutTerminator(std::move(log));
}

void Program::attach(const Shader& shader) {
    glAttachShader(name(), shader.name());
}

bool Program::link() {
    glLinkProgram(name());
    GLint is_linked = GL_FALSE;
    glGetProgramiv(name(), GL_LINK_STATUS, &is_linked);

    std::array<GLuint, 8> shaders{};
    GLsizei count = 0;
    glGetAttachedShaders(name(), static_cast<GLsizei>(shaders.size()), &count, shaders.data());
    for (GLsizei i = 0; i < count; ++i)
        glDetachShader(name(), shaders[static_cast<std::size_t>(i)]);
    return is_linked == GL_TRUE;
}

std::string Program::log() const {
    GLint length = 0;
    glGetProgramiv(name(), GL_INFO_LOG_LENGTH, &length);
    std::string log(static_cast<std::size_t>(length), '\0');
    glGetProgramInfoLog(name(), length, nullptr, log.data());
    return withoutTerminator(std::move(log));
}

GLint Program::uniformLocation(const std::string& name_in_shader) const {
    return glGetUniformLocation(name(), name_in_shader.c_str());
}

} // namespace korl
