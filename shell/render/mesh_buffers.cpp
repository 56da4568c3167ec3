#include "shell/render/mesh_buffers.hpp"

#include "shell/render/shader_assembly.hpp"

#include <algorithm>

namespace korl {

namespace {

enum AttributeLocation : GLuint { position_location, normal_location, color_location };
static_assert(vertex_attribute_names.size() == 3, "one location for each attribute of the lighting program");

template <class Element>
void upload(GLenum target, const Buffer& buffer, const std::vector<Element>& elements) {
    glBindBuffer(target, buffer.name());
    glBufferData(target, static_cast<GLsizeiptr>(elements.size() * sizeof(Element)), elements.data(),
                 GL_STATIC_DRAW);
}

void setAttribute(GLuint location, const Buffer& buffer) {
    glBindBuffer(GL_ARRAY_BUFFER, buffer.name());
    glVertexAttribPointer(location, 3, GL_FLOAT, GL_FALSE, 0, nullptr);
    glEnableVertexAttribArray(location);
}

} // namespace

MeshBuffers::MeshBuffers(const Mesh& mesh)
    : my_position_count(static_cast<int>(mesh.positions.size())),
      my_index_count(static_cast<GLsizei>(mesh.triangles.size())), my_has_colors(!mesh.colors.empty()) {
    upload(GL_ARRAY_BUFFER, my_positions, mesh.positions);
    upload(GL_ARRAY_BUFFER, my_normals, mesh.normals);
    upload(GL_ARRAY_BUFFER, my_colors, mesh.colors);

    glBindVertexArray(my_attributes.name());
    setAttribute(position_location, my_positions);
    setAttribute(normal_location, my_normals);
    if (my_has_colors)
        setAttribute(color_location, my_colors);
    upload(GL_ELEMENT_ARRAY_BUFFER, my_triangles, mesh.triangles);

    glBindVertexArray(my_fixed_arrays.name());
    glBindBuffer(GL_ARRAY_BUFFER, my_positions.name());
    glVertexPointer(3, GL_FLOAT, 0, nullptr);
    glEnableClientState(GL_VERTEX_ARRAY);
    glBindBuffer(GL_ARRAY_BUFFER, my_normals.name());
    glNormalPointer(GL_FLOAT, 0, nullptr);
    glEnableClientState(GL_NORMAL_ARRAY);
    if (my_has_colors) {
        glBindBuffer(GL_ARRAY_BUFFER, my_colors.name());
        glColorPointer(3, GL_FLOAT, 0, nullptr);
        glEnableClientState(GL_COLOR_ARRAY);
    }
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, my_triangles.name());

    glBindVertexArray(0);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
}

void MeshBuffers::drawWithAttributes() const {
    glBindVertexArray(my_attributes.name());
    if (!my_has_colors)
        glVertexAttrib4f(color_location, 1, 1, 1, 1);
    draw();
}

void MeshBuffers::drawFixed() const {
    glBindVertexArray(my_fixed_arrays.name());
    if (!my_has_colors)
        glColor4f(1, 1, 1, 1);
    draw();
}

void MeshBuffers::draw() const {
    glDrawElements(GL_TRIANGLES, my_index_count, GL_UNSIGNED_INT, nullptr);
    glBindVertexArray(0);
}

const MeshBufferCache::Entries& MeshBufferCache::buffersOf(const Meshes& meshes) {
    const bool unchanged =
        std::equal(my_entries.begin(), my_entries.end(), meshes.begin(), meshes.end(),
                   [](const auto& entry, const auto& mesh) { return entry.first == mesh; });
    if (unchanged)
        return my_entries;
    Entries entries;
    for (const auto& mesh : meshes) {
        const auto held = std::find_if(my_entries.begin(), my_entries.end(), [&](const auto& entry) {
            return entry.first == mesh && entry.second;
        });
        entries.emplace_back(mesh, held == my_entries.end() ? std::make_unique<MeshBuffers>(*mesh)
                                                            : std::move(held->second));
    }
    my_entries = std::move(entries);
    ++my_revision;
    return my_entries;
}

} // namespace korl
