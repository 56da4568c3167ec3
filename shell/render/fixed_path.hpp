#pragma once

#include "shell/render/mesh_buffers.hpp"
#include "shell/render/reports.hpp"
#include "shell/render/view.hpp"
#include "shell/render/viewpoint.hpp"

#include <cstdint>
#include <map>
#include <span>
#include <vector>

namespace korl {

/// What became of an object of a frame when the fixed-function lights were set up.
struct FixedLightPlace {
    enum class Outcome {
        holds,        ///< it holds the OpenGL light `number`
        ambient_only, ///< the same, but with a cut-off of 0: only its ambient light counts
        sets_up_none, ///< it did not enable an OpenGL light
        not_finite,   ///< what it gave OpenGL is not finite, and the light was switched off
        left_out      ///< it was not called: OpenGL's lights were all held before
    };

    const Qelt::RenderAble* object; ///< of the frame; not to be followed after it
    Outcome outcome;
    int number; ///< of the OpenGL light, from 1; 0 where it has none
};

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

    /// What became of each object in the latest set-up, in the order of the frame.
    std::span<const FixedLightPlace> places() const noexcept { return my_places; }

    /// Draws the meshes under these lights, into the framebuffer and viewport that are current. Lighting is
    /// off afterwards.
    void draw(const Viewpoint& viewpoint, const MeshBufferCache::Entries& meshes);

private:
    /// Names the lights that found all of OpenGL's held, each of them once.
    void reportLeftOut(std::span<const FixedLightPlace> uncalled, Reports& reports);

    /// Whether an object that was not called is a light that would have set up one: what others of its type
    /// did tells; where none was called so far it is taken to.
    bool wouldLight(const Qelt::RenderAble& object) const;

    std::vector<FixedLightPlace> my_places;
    /// Whether the types that were called so far set up a light, by the numbers of their creators.
    std::map<std::uint64_t, bool> my_lighting_types;
};

} // namespace korl
