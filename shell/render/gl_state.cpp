#include "shell/render/gl_state.hpp"

#include <array>
#include <initializer_list>

namespace korl {

namespace {

/// A switch that drawing needs off, and since when OpenGL has it.
struct Switch {
    GLenum name;
    int version;
};

constexpr std::array switches_off{
    // What becomes of fragments.
    Switch{GL_ALPHA_TEST, 10},
    Switch{GL_BLEND, 10},
    Switch{GL_COLOR_LOGIC_OP, 11},
    Switch{GL_DITHER, 10},
    Switch{GL_FRAMEBUFFER_SRGB, 30},
    Switch{GL_SAMPLE_ALPHA_TO_COVERAGE, 13},
    Switch{GL_SAMPLE_ALPHA_TO_ONE, 13},
    Switch{GL_SAMPLE_COVERAGE, 13},
    Switch{GL_SAMPLE_MASK, 32},
    Switch{GL_SAMPLE_SHADING, 40},
    Switch{GL_SCISSOR_TEST, 10},
    Switch{GL_STENCIL_TEST, 10},
    // What becomes of geometry.
    Switch{GL_CULL_FACE, 10},
    Switch{GL_DEPTH_CLAMP, 32},
    Switch{GL_LINE_SMOOTH, 10},
    Switch{GL_LINE_STIPPLE, 10},
    Switch{GL_POINT_SMOOTH, 10},
    Switch{GL_POINT_SPRITE, 20},
    Switch{GL_POLYGON_OFFSET_FILL, 11},
    Switch{GL_POLYGON_SMOOTH, 10},
    Switch{GL_POLYGON_STIPPLE, 10},
    Switch{GL_PRIMITIVE_RESTART, 31},
    Switch{GL_PRIMITIVE_RESTART_FIXED_INDEX, 43},
    Switch{GL_PROGRAM_POINT_SIZE, 20},
    Switch{GL_RASTERIZER_DISCARD, 30},
    // What the fixed-function pipeline adds.
    Switch{GL_COLOR_MATERIAL, 10},
    Switch{GL_COLOR_SUM, 14},
    Switch{GL_FOG, 10},
    Switch{GL_LIGHTING, 10},
    Switch{GL_VERTEX_PROGRAM_TWO_SIDE, 20},
};

GLint limitOf(GLenum name) {
    GLint value = 0;
    glGetIntegerv(name, &value);
    return value;
}

void setGeometryState() {
    glFrontFace(GL_CCW);
    glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
    glShadeModel(GL_SMOOTH);
    glLineWidth(1);
    glPointSize(1);
    if (limitOf(GL_RENDER_MODE) != GL_RENDER)
        glRenderMode(GL_RENDER);
}

void setFragmentState() {
    glEnable(GL_MULTISAMPLE);
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LESS);
    glDepthMask(GL_TRUE);
    glDepthRange(0, 1);
    glClearDepth(1);
    glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
    glClampColor(GL_CLAMP_VERTEX_COLOR, GL_TRUE);
    glClampColor(GL_CLAMP_FRAGMENT_COLOR, GL_FIXED_ONLY);
}

} // namespace

DrawingState::DrawingState()
    : my_version(epoxy_gl_version()), my_texture_units(static_cast<GLenum>(limitOf(GL_MAX_TEXTURE_UNITS))),
      my_texture_switches{GL_TEXTURE_1D, GL_TEXTURE_2D, GL_TEXTURE_3D, GL_TEXTURE_CUBE_MAP} {
    for (const Switch& each : switches_off)
        if (my_version >= each.version)
            my_switches.push_back(each.name);
    for (GLint plane = 0; plane < limitOf(GL_MAX_CLIP_PLANES); ++plane)
        my_switches.push_back(GL_CLIP_PLANE0 + static_cast<GLenum>(plane));
    if (my_version >= 31)
        my_texture_switches.push_back(GL_TEXTURE_RECTANGLE);
    if (epoxy_has_gl_extension("GL_ARB_vertex_program"))
        my_switches.push_back(GL_VERTEX_PROGRAM_ARB);
    if (epoxy_has_gl_extension("GL_ARB_fragment_program"))
        my_switches.push_back(GL_FRAGMENT_PROGRAM_ARB);
    if (epoxy_has_gl_extension("GL_EXT_depth_bounds_test"))
        my_switches.push_back(GL_DEPTH_BOUNDS_TEST_EXT);
}

void DrawingState::set() const {
    glUseProgram(0);
    if (my_version >= 41)
        glBindProgramPipeline(0); // takes the place of a program where none is in use
    glBindVertexArray(0);
    for (const GLenum name : my_switches)
        glDisable(name);
    for (GLenum unit = my_texture_units; unit-- > 0;) {
        glActiveTexture(GL_TEXTURE0 + unit); // the first one is the last, and stays active
        for (const GLenum name : my_texture_switches)
            glDisable(name);
    }
    setGeometryState();
    setFragmentState();
    if (my_version >= 45)
        glClipControl(GL_LOWER_LEFT, GL_NEGATIVE_ONE_TO_ONE);
}

void setReadingState() {
    glDisable(GL_SCISSOR_TEST); // cuts what is resolved from several samples
    glReadBuffer(GL_COLOR_ATTACHMENT0);
    glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
    glPixelStorei(GL_PACK_ALIGNMENT, 1);
    for (const GLenum zero :
         std::initializer_list<GLenum>{GL_PACK_SWAP_BYTES, GL_PACK_LSB_FIRST, GL_PACK_ROW_LENGTH,
                                       GL_PACK_SKIP_ROWS, GL_PACK_SKIP_PIXELS})
        glPixelStorei(zero, 0);
    glPixelTransferi(GL_MAP_COLOR, GL_FALSE);
    for (const GLenum scale :
         std::initializer_list<GLenum>{GL_RED_SCALE, GL_GREEN_SCALE, GL_BLUE_SCALE, GL_ALPHA_SCALE})
        glPixelTransferf(scale, 1);
    for (const GLenum bias :
         std::initializer_list<GLenum>{GL_RED_BIAS, GL_GREEN_BIAS, GL_BLUE_BIAS, GL_ALPHA_BIAS})
        glPixelTransferf(bias, 0);
    // Without this a compatibility context may clamp floats to 0..1 on the way out.
    glClampColor(GL_CLAMP_READ_COLOR, GL_FALSE);
}

} // namespace korl
