#include "shell/render/renderer.hpp"

#include "shell/base/module_call.hpp"
#include "shell/render/gl_error.hpp"
#include "shell/render/uniform_values.hpp"

#include <algorithm>
#include <fmt/core.h>
#include <glm/gtc/type_ptr.hpp>
#include <utility>

namespace korl {

namespace {

/// Whatever a scene's own objects draw, drawn with the fixed-function pipeline from the frame's viewpoint.
void drawObjects(View& view, const Viewpoint& viewpoint) {
    glMatrixMode(GL_PROJECTION);
    glLoadMatrixf(glm::value_ptr(viewpoint.projection));
    glMatrixMode(GL_MODELVIEW);
    glLoadMatrixf(glm::value_ptr(viewpoint.view));
    for (const View::Member& member : view.members())
        ModuleCall(*member.object, "render").run([&] { member.object->safe_render(view.context()); });
}

/// With colours that are multiplied by their alpha: only so are those at the edge of a mesh, where several
/// samples are averaged, what they would be on any colour behind the picture.
void clear(const Orvid::rgba_float_t& background) {
    const auto unit = [](float value) { return std::clamp(value, 0.0f, 1.0f); };
    const float alpha = unit(background.a);
    glClearColor(alpha * unit(background.r), alpha * unit(background.g), alpha * unit(background.b), alpha);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
}

} // namespace

Renderer::Renderer(GLContext& context, Reports::Sink report)
    : my_context(context), my_reports(std::move(report)) {}

Image Renderer::render(const Scene& scene, View& view, const RenderSettings& settings) {
    my_context.makeCurrent();
    if (!my_target || my_target->width() != settings.width || my_target->height() != settings.height) {
        my_target.reset(); // the old one's memory goes before the new one's comes
        my_target.emplace(settings.width, settings.height);
    }
    const std::size_t size =
        std::size_t{4} * static_cast<std::size_t>(settings.width) * static_cast<std::size_t>(settings.height);
    Image image{settings.width, settings.height, std::vector<std::uint8_t>(size)};
    if (settings.path != RenderPath::both) {
        drawPath(settings.path, true, scene, view, image);
        return image;
    }
    Image right = image;
    drawPath(RenderPath::shader, false, scene, view, image);
    drawPath(RenderPath::fixed, false, scene, view, right);
    return sideBySide(image, right);
}

void Renderer::drawPath(RenderPath path, bool alone, const Scene& scene, View& view, Image& image) {
    const Viewpoint viewpoint = viewpointOf(scene, static_cast<double>(image.width) / image.height);
    my_target->bind();
    if (!my_drawing_state)
        my_drawing_state.emplace();
    my_drawing_state->set();
    clear(scene.background);

    const Frame frame(view, scene, 0);
    const auto& meshes = my_meshes.buffersOf(scene.meshes());
    if (path == RenderPath::shader) {
        my_shader_path.fillUniforms(view, viewpoint);
        my_shader_path.draw(view, viewpoint, my_meshes, my_reports);
    } else {
        my_fixed_path.setUpLights(view, viewpoint, my_reports, alone);
        my_fixed_path.draw(viewpoint, meshes);
    }
    drawObjects(view, viewpoint);
    my_target->read(image.pixels);
    if (scene.background.a < 1)
        makeAlphaStraight(image);
    requireNoGLError("an object that draws itself, or the rendering of", "the scene");
}

std::vector<std::string> Renderer::listUniforms(const Scene& scene, View& view) {
    my_context.makeCurrent();
    const Frame frame(view, scene, 0);
    my_shader_path.fillUniforms(view, viewpointOf(scene, 1));
    std::vector<std::string> lines;
    for (const auto& source : view.sources())
        for (const auto& [name, value] : source->uniforms())
            lines.push_back(fmt::format("{} = {}", name, uniformText(value)));
    return lines;
}

} // namespace korl
