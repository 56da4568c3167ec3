#pragma once

#include "tests/support/flat_scene.hpp"
#include "tests/support/gl_test.hpp"
#include "tests/support/loaded_module.hpp"

#include "shell/render/renderer.hpp"

#include <array>
#include <epoxy/gl.h>
#include <string>
#include <utility>
#include <vector>

namespace korl::test {

using Pixel = std::array<int, 4>;

inline constexpr int side = 16; ///< of the pictures, in pixels

inline Pixel pixel(const Image& image, int x, int y) {
    const std::size_t at = 4 * (static_cast<std::size_t>(y) * static_cast<std::size_t>(image.width) +
                                static_cast<std::size_t>(x));
    return {image.pixels[at], image.pixels[at + 1], image.pixels[at + 2], image.pixels[at + 3]};
}

/// A scene of one white square, the module, lights of the tests' own, and a renderer whose reports are kept.
class RenderedScene : public GLTest {
protected:
    RenderedScene() { makeFlat(scene); }

    Image render(RenderPath path) { return renderer.render(scene, view, {side, side, path}); }
    /// The colour of the square in the middle of the picture.
    Pixel middle(RenderPath path) { return pixel(render(path), side / 2, side / 2); }

    SetUpLight& addSetUpLight(SetUpLight::SetUp set_up) {
        auto& light = dynamic_cast<SetUpLight&>(scene.create("SetUpLight"));
        light.set_up = std::move(set_up);
        return light;
    }
    DownwardLight& addDownwardLight() { return dynamic_cast<DownwardLight&>(scene.create("DownwardLight")); }

    LoadedModule module;
    const TestLightCreators creators;
    std::vector<std::string> reports;
    Scene scene;
    View view;
    Renderer renderer{context(), [this](const std::string& report) { reports.push_back(report); }};
};

/// Enables the context's OpenGL light as a white light from straight above.
inline void shineDown(Qelt::VRenderContext& context) {
    const GLenum light = GL_LIGHT0 + static_cast<GLenum>(context.lightNumber() - 1);
    constexpr std::array<GLfloat, 4> white{1, 1, 1, 1}, above{0, 0, 1, 0};
    glLightfv(light, GL_DIFFUSE, white.data());
    glLightfv(light, GL_POSITION, above.data());
    glEnable(light);
}

} // namespace korl::test
