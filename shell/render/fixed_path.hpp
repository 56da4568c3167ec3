#pragma once

#include "shell/render/mesh_buffers.hpp"
#include "shell/render/reports.hpp"
#include "shell/render/view.hpp"
#include "shell/render/viewpoint.hpp"

#include <span>
#include <vector>

namespace korl {

/// Draws with OpenGL's own lighting, which the lights set up.
///
/// Every frame starts from OpenGL's default light state, since some lights leave values unset on purpose,
/// with no ambient light of the light model, a local viewer, and normals made unit again.
class FixedPath {
public:
    /// Has every object of the frame set up its fixed-function light, with the view matrix as the model-view
    /// matrix. The light number goes on to the next light only when an object has enabled the current one.
    /// Objects past the driver's number of lights are not called, and a light that is not finite is switched
    /// off; both are reported by name.
    /// @param alone whether this path is all that is shown: a light that sets up none is then reported, too.
    void setUpLights(View& view, const Viewpoint& viewpoint, Reports& reports, bool alone = false);

    /// Draws the meshes under these lights, into the framebuffer and viewport that are current. Lighting is
    /// off afterwards.
    void draw(const Viewpoint& viewpoint, const MeshBufferCache::Entries& meshes);

private:
    void reportLeftOut(std::span<const View::Member> left_out, int most, Reports& reports);

    std::vector<const Qelt::RenderAble*> my_left_out; ///< of the latest frame; only compared, never followed
};

} // namespace korl
