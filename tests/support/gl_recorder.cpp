#include "tests/support/gl_recorder.hpp"

#include <sorvik/component_text.hpp>

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
}
RECORDER void glLightf(GLenum light, GLenum name, GLfloat value) {
    recorded().push_back("glLightf " + nameOf(light) + " " + nameOf(name) + " " + textOf(&value, 1));
}
RECORDER void glEnable(GLenum capability) {
    recorded().push_back("glEnable " + nameOf(capability));
}
RECORDER void glMatrixMode(GLenum mode) {
    recorded().push_back("glMatrixMode " + nameOf(mode));
}
RECORDER void glLoadIdentity() {
    recorded().push_back("glLoadIdentity");
}
RECORDER void glPushMatrix() {
    recorded().push_back("glPushMatrix");
}
RECORDER void glPopMatrix() {
    recorded().push_back("glPopMatrix");
}
