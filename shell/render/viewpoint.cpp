#include "shell/render/viewpoint.hpp"

#include "shell/scene/scene.hpp"

namespace korl {

namespace {

/// What a scene without any extent is seen as: a ball around the origin.
constexpr Ball empty_scene_ball{{0, 0, 0}, 1};

} // namespace

Viewpoint viewpointOf(const Scene& scene, double aspect) {
    const Ball ball = scene.boundingBall().value_or(empty_scene_ball);
    const Camera camera = scene.camera ? *scene.camera : fitCamera(ball, aspect);
    validate(camera);
    return {glm::mat4(camera.view()), glm::mat4(camera.projection(aspect, ball)), glm::vec3(camera.position)};
}

} // namespace korl
