#pragma once

#include "shell/render/mesh_buffers.hpp"
#include "shell/render/reports.hpp"
#include "shell/render/view.hpp"
#include "shell/render/viewpoint.hpp"

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
    /// Once the driver's number of lights is set up, no further object is called for the frame; the lights
    /// among these are reported by name. So is a light that is not finite, which is switched off.
    /// @param alone whether this path is all that is shown: a light that sets up none is then reported, too.
    void setUpLights(View& view, const Viewpoint& viewpoint, Reports& reports, bool alone = false);

    /// Draws the meshes under these lights, into the framebuffer and viewport that are current. Lighting is
    /// off afterwards.
    void draw(const Viewpoint& viewpoint, const MeshBufferCache::Entries& meshes);

private:
    /// Names the lights of the frame that found all of OpenGL's held, where they are not the same objects as
    /// in the frame before.
    void reportLeftOut(const View& view, Reports& reports);

    /// Whether an object that was left out is a light that would have set up one: what one of its type did
    /// that was called tells; where there was none it is taken to.
    bool wouldLight(const View::Member& left_out, const View& view) const;

    std::vector<bool> my_lit; ///< of each object that was called for the frame, whether it set up a light
    std::vector<const Qelt::RenderAble*> my_left_out; ///< of the latest frame; only compared, never followed
};

} // namespace korl
