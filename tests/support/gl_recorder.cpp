#include "tests/support/gl_recorder.hpp"

#include <sorvik/component_text.hpp>

#include <dlfcn.h>
#include <GL/gl.h>
#include <map>
#include <span>
#include <utility>

namespace {

std::vector<std::string>& recorded() {
    static std::vector<std::string> calls;
    return calls;
}

std::string nameOf(GLenum value) {
    if (value >= GL_LIGHT0 && value < GL_LIGHT0 + 32)
        return "LIGHT" + std::to_string(value - GL_LIGHT0);
    static const std::map<GLenum, std::string> names{{GL_AMBIENT, "AMBIENT"},
                                                     {GL_DIFFUSE, "DIFFUSE"},
                                                     {GL_SPECULAR, "SPECULAR"},
                                                     {GL_POSITION, "POSITION"},
                                                     {GL_SPOT_DIRECTION, "SPOT_DIRECTION"},
                                                     {GL_SPOT_EXPONENT, "SPOT_EXPONENT"},
                                                     {GL_SPOT_CUTOFF, "SPOT_CUTOFF"},
                                                     {GL_CONSTANT_ATTENUATION, "CONSTANT_ATTENUATION"},
                                                     {GL_LINEAR_ATTENUATION, "LINEAR_ATTENUATION"},
                                                     {GL_QUADRATIC_ATTENUATION, "QUADRATIC_ATTENUATION"},
                                                     {GL_LIGHTING, "LIGHTING"},
                                                     {GL_MODELVIEW, "MODELVIEW"},
                                                     {GL_PROJECTION, "PROJECTION"}};
    const auto found = names.find(value);
    return found == names.end() ? std::to_string(value) : found->second;
}

/// The library's own function, which does nothing where no context is current.
template <class Function>
Function* inLibrary(Function&, const char* name) {
    static void* const library = dlopen("libOpenGL.so.0", RTLD_NOW | RTLD_LOCAL);
    return reinterpret_cast<Function*>(dlsym(library, name));
}
#define IN_LIBRARY(FUNCTION) inLibrary(FUNCTION, #FUNCTION)

std::string textOf(const GLfloat* values, std::size_t count) {
    return Qelt::componentsToText(std::span(values, count));
}

} // namespace

namespace korl::test {

std::vector<std::string> takeRecordedCalls() {
    return std::exchange(recorded(), {});
}

} // namespace korl::test

#define RECORDER extern "C" __attribute__((visibility("default")))

RECORDER void glLightfv(GLenum light, GLenum name, const GLfloat* values) {
    recorded().push_back("glLightfv " + nameOf(light) + " " + nameOf(name) + " " + textOf(values, 4));
    IN_LIBRARY(glLightfv)(light, name, values);
}
RECORDER void glLightf(GLenum light, GLenum name, GLfloat value) {
    recorded().push_back("glLightf " + nameOf(light) + " " + nameOf(name) + " " + textOf(&value, 1));
    IN_LIBRARY(glLightf)(light, name, value);
}
RECORDER void glEnable(GLenum capability) {
    recorded().push_back("glEnable " + nameOf(capability));
    IN_LIBRARY(glEnable)(capability);
}
RECORDER void glMatrixMode(GLenum mode) {
    recorded().push_back("glMatrixMode " + nameOf(mode));
    IN_LIBRARY(glMatrixMode)(mode);
}
RECORDER void glLoadIdentity() {
    recorded().push_back("glLoadIdentity");
    IN_LIBRARY(glLoadIdentity)();
}
RECORDER void glPushMatrix() {
    recorded().push_back("glPushMatrix");
    IN_LIBRARY(glPushMatrix)();
}
RECORDER void glPopMatrix() {
    recorded().push_back("glPopMatrix");
    IN_LIBRARY(glPopMatrix)();
}
