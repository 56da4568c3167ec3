#pragma once

#include <epoxy/gl.h>
#include <string>
#include <utility>

namespace korl {

/// Owner of one OpenGL object: made at construction, deleted at destruction, moved but never copied. A
/// moved-from object holds 0. The context of construction (or one that shares with it) must be current at
/// destruction.
template <typename Kind>
class GLObject {
public:
    GLObject() : my_name(Kind::create()) {}
    ~GLObject() { reset(); }

    GLObject(GLObject&& other) noexcept : my_name(std::exchange(other.my_name, 0)) {}
    GLObject& operator=(GLObject&& other) noexcept {
        if (this != &other) {
            reset();
            my_name = std::exchange(other.my_name, 0);
        }
        return *this;
    }

    /// OpenGL's number of the object.
    GLuint name() const { return my_name; }

protected:
    explicit GLObject(GLuint name) : my_name(name) {}

private:
    void reset() {
        if (my_name != 0)
            Kind::destroy(my_name);
    }

    GLuint my_name;
};

namespace gl_kind {

struct Buffer {
    static GLuint create() {
        GLuint name = 0;
        glGenBuffers(1, &name);
        return name;
    }
    static void destroy(GLuint name) { glDeleteBuffers(1, &name); }
};

struct VertexArray {
    static GLuint create() {
        GLuint name = 0;
        glGenVertexArrays(1, &name);
        return name;
    }
    static void destroy(GLuint name) { glDeleteVertexArrays(1, &name); }
};

struct Texture {
    static GLuint create() {
        GLuint name = 0;
        glGenTextures(1, &name);
        return name;
    }
    static void destroy(GLuint name) { glDeleteTextures(1, &name); }
};

struct Renderbuffer {
    static GLuint create() {
        GLuint name = 0;
        glGenRenderbuffers(1, &name);
        return name;
    }
    static void destroy(GLuint name) { glDeleteRenderbuffers(1, &name); }
};

struct Framebuffer {
    static GLuint create() {
        GLuint name = 0;
        glGenFramebuffers(1, &name);
        return name;
    }
    static void destroy(GLuint name) { glDeleteFramebuffers(1, &name); }
};

struct Shader {
    static void destroy(GLuint name) { glDeleteShader(name); }
};

struct Program {
    static GLuint create() { return glCreateProgram(); }
    static void destroy(GLuint name) { glDeleteProgram(name); }
};

} // namespace gl_kind

using Buffer = GLObject<gl_kind::Buffer>;
using VertexArray = GLObject<gl_kind::VertexArray>;
using Texture = GLObject<gl_kind::Texture>;
using Renderbuffer = GLObject<gl_kind::Renderbuffer>;
using Framebuffer = GLObject<gl_kind::Framebuffer>;

/// One stage of a program.
class Shader : public GLObject<gl_kind::Shader> {
public:
    /// stage: GL_VERTEX_SHADER, GL_FRAGMENT_SHADER, ...
    explicit Shader(GLenum stage);

    /// False where the driver refuses the source; log() then says why.
    bool compile(const std::string& source);

    /// What the driver said when it compiled; may hold warnings of a success.
    std::string log() const;
};

/// A linked set of shaders.
class Program : public GLObject<gl_kind::Program> {
public:
    void attach(const Shader& shader);

    /// False where the driver refuses to link; log() then says why. The attached shaders are detached.
    bool link();

    /// What the driver said when it linked.
    std::string log() const;

    /// The location of a uniform, -1 where the linked program has none of that name (unused ones are
    /// dropped).
    GLint uniformLocation(const std::string& name) const;
};

} // namespace korl
