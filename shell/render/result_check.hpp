#pragma once

#include "shell/render/light_probe.hpp"
#include "shell/render/mesh_buffers.hpp"
#include "shell/render/reports.hpp"
#include "shell/render/view.hpp"

#include <cstdint>
#include <optional>
#include <unordered_map>

namespace korl {

/// Looks whether what the lights give is finite at every vertex of the meshes, and reports those of which it
/// is not: finite parameters can still lead to a division by nothing. A light is evaluated again when its
/// values or the meshes have changed.
class ResultCheck {
public:
    /// Checks the lights of a frame whose uniforms are filled. A light with a uniform that is not finite is
    /// passed over: that has a report of its own.
    void check(const View& view, const glm::vec3& eye, const MeshBufferCache& meshes, LightProbe& probe,
               Reports& reports);

private:
    struct Checked {
        Qelt::RenderNamespace::UniformMap uniforms;
        unsigned long meshes_revision = 0;
    };

    std::unordered_map<std::uint64_t, Checked> my_checked; ///< by the serial number of the light source
};

} // namespace korl
