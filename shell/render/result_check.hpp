#pragma once

#include "shell/render/light_sampler.hpp"
#include "shell/render/mesh_buffers.hpp"
#include "shell/render/reports.hpp"
#include "shell/render/view.hpp"

#include <cstddef>
#include <cstdint>
#include <map>
#include <utility>

namespace korl {

/// Looks whether what the lights give is finite at every vertex of the meshes, and reports those of which it
/// is not: finite parameters can still lead to a division by nothing. A light is evaluated when it first
/// comes up, and again when its values, the meshes or, where it asks for the direction of view, the eye have
/// changed; of those that change all the time one in each frame, in turn.
class ResultCheck {
public:
    /// Checks the lights of a frame whose uniforms are filled. Passed over are lights with a uniform that is
    /// not finite, which has a report of its own, and meshes of more vertices than the driver can take at
    /// once.
    void check(const View& view, const glm::vec3& eye, const MeshBufferCache& meshes, LightSampler& sampler,
               Reports& reports);

private:
    /// What a light was evaluated with.
    struct Checked {
        Qelt::RenderNamespace::UniformMap uniforms;
        unsigned long meshes_revision = 0;
        bool depends_on_eye = false;
        glm::vec3 eye{0};
    };

    void evaluate(const View& view, std::size_t source, const glm::vec3& eye, const MeshBufferCache& meshes,
                  LightSampler& sampler, Reports& reports);

    /// By the serial number of the light source and the view: a source may serve several.
    std::map<std::pair<std::uint64_t, const View*>, Checked> my_checked;
    std::size_t my_turn = 0; ///< from which source on the frame looks for one that has changed
};

} // namespace korl
