#pragma once

#include <cstdint>
#include <filesystem>
#include <glm/vec3.hpp>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace korl {

/// Which axis of a model's own coordinates points upwards.
enum class UpAxis { x, y, z };

/// The file that a mesh was read from, and how it was turned.
struct ModelSource {
    std::filesystem::path file; ///< absolute
    UpAxis up = UpAxis::y;
};

/// A surface of triangles in scene space (right-handed, z up).
struct Mesh {
    std::string name;
    std::vector<glm::vec3> positions;
    std::vector<glm::vec3> normals; ///< one for each position, of unit length, away from the surface's front
    std::vector<glm::vec3> colors;  ///< one for each position, 0 to 1; none at all for a white mesh
    std::vector<std::uint32_t> triangles; ///< three positions each, counter-clockwise seen from the front
    std::optional<ModelSource> source{};  ///< where it came from, for a mesh that was read from a model file
    bool is_builtin = false;              ///< one of `builtinScene`, which its name tells
};

struct Ball {
    glm::dvec3 center;
    double radius;
};

/// The ball around the centre of the bounding box of all positions that reaches the farthest of them; nothing
/// where there are no positions. They must be finite.
std::optional<Ball> boundingBall(std::span<const Mesh> meshes);

/// Throws Error, with the mesh's name, the place in it and what was found there, for
/// - normals or colours that are not as many as the positions (no colours at all are allowed);
/// - a position, normal or colour that is not finite, a normal that is not of unit length (within 0.001), a
/// colour
///   outside 0 to 1;
/// - triangles that are not three indices each, or that lead beyond the positions.
void validate(const Mesh& mesh);

/// Gives each position that has no usable normal (none, not finite, or of no length) a smooth one: the mean
/// of the normals of the triangles that meet there, weighted by their areas. Positions of equal coordinates
/// count as one, so that no seam shows. A position without any triangle of some area gets (0, 0, 1). The
/// other normals are brought to unit length. The triangles must lead to positions that exist.
void addMissingNormals(Mesh& mesh);

} // namespace korl
