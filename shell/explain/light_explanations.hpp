#pragma once

#include "shell/explain/explanation.hpp"
#include "shell/explain/light_diagnosis.hpp"
#include "shell/render/view.hpp"
#include "shell/render/viewpoint.hpp"

namespace korl {

/// A scene in a frame of one of its views, and where its lights are judged.
struct LitScene {
    const Scene& scene;
    View& view; ///< in which a frame has begun
    Viewpoint viewpoint{};
    RenderPath path{}; ///< the one whose picture is explained
    SamplePoints samples;
};

/// Adds what is to be said of each light of the scene, of those that take no part in the frame too, and what
/// they give a pixel together. A context must be current; its OpenGL lights are set up anew.
void explainLights(const LitScene& at, Explanation& explanation);

} // namespace korl
