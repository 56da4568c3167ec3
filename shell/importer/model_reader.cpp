#include "shell/importer/model_reader.hpp"

#include "shell/base/error.hpp"
#include "shell/base/file_output.hpp"
#include "shell/base/printable.hpp"
#include "shell/importer/collector.hpp"
#include "shell/importer/companion_files.hpp"
#include "shell/importer/gltf_check.hpp"
#include "shell/importer/model_limits.hpp"
#include "shell/importer/ply_check.hpp"
#include "shell/importer/unshown.hpp"

#include <algorithm>
#include <assimp/config.h>
#include <assimp/Importer.hpp>
#include <assimp/importerdesc.h>
#include <assimp/postprocess.h>
#include <assimp/scene.h>
#include <cerrno>
#include <cstdint>
#include <fmt/core.h>
#include <fstream>
#include <iterator>
#include <sstream>
#include <system_error>

namespace korl {

namespace {

namespace fs = std::filesystem;

constexpr double fitted_radius = 0.5;

std::uint32_t littleEndianAt(const std::string& bytes, std::size_t place) {
    std::uint32_t number = 0;
    for (std::size_t i = 0; i < 4; ++i)
        number |= std::uint32_t{static_cast<unsigned char>(bytes[place + i])} << (8 * i);
    return number;
}

/// A binary STL file has a head of 80 bytes, the number of triangles, and 50 bytes for each.
bool isBinaryStl(const std::string& bytes) {
    return bytes.size() >= 84 && bytes.size() == 84 + std::uint64_t{50} * littleEndianAt(bytes, 80);
}

/// A binary glTF file has a head of 12 bytes, which ends with the file's length, and chunks of a length, a
/// kind of four bytes and content.
bool hasWholeChunks(const std::string& bytes) {
    if (bytes.size() < 12 || littleEndianAt(bytes, 8) > bytes.size())
        return false;
    const std::uint64_t end = littleEndianAt(bytes, 8);
    std::uint64_t place = 12;
    while (place + 8 <= end)
        place += 8 + std::uint64_t{littleEndianAt(bytes, static_cast<std::size_t>(place))};
    return place == end;
}

std::string bytesOf(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream)
        throw Error("it may not be opened: " + std::generic_category().message(errno));
    std::string bytes(fs::file_size(file), '\0');
    if (bytes.empty())
        throw Error("it is empty");
    if (!stream.read(bytes.data(), static_cast<std::streamsize>(bytes.size())))
        throw Error("it cannot be read to its end");
    return bytes;
}

void requireSoundGlb(const std::string& bytes, const ModelPlace& place) {
    constexpr std::size_t head = 20; // of the file and of its first chunk
    if (!hasWholeChunks(bytes) || bytes.size() < head)
        throw Error("it is damaged or truncated: its length or that of a chunk is not what its head tells");
    const std::size_t length = littleEndianAt(bytes, 12);
    const std::size_t second = head + length;
    const std::uint64_t binary = second + 8 <= bytes.size() ? littleEndianAt(bytes, second) : 0;
    requireSoundGltf(bytes.substr(head, length), place, binary);
}

/// Refuses damaged files that Assimp would crash on, hang on or read in part without a word.
void requireSound(const ModelPlace& place) {
    const std::string extension = suffixOf(place.file), bytes = bytesOf(place.file);
    if (extension == ".ply")
        requireSoundPly(bytes);
    if (extension == ".stl" && bytes.starts_with("solid") && !isBinaryStl(bytes) &&
        bytes.find("endsolid") == std::string::npos)
        throw Error("it is damaged or truncated: it has no \"endsolid\"");
    if (extension == ".gltf")
        requireSoundGltf(bytes, place);
    if (extension == ".glb")
        requireSoundGlb(bytes, place);
}

glm::vec3 turned(const glm::vec3& v, UpAxis up) {
    switch (up) {
    case UpAxis::x:
        return {v.y, v.z, v.x};
    case UpAxis::y:
        return {-v.x, v.z, v.y};
    case UpAxis::z:
        break;
    }
    return v;
}

void fitIntoScene(Mesh& mesh, UpAxis up) {
    for (glm::vec3& position : mesh.positions)
        position = turned(position, up);
    for (glm::vec3& normal : mesh.normals)
        normal = turned(normal, up);
    const Ball ball = *boundingBall(std::span(&mesh, 1));
    if (ball.radius == 0)
        throw Error("all its vertices are in one place, so that it has no size");
    for (glm::vec3& position : mesh.positions)
        position = glm::vec3((glm::dvec3(position) - ball.center) * (fitted_radius / ball.radius));
}

/// Leaves the readers of one format alone: a file is read as what its name says, or not at all.
void keepReadersOf(const std::string& extension, Assimp::Importer& importer) {
    for (std::size_t i = importer.GetImporterCount(); i-- > 0;) {
        std::istringstream names(importer.GetImporterInfo(i)->mFileExtensions);
        const bool is_kept =
            std::any_of(std::istream_iterator<std::string>(names), std::istream_iterator<std::string>(),
                        [&](const std::string& name) { return "." + name == extension; });
        if (!is_kept)
            importer.UnregisterLoader(importer.GetImporter(i));
    }
}

[[noreturn]] void refuseUnread(const Assimp::Importer& importer) {
    constexpr std::size_t max_length = 300;
    const std::string reason = importer.GetErrorString();
    if (reason == "No meshes remaining")
        throw Error("it has no triangles");
    if (reason.starts_with("No suitable reader found"))
        throw Error("it is damaged or truncated: its content is not what its extension tells");
    throw Error("it is damaged or truncated: " + printable(reason.substr(0, max_length)));
}

void requireFewCorners(const aiScene& scene) {
    for (unsigned i = 0; i < scene.mNumMeshes; ++i)
        for (unsigned face = 0; face < scene.mMeshes[i]->mNumFaces; ++face)
            if (const unsigned corners = scene.mMeshes[i]->mFaces[face].mNumIndices; corners > max_corners)
                throw Error(fmt::format("it has a face of {} corners, "
                                        "more than the {} that are read; cut it into smaller ones",
                                        corners, max_corners));
}

ModelContent readWithAssimp(const ModelPlace& place) {
    Assimp::Importer importer;
    auto* const files = new CompanionFiles(place);
    importer.SetIOHandler(files); // which the importer owns
    keepReadersOf(suffixOf(place.file), importer);
    importer.SetPropertyInteger(AI_CONFIG_PP_SBP_REMOVE, aiPrimitiveType_POINT | aiPrimitiveType_LINE);
    // What is not drawn must not keep vertices apart that are identical otherwise.
    importer.SetPropertyInteger(AI_CONFIG_PP_RVC_FLAGS,
                                aiComponent_TEXCOORDS | aiComponent_TANGENTS_AND_BITANGENTS |
                                    aiComponent_BONEWEIGHTS | aiComponent_ANIMATIONS | aiComponent_TEXTURES |
                                    aiComponent_LIGHTS | aiComponent_CAMERAS);
    const aiScene* scene = importer.ReadFile(place.file.string(), 0);
    if (!files->refusal().empty())
        throw Error(files->refusal());
    if (!scene)
        refuseUnread(importer);
    requireFewCorners(*scene);
    ModelContent content{{}, files->notes()};
    if (const std::string unshown = unshownContent(*scene); !unshown.empty())
        content.notes.push_back(unshown);
    scene = importer.ApplyPostProcessing(aiProcess_RemoveComponent | aiProcess_Triangulate |
                                         aiProcess_SortByPType | aiProcess_JoinIdenticalVertices);
    if (!scene)
        refuseUnread(importer);
    content.mesh = collectMeshes(*scene);
    return content;
}

} // namespace

ModelContent readModelFile(const fs::path& file, UpAxis up, bool anywhere) {
    const ModelPlace place{file, anywhere};
    requireSound(place);
    ModelContent content = readWithAssimp(place);
    Mesh& mesh = content.mesh;
    mesh.name = file.filename().string();
    if (mesh.triangles.empty())
        throw Error("it has no triangles");
    addMissingNormals(mesh);
    fitIntoScene(mesh, up);
    validate(mesh);
    return content;
}

} // namespace korl
