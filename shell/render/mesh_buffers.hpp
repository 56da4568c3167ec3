#pragma once

#include "shell/mesh/mesh.hpp"
#include "shell/render/gl_objects.hpp"

#include <memory>
#include <utility>
#include <vector>

namespace korl {

/// A mesh in the memory of the graphics processor, ready to be drawn on either path.
class MeshBuffers {
public:
    /// Uploads the mesh, which must be valid.
    explicit MeshBuffers(const Mesh& mesh);

    /// Draws with the vertex attributes of the lighting program.
    void drawWithAttributes() const;

    /// Draws with the vertex arrays of the fixed-function pipeline.
    void drawFixed() const;

    /// The positions in scene space, three floats each, and how many there are.
    const Buffer& positions() const noexcept { return my_positions; }
    int positionCount() const noexcept { return my_position_count; }

private:
    void draw() const;

    Buffer my_positions, my_normals, my_colors, my_triangles;
    /// One of each kind, since on some drivers the two kinds of arrays share their places.
    VertexArray my_attributes, my_fixed_arrays;
    int my_position_count;
    GLsizei my_index_count;
    bool my_has_colors;
};

/// The meshes of the scene that was drawn last; each is uploaded once, as long as it stays in the scene.
class MeshBufferCache {
public:
    using Meshes = std::vector<std::shared_ptr<const Mesh>>;
    using Entries = std::vector<std::pair<std::shared_ptr<const Mesh>, std::unique_ptr<MeshBuffers>>>;

    /// The buffers of these meshes, in their order.
    const Entries& buffersOf(const Meshes& meshes);

    /// Those that were asked for last.
    const Entries& entries() const noexcept { return my_entries; }

    /// A number that changes whenever the meshes do.
    unsigned long revision() const noexcept { return my_revision; }

private:
    unsigned long my_revision = 0;
    Entries my_entries;
};

} // namespace korl
