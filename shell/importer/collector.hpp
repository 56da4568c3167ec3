#pragma once

#include "shell/mesh/mesh.hpp"

struct aiScene;

namespace korl {

/// The meshes of an imported model where its nodes put them, merged into one. Throws Error for a vertex that
/// is not finite or not there, and for nodes that lie more than 64 deep in each other.
Mesh collectMeshes(const aiScene& scene);

} // namespace korl
