#pragma once

#include "shell/mesh/mesh.hpp"

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

namespace korl {

/// Reads "x", "y" or "z". Throws Error for any other text.
UpAxis parseUpAxis(std::string_view text);

/// The text that `parseUpAxis` reads as this axis.
const char* nameOf(UpAxis up);

/// What reading a model file may take, and whom it tells what.
struct ModelReading {
    std::chrono::milliseconds timeout = std::chrono::seconds(300);
    std::uint64_t memory = halfOfMemory(); ///< in bytes
    bool anywhere = false;                 ///< the file may name others that lie outside its folder
    /// Takes what the user should know about a model that was read all the same: what of it is not shown.
    std::function<void(const std::string&)> warn{};
    /// Called every 100 ms while the file is read. What it throws ends the reading.
    std::function<void()> meanwhile{};

    /// Half of the machine's memory, in bytes.
    static std::uint64_t halfOfMemory();
};

/// Reads a file into a mesh, whose axis becomes z.
using ModelImport = std::function<Mesh(const std::filesystem::path&, UpAxis)>;

/// Reads a model from an OBJ, PLY, STL, glTF (.gltf, .glb) or 3DS file and fits it to the scene.
///
/// A program of its own, korl-import, reads the file: a file that crashes the reader, or keeps it busy, does
/// nothing to this process.
///
/// Its meshes are put where its nodes have them and merged into one, which carries the file's name. Polygons
/// are cut into triangles; points and lines are left out. Normals are made smooth where there are none. A
/// vertex has its own colour, else the diffuse colour of its material, as the numbers stand in the file, but
/// within 0 to 1; where the file gives neither it is white. Textures are not read.
///
/// @param up this axis of the model is turned to scene z, without mirroring. With y up the model's front, +z,
/// comes to
///        face scene +y: (x, y, z) becomes (-x, z, y). With x up (x, y, z) becomes (y, z, x). A 3DS file,
///        whose format has z up, counts as a model with y up and its front at -y of the file.
/// @returns a valid mesh that knows its file, whose bounding ball has the centre 0 and the radius 0.5.
/// Throws Error that names the file, for one that cannot be opened, is of another kind or empty, is damaged
/// or truncated, has no triangles, a vertex that is not finite, or all vertices in one place; that takes more
/// time or memory than it may; and where its reader crashes.
Mesh importModel(const std::filesystem::path& file, UpAxis up, const ModelReading& reading = {});

/// `importModel` with such a reading.
ModelImport modelImportWith(const ModelReading& reading);

} // namespace korl
