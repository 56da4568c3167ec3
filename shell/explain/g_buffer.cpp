#include "shell/explain/g_buffer.hpp"

#include "shell/render/gl_error.hpp"
#include "shell/render/gl_state.hpp"
#include "shell/render/lighting_program.hpp"
#include "shell/render/mesh_buffers.hpp"
#include "shell/render/offscreen_target.hpp"

#include <glm/gtc/type_ptr.hpp>

namespace korl {

namespace {

constexpr const char* vertex_text = R"(#version 330
uniform mat4 korl_view;
uniform mat4 korl_projection;
uniform int korl_output;

in vec3 korl_position;
in vec3 korl_normal;
in vec4 korl_color;

out vec3 korl_value;

void main()
{
    korl_value = korl_output == 0 ? korl_position : korl_output == 1 ? korl_normal : korl_color.rgb;
    gl_Position = korl_projection * (korl_view * vec4(korl_position, 1.0));
}
)";

constexpr const char* fragment_text = R"(#version 330
uniform float korl_mark;

in vec3 korl_value;

out vec4 korl_result;

void main()
{
    korl_result = vec4(korl_value, korl_mark);
}
)";

/// The vertex values that the program gives out, one at a time.
enum Output : int { positions, normals, colors };

} // namespace

GBuffer::GBuffer(Meshes meshes, const Viewpoint& viewpoint, int width, int height)
    : my_width(width), my_height(height) {
    const Program program = buildLightingProgram({vertex_text, fragment_text, {}});
    const OffscreenTarget target(width, height, 1, OffscreenTarget::Format::RGBA32F);
    std::vector<std::unique_ptr<MeshBuffers>> buffers;
    for (const auto& mesh : meshes)
        buffers.push_back(std::make_unique<MeshBuffers>(*mesh));

    DrawingState().set();
    glUseProgram(program.name());
    glUniformMatrix4fv(program.uniformLocation("korl_view"), 1, GL_FALSE, glm::value_ptr(viewpoint.view));
    glUniformMatrix4fv(program.uniformLocation("korl_projection"), 1, GL_FALSE,
                       glm::value_ptr(viewpoint.projection));
    const auto draw = [&](Output output, std::vector<float>& values) {
        values.resize(std::size_t{4} * static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
        glClearColor(0, 0, 0, 0);
        glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
        glUniform1i(program.uniformLocation("korl_output"), output);
        for (std::size_t i = 0; i < buffers.size(); ++i) {
            glUniform1f(program.uniformLocation("korl_mark"), static_cast<float>(i + 1));
            buffers[i]->drawWithAttributes();
        }
        target.read(std::span(values));
    };
    draw(positions, my_positions);
    draw(normals, my_normals);
    draw(colors, my_colors);
    glUseProgram(0);
    requireNoGLError("the look at", "what the picture shows");
    for (std::size_t i = 3; i < my_positions.size(); i += 4)
        my_covered += my_positions[i] > 0 ? 1 : 0;
}

std::optional<SurfacePoint> GBuffer::at(int x, int y) const {
    return pointOf(static_cast<std::size_t>(y) * static_cast<std::size_t>(my_width) +
                   static_cast<std::size_t>(x));
}

std::optional<SurfacePoint> GBuffer::pointOf(std::size_t pixel) const {
    const std::size_t at = 4 * pixel;
    const float mark = my_positions[at + 3];
    if (!(mark > 0))
        return std::nullopt;
    const auto vector = [&](const std::vector<float>& values) {
        return glm::vec3(values[at], values[at + 1], values[at + 2]);
    };
    return SurfacePoint{vector(my_positions), vector(my_normals), vector(my_colors),
                        static_cast<std::size_t>(mark) - 1};
}

std::vector<SurfacePoint> GBuffer::spread(std::size_t max_points) const {
    std::vector<SurfacePoint> points;
    const std::size_t step = max_points == 0 ? my_covered + 1 : (my_covered + max_points - 1) / max_points;
    std::size_t seen = 0;
    for (std::size_t pixel = 0; pixel < my_positions.size() / 4; ++pixel)
        if (const auto point = pointOf(pixel); point && seen++ % step == 0)
            points.push_back(*point);
    return points;
}

} // namespace korl
