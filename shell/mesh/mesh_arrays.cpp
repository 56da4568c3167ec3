#include "shell/mesh/mesh_arrays.hpp"

#include <algorithm>
#include <cmath>
#include <glm/geometric.hpp>

namespace korl {

namespace {

/// A normal that is of unit length already, as a mesh takes it, stays to the bit; so does one that has no
/// direction, to be found by `validate`.
glm::vec3 unitNormal(const glm::vec3& normal) {
    const glm::dvec3 exact(normal); // the squares of floats neither overflow nor vanish in double
    const double length = glm::length(exact);
    return length > 0 && std::abs(length - 1) > 0.001 ? glm::vec3(exact / length) : normal;
}

} // namespace

Mesh meshFromArrays(const std::string& name, const MeshArrays& arrays) {
    Mesh mesh;
    mesh.name = name;
    mesh.positions.assign(arrays.positions.begin(), arrays.positions.end());
    mesh.colors.assign(arrays.colors.begin(), arrays.colors.end());
    mesh.triangles.reserve(arrays.triangles.size() * 3);
    for (const glm::uvec3& triangle : arrays.triangles)
        mesh.triangles.insert(mesh.triangles.end(), {triangle.x, triangle.y, triangle.z});
    const bool smooth = arrays.normals.empty();
    if (smooth)
        mesh.normals.resize(mesh.positions.size(),
                            glm::vec3(0, 0, 1)); // until the triangles are known to be good
    else
        std::transform(arrays.normals.begin(), arrays.normals.end(), std::back_inserter(mesh.normals),
                       unitNormal);
    validate(mesh);
    if (smooth) {
        mesh.normals.clear();
        addMissingNormals(mesh);
    }
    return mesh;
}

} // namespace korl
