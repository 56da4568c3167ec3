#pragma once

namespace korl {

/// By which of their two answers the lights are taken.
enum class RenderPath {
    shader, ///< their GLSL snippets
    fixed,  ///< OpenGL's fixed-function lights
    both    ///< one picture of each, the shader path's on the left
};

struct RenderSettings {
    int width = 640; ///< pixels, of the picture of one path
    int height = 480;
    RenderPath path = RenderPath::shader;
};

} // namespace korl
