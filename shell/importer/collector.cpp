#include "shell/importer/collector.hpp"

#include "shell/base/error.hpp"
#include "shell/importer/model_limits.hpp"

#include <algorithm>
#include <array>
#include <assimp/scene.h>
#include <cmath>
#include <cstdint>
#include <fmt/core.h>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace korl {

namespace {

constexpr glm::vec3 white{1, 1, 1};

/// Why a model can't be read; whoever knows the file completes the message.
[[noreturn]] void refuse(const std::string& reason) {
    throw Error(reason);
}

void requireFinite(const aiVector3D& position) {
    if (!std::isfinite(position.x) || !std::isfinite(position.y) || !std::isfinite(position.z))
        refuse(fmt::format("it has a vertex at ({:f}, {:f}, {:f}), which is not a place", position.x,
                           position.y, position.z));
}

/// A mesh where a node has it.
struct MeshPlace {
    MeshPlace(const aiMesh& placed, const aiMatrix4x4& to_model)
        : mesh(placed), transform(to_model), normal_transform(to_model), mirrors(to_model.Determinant() < 0) {
        normal_transform.Inverse().Transpose();
    }

    const aiMesh& mesh;
    aiMatrix4x4 transform;
    aiMatrix3x3 normal_transform;
    bool mirrors; ///< turns counter-clockwise triangles clockwise
};

/// Collects the meshes of an imported model into one.
class Collector {
public:
    explicit Collector(const aiScene& scene) : my_scene(scene) {}

    Mesh collect() {
        if (my_scene.mRootNode)
            addNode(*my_scene.mRootNode, aiMatrix4x4(), 0);
        if (std::all_of(my_mesh.colors.begin(), my_mesh.colors.end(),
                        [](const glm::vec3& color) { return color == white; }))
            my_mesh.colors.clear();
        return std::move(my_mesh);
    }

private:
    void addNode(const aiNode& node, const aiMatrix4x4& parent_transform, std::size_t level) {
        if (level > max_node_levels) // the outermost is the importer's own
            refuse(fmt::format("its nodes lie more than {} deep in each other", max_node_levels));
        const aiMatrix4x4 transform = parent_transform * node.mTransformation;
        for (unsigned i = 0; i < node.mNumMeshes; ++i)
            addMesh(*my_scene.mMeshes[node.mMeshes[i]], transform);
        for (unsigned i = 0; i < node.mNumChildren; ++i)
            addNode(*node.mChildren[i], transform, level + 1);
    }

    void addMesh(const aiMesh& mesh, const aiMatrix4x4& transform) {
        const MeshPlace place(mesh, transform);
        std::vector<std::optional<std::uint32_t>> indices(mesh.mNumVertices);
        for (unsigned i = 0; i < mesh.mNumFaces; ++i)
            if (mesh.mFaces[i].mNumIndices == 3)
                addTriangle(place, mesh.mFaces[i], indices);
    }

    /// @param indices of the mesh's vertices in the collected mesh, for those that are in use already.
    void addTriangle(const MeshPlace& place, const aiFace& face,
                     std::vector<std::optional<std::uint32_t>>& indices) {
        std::array<std::uint32_t, 3> corners{};
        for (unsigned corner = 0; corner < 3; ++corner) {
            const unsigned vertex = face.mIndices[corner];
            if (vertex >= indices.size())
                refuse("it is damaged: a triangle leads to a vertex that does not exist");
            if (!indices[vertex])
                indices[vertex] = addVertex(place, vertex);
            corners[corner] = *indices[vertex];
        }
        if (place.mirrors)
            std::swap(corners[1], corners[2]);
        my_mesh.triangles.insert(my_mesh.triangles.end(), corners.begin(), corners.end());
    }

    std::uint32_t addVertex(const MeshPlace& place, unsigned vertex) {
        const aiMesh& mesh = place.mesh;
        requireFinite(mesh.mVertices[vertex]);
        const aiVector3D position = place.transform * mesh.mVertices[vertex];
        requireFinite(position);
        const aiVector3D normal =
            mesh.HasNormals() ? place.normal_transform * mesh.mNormals[vertex] : aiVector3D();
        my_mesh.positions.emplace_back(position.x, position.y, position.z);
        my_mesh.normals.emplace_back(normal.x, normal.y, normal.z);
        my_mesh.colors.push_back(colorOf(mesh, vertex));
        return static_cast<std::uint32_t>(my_mesh.positions.size() - 1);
    }

    glm::vec3 colorOf(const aiMesh& mesh, unsigned vertex) const {
        aiColor4D color(1, 1, 1, 1);
        if (mesh.HasVertexColors(0))
            color = mesh.mColors[0][vertex];
        else if (const aiMaterial& material = *my_scene.mMaterials[mesh.mMaterialIndex];
                 std::string_view(material.GetName().C_Str()) != AI_DEFAULT_MATERIAL_NAME)
            material.Get(AI_MATKEY_COLOR_DIFFUSE, color);
        return {component(color.r), component(color.g), component(color.b)};
    }

    static float component(float value) {
        return std::isfinite(value) ? std::clamp(value, 0.0f, 1.0f) : 1.0f;
    }

    const aiScene& my_scene;
    Mesh my_mesh;
};

} // namespace

Mesh collectMeshes(const aiScene& scene) {
    return Collector(scene).collect();
}

} // namespace korl
