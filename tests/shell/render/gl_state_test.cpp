#include "tests/support/rendered_scene.hpp"

#include "shell/render/gl_state.hpp"

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace {

using korl::RenderPath;

/// A piece of OpenGL state that a module's light may leave behind.
struct LeftBehind {
    std::string name;
    std::function<void()> change;
    /// Whether it shows in the frame in which it is changed, on one of the paths: then the test can fail.
    bool shows = true;
    int version = 10; ///< of OpenGL that has it
};

LeftBehind enabled(const char* name, GLenum what, bool shows = true, int version = 10) {
    return {name, [what] { glEnable(what); }, shows, version};
}

/// A white texture of one transparent black texel, on a unit of the fixed-function pipeline.
void applyTexture(GLenum unit, GLenum target) {
    constexpr std::array<GLubyte, 4> clear{};
    glActiveTexture(GL_TEXTURE0 + unit);
    glTexParameteri(target, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    if (target == GL_TEXTURE_2D)
        glTexImage2D(target, 0, GL_RGBA, 1, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, clear.data());
    else
        glTexImage1D(target, 0, GL_RGBA, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, clear.data());
    glEnable(target);
}

std::vector<LeftBehind> fragmentStates() {
    return {
        {"multisampling", [] { glDisable(GL_MULTISAMPLE); }},
        {"blending", [] { glEnable(GL_BLEND), glBlendFunc(GL_ONE, GL_ONE); }},
        {"alpha test", [] { glEnable(GL_ALPHA_TEST), glAlphaFunc(GL_NEVER, 0); }},
        {"logic operation", [] { glEnable(GL_COLOR_LOGIC_OP), glLogicOp(GL_INVERT); }},
        enabled("dithering", GL_DITHER, false),
        enabled("sRGB", GL_FRAMEBUFFER_SRGB, false, 30),
        {"colour mask", [] { glColorMask(GL_FALSE, GL_TRUE, GL_TRUE, GL_TRUE); }},
        {"scissor", [] { glEnable(GL_SCISSOR_TEST), glScissor(0, 0, 5, 5); }},
        {"stencil", [] { glEnable(GL_STENCIL_TEST), glStencilFunc(GL_NEVER, 0, 0); }, false},
        {"sample mask", [] { glEnable(GL_SAMPLE_MASK), glSampleMaski(0, 1); }, true, 32},
        {"sample coverage", [] { glEnable(GL_SAMPLE_COVERAGE), glSampleCoverage(0, GL_FALSE); }},
        enabled("sample shading", GL_SAMPLE_SHADING, false, 40),
        enabled("alpha to coverage", GL_SAMPLE_ALPHA_TO_COVERAGE, false),
        enabled("alpha to one", GL_SAMPLE_ALPHA_TO_ONE, false),
        {"depth test", [] { glDisable(GL_DEPTH_TEST); }},
        {"depth function", [] { glDepthFunc(GL_GREATER); }},
        {"depth mask", [] { glDepthMask(GL_FALSE); }},
        {"depth range", [] { glDepthRange(1, 0); }},
        {"depth to clear to", [] { glClearDepth(0); }, false},
        {"colour to clear to", [] { glClearColor(1, 1, 1, 1); }, false},
        {"clamping", [] { glClampColor(GL_CLAMP_VERTEX_COLOR, GL_FALSE); }, false, 30},
        {"draw buffer", [] { glDrawBuffer(GL_NONE); }},
        {"viewport", [] { glViewport(0, 0, 3, 3); }},
    };
}

std::vector<LeftBehind> geometryStates() {
    return {
        {"culling", [] { glEnable(GL_CULL_FACE), glCullFace(GL_FRONT_AND_BACK); }},
        {"front face",
         [] {
             constexpr GLint two_sides = 1;
             glFrontFace(GL_CW), glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, two_sides);
         },
         false},
        {"polygon mode", [] { glPolygonMode(GL_FRONT_AND_BACK, GL_LINE); }},
        {"polygon stipple",
         [] {
             const std::array<GLubyte, 128> nothing{};
             glEnable(GL_POLYGON_STIPPLE), glPolygonStipple(nothing.data());
         }},
        {"polygon smoothing", [] { glEnable(GL_POLYGON_SMOOTH), glDisable(GL_MULTISAMPLE); }},
        {"polygon offset", [] { glEnable(GL_POLYGON_OFFSET_FILL), glPolygonOffset(0, 1e9f); }},
        {"primitive restart", [] { glEnable(GL_PRIMITIVE_RESTART), glPrimitiveRestartIndex(0); }, true, 31},
        enabled("restart at the last index", GL_PRIMITIVE_RESTART_FIXED_INDEX, false, 43),
        enabled("rasterizer discard", GL_RASTERIZER_DISCARD, true, 30),
        {"depth clamp", [] { glEnable(GL_DEPTH_CLAMP), glDepthRange(0.5, 0.5); }, true, 32},
        {"clip plane",
         [] {
             constexpr std::array<GLdouble, 4> nothing{0, 0, 0, -1};
             glClipPlane(GL_CLIP_PLANE5, nothing.data()), glEnable(GL_CLIP_PLANE5);
         }},
        {"clip control", [] { glClipControl(GL_UPPER_LEFT, GL_NEGATIVE_ONE_TO_ONE); }, true, 45},
        {"shade model", [] { glShadeModel(GL_FLAT); }},
        {"line", [] { glLineWidth(3), glEnable(GL_LINE_SMOOTH), glEnable(GL_LINE_STIPPLE); }, false},
        {"point", [] { glPointSize(3), glEnable(GL_POINT_SMOOTH), glEnable(GL_POINT_SPRITE); }, false},
        {"render mode",
         [] {
             static std::array<GLuint, 4096> hits;
             glSelectBuffer(static_cast<GLsizei>(hits.size()), hits.data()), glRenderMode(GL_SELECT);
         }},
    };
}

std::vector<LeftBehind> fixedFunctionStates() {
    return {
        {"fog",
         [] {
             glEnable(GL_FOG), glFogi(GL_FOG_MODE, GL_LINEAR);
             glFogf(GL_FOG_START, 0), glFogf(GL_FOG_END, 1);
         }},
        {"texture", [] { applyTexture(0, GL_TEXTURE_2D); }},
        {"texture of another unit", [] { applyTexture(3, GL_TEXTURE_1D); }},
        {"active texture", [] { glActiveTexture(GL_TEXTURE5); }, false},
        {"sum of colours", [] { glEnable(GL_COLOR_SUM), glSecondaryColor3f(1, 1, 1); }, false},
        {"material",
         [] {
             constexpr std::array<GLfloat, 4> red{1, 0, 0, 1};
             glMaterialfv(GL_FRONT, GL_EMISSION, red.data());
         },
         false},
        {"light model",
         [] {
             constexpr std::array<GLfloat, 4> red{1, 0, 0, 1};
             glLightModelfv(GL_LIGHT_MODEL_AMBIENT, red.data());
             glLightModeli(GL_LIGHT_MODEL_COLOR_CONTROL, GL_SEPARATE_SPECULAR_COLOR);
         },
         false},
        {"matrix mode", [] { glMatrixMode(GL_TEXTURE); }, false},
        {"colour", [] { glColor4f(1, 0, 0, 0); }, false},
        {"program", [] { glUseProgram(0), glEnable(GL_VERTEX_PROGRAM_TWO_SIDE), glEnable(GL_LIGHTING); },
         false},
        {"array buffer",
         [] {
             static const GLuint buffer = [] {
                 GLuint name = 0;
                 glGenBuffers(1, &name);
                 return name;
             }();
             glBindBuffer(GL_ARRAY_BUFFER, buffer), glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, buffer);
         },
         false},
    };
}

/// Of those reading sets what it needs right before it reads.
std::vector<LeftBehind> readingStates() {
    return {
        {"row length", [] { glPixelStorei(GL_PACK_ROW_LENGTH, 100'000); }, false},
        {"skipped rows", [] { glPixelStorei(GL_PACK_SKIP_ROWS, 100'000); }, false},
        {"skipped pixels", [] { glPixelStorei(GL_PACK_SKIP_PIXELS, 3); }, false},
        {"alignment", [] { glPixelStorei(GL_PACK_ALIGNMENT, 8); }, false},
        {"swapped bytes", [] { glPixelStorei(GL_PACK_SWAP_BYTES, 1); }, false},
        {"pixel transfer",
         [] {
             glPixelTransferf(GL_RED_SCALE, 0.5f), glPixelTransferf(GL_GREEN_BIAS, 0.5f);
             glPixelTransferi(GL_MAP_COLOR, GL_TRUE);
         },
         false},
        {"clamped reading", [] { glClampColor(GL_CLAMP_READ_COLOR, GL_TRUE); }, false, 30},
        {"read buffer", [] { glReadBuffer(GL_NONE); }, false},
        {"buffer for pixels",
         [] {
             static const GLuint buffer = [] {
                 GLuint name = 0;
                 glGenBuffers(1, &name);
                 return name;
             }();
             glBindBuffer(GL_PIXEL_PACK_BUFFER, buffer);
             glBufferData(GL_PIXEL_PACK_BUFFER, 1 << 20, nullptr, GL_STREAM_READ);
         },
         false},
    };
}

/// A light that changes OpenGL's state while the renderer collects the lights of a frame.
class ChangingLight : public korl::test::DownwardLight {
public:
    using DownwardLight::DownwardLight;

    void illuminate(const Qelt::VRenderContext& context) const override {
        DownwardLight::illuminate(context);
        if (const auto once = std::exchange(change, {}))
            once();
    }

    mutable std::function<void()> change;
};

/// A smooth surface before another one, both cut by the edge of what is seen, under lights of every kind.
class DrawingStateGLTest : public korl::test::RenderedScene {
protected:
    DrawingStateGLTest() : my_creator(std::string("ChangingLight"), 0) {
        scene.addMesh(tilted({-1, -4, 1.5f}, 4, {0.25f, 1, 0.5f})); // before the one that is drawn after it
        scene.addMesh(tilted({-4, -3, 0.2f}, 7, {1, 0.5f, 0.25f}));
        scene.camera->position = {0, -16, 18};
        scene.camera->up = {0, 0, 1};
        scene.background = {0.3f, 0.4f, 0.5f, 0.6f};
        for (const char* const type : {"AmbientLight", "Headlight", "Torch"})
            scene.create(type);
        light = dynamic_cast<ChangingLight*>(&scene.create("ChangingLight"));
        light->strength = 0.25f;
    }

    static korl::Mesh tilted(const glm::vec3& corner, float size, const glm::vec3& color) {
        korl::Mesh mesh;
        mesh.name = "tilted";
        for (const glm::vec3& offset :
             {glm::vec3(0, 0, 0), glm::vec3(size, 0, 1), glm::vec3(size, size, 2), glm::vec3(0, size, 1)}) {
            mesh.positions.push_back(corner + offset);
            mesh.normals.push_back(glm::normalize(glm::vec3(offset.y - size / 2, offset.x, size)));
        }
        mesh.colors.assign(4, color);
        mesh.triangles = {0, 1, 2, 0, 2, 3};
        return mesh;
    }

    std::vector<std::uint8_t> draw(RenderPath path) {
        return renderer.render(scene, view, {side, side, path}).pixels;
    }

    void expectNoTrace(const std::vector<LeftBehind>& states) {
        constexpr std::array paths{RenderPath::shader, RenderPath::fixed};
        const std::array untouched{draw(paths[0]), draw(paths[1])};
        for (const LeftBehind& state : states) {
            if (epoxy_gl_version() < state.version)
                continue;
            bool shows = false;
            for (std::size_t i = 0; i < paths.size(); ++i) {
                light->change = state.change;
                shows = draw(paths[i]) != untouched[i] || shows;
                EXPECT_TRUE(draw(paths[i]) == untouched[i]) << state.name << ", path " << i;
                light->change = state.change;
                draw(paths[i]);
                EXPECT_TRUE(draw(paths[1 - i]) == untouched[1 - i])
                    << state.name << ", before path " << 1 - i;
            }
            EXPECT_EQ(shows, state.shows) << state.name;
        }
    }

    static constexpr int side = 48;
    const Qelt::VCreator<ChangingLight, void> my_creator;
    ChangingLight* light = nullptr;
};

TEST_F(DrawingStateGLTest, WhatALightDoesToFragmentsLeavesNoTraceInTheNextFrame) {
    expectNoTrace(fragmentStates());
}

TEST_F(DrawingStateGLTest, WhatALightDoesToGeometryLeavesNoTraceInTheNextFrame) {
    expectNoTrace(geometryStates());
}

TEST_F(DrawingStateGLTest, WhatALightDoesToFixedFunctionsLeavesNoTraceInTheNextFrame) {
    expectNoTrace(fixedFunctionStates());
}

TEST_F(DrawingStateGLTest, WhatALightDoesToReadingPixelsShowsNowhere) {
    expectNoTrace(readingStates());
}

} // namespace
