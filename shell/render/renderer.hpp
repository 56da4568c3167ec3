#pragma once

#include "shell/image/image.hpp"
#include "shell/render/fixed_path.hpp"
#include "shell/render/gl_context.hpp"
#include "shell/render/gl_state.hpp"
#include "shell/render/mesh_buffers.hpp"
#include "shell/render/offscreen_target.hpp"
#include "shell/render/render_settings.hpp"
#include "shell/render/reports.hpp"
#include "shell/render/shader_path.hpp"
#include "shell/render/view.hpp"
#include "shell/scene/scene.hpp"

#include <optional>
#include <string>
#include <vector>

namespace korl {

/// Draws scenes into images. The context that it was made with must be current whenever it is used or
/// destroyed.
class Renderer {
public:
    /// @param report takes what the user should know about the pictures, each thing once.
    explicit Renderer(GLContext& context, Reports::Sink report = {});

    /// Draws one frame of a view, whole, on one path after the other. What a frame's lights and objects leave
    /// behind in OpenGL does not show in the next one.
    /// @returns the picture; for both paths twice as wide. Where the background is see-through, so is the
    /// picture, with straight alpha: drawn over a colour it is the picture of the scene with the background
    /// over that colour.
    /// Throws Error for a size that the driver can't draw, and for a light that it can't compile.
    Image render(const Scene& scene, View& view, const RenderSettings& settings);

    /// The uniform values that the lights of a frame have, a line for each: its name with its "$$", " = ",
    /// its components. Nothing is drawn.
    std::vector<std::string> listUniforms(const Scene& scene, View& view);

    /// What evaluates single lights; the context must be current.
    LightSampler& sampler() noexcept { return my_shader_path.sampler(); }

    const ShaderPath& shaderPath() const noexcept { return my_shader_path; }

private:
    void drawPath(RenderPath path, bool alone, const Scene& scene, View& view, Image& image);

    GLContext& my_context;
    Reports my_reports;
    ShaderPath my_shader_path;
    FixedPath my_fixed_path;
    MeshBufferCache my_meshes;
    std::optional<OffscreenTarget> my_target;
    std::optional<DrawingState> my_drawing_state; ///< since the first picture
};

} // namespace korl
