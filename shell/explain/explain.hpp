#pragma once

#include "shell/explain/explanation.hpp"

#include <optional>
#include <string>
#include <utility>

namespace korl {

class Shell;

struct ExplainSettings {
    int width = 640; ///< pixels
    int height = 480;
    RenderPath path = RenderPath::shader;     ///< the one whose picture is explained; not both
    std::optional<std::pair<int, int>> pixel; ///< from the left and from the top, from 0
    std::string view;                         ///< the view's name; empty for the scene's own
};

/// Explains why the picture of the shell's scene is as dark as it is, from what the lights give the renderer:
/// their snippets, evaluated in the driver, their uniforms and their OpenGL lights. The scene is not changed.
///
/// The lights are looked at where the picture shows meshes or, where it shows none, at the meshes' corners;
/// with a pixel, at what that shows. On the fixed-function path they are looked at by fragment, while OpenGL
/// lights corners and interpolates between them.
///
/// Throws Error for both paths at once, a pixel that is not in the picture, a view that does not exist, a
/// size that the driver can't draw, and an object that can't be brought up to date. A light that fails in
/// the driver is a finding.
Explanation explain(Shell& shell, const ExplainSettings& settings);

} // namespace korl
