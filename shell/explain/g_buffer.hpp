#pragma once

#include "shell/mesh/mesh.hpp"
#include "shell/render/viewpoint.hpp"

#include <glm/vec3.hpp>

#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace korl {

/// A place on the surface of a mesh, as a fragment of the picture has it.
struct SurfacePoint {
    glm::vec3 position; ///< in scene space
    glm::vec3 normal;   ///< in scene space, interpolated between the corners and so of any length
    glm::vec3 color;    ///< the material's ambient and diffuse colour
    std::size_t mesh;   ///< which of the scene's meshes, from 0
};

/// What is seen of the meshes in each pixel of a picture, at the pixel's centre.
class GBuffer {
public:
    using Meshes = std::span<const std::shared_ptr<const Mesh>>;

    /// Has the driver find the places, with the same rasterisation as the picture's. A context must be
    /// current; its framebuffer and viewport are changed. Throws Error for a size that the driver can't draw.
    GBuffer(Meshes meshes, const Viewpoint& viewpoint, int width, int height);

    int width() const noexcept { return my_width; }
    int height() const noexcept { return my_height; }

    /// The place that a pixel shows, counted from the upper left corner; nothing where it shows no mesh. The
    /// pixel must be one of the picture.
    std::optional<SurfacePoint> at(int x, int y) const;

    /// How many pixels show a mesh.
    std::size_t covered() const noexcept { return my_covered; }

    /// Places spread over all that is seen: that of every pixel that shows a mesh or, where there are more
    /// than `max_points` of these, of every n-th.
    std::vector<SurfacePoint> spread(std::size_t max_points) const;

private:
    std::optional<SurfacePoint> pointOf(std::size_t pixel) const;

    int my_width, my_height;
    std::size_t my_covered = 0;
    std::vector<float> my_positions, my_normals, my_colors; ///< four for each pixel, the rows from the top
};

} // namespace korl
