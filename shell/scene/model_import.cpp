#include "shell/scene/model_import.hpp"

#include "shell/error.hpp"
#include "shell/scene/ply_check.hpp"

#include <algorithm>
#include <array>
#include <assimp/config.h>
#include <assimp/DefaultIOSystem.h>
#include <assimp/Importer.hpp>
#include <assimp/IOStream.hpp>
#include <assimp/postprocess.h>
#include <assimp/scene.h>
#include <cctype>
#include <cerrno>
#include <cmath>
#include <fstream>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace korl {

namespace {

namespace fs = std::filesystem;

constexpr std::array<std::string_view, 6> extensions{".obj", ".ply", ".stl", ".gltf", ".glb", ".3ds"};
constexpr double fitted_radius = 0.5;
constexpr glm::vec3 white{1, 1, 1};

/// Why a model can't be read; whoever knows the file completes the message.
[[noreturn]] void refuse(const std::string& reason) {
    throw Error(reason);
}

std::string extensionList() {
    std::string list;
    for (const std::string_view extension : extensions)
        list += (list.empty() ? "" : ", ") + std::string(extension);
    return list;
}

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

std::string extensionOf(const fs::path& file) {
    std::string extension = file.extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return extension;
}

void requireModelFile(const fs::path& file) {
    std::error_code problem;
    const fs::file_status status = fs::status(file, problem);
    if (status.type() == fs::file_type::not_found)
        refuse("there is no such file; check the path");
    if (problem)
        refuse("it may not be opened: " + problem.message());
    if (fs::is_directory(status))
        refuse("it is a directory; give the name of a model file");
    if (!fs::is_regular_file(status))
        refuse("it is no regular file");
    const std::string extension = extensionOf(file);
    if (extension.empty())
        refuse("its name has no extension to tell the format; those that can be read are " + extensionList());
    if (std::find(extensions.begin(), extensions.end(), extension) == extensions.end())
        refuse("a " + extension + " file is no model that can be read; those that can are " +
               extensionList());
}

std::string bytesOf(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    if (!stream)
        refuse("it may not be opened: " + std::generic_category().message(errno));
    std::string bytes(fs::file_size(file), '\0');
    if (bytes.empty())
        refuse("it is empty");
    if (!stream.read(bytes.data(), static_cast<std::streamsize>(bytes.size())))
        refuse("it cannot be read to its end");
    return bytes;
}

/// Refuses damaged files that Assimp would crash on, hang on or read in part without a word.
void requireSound(const std::string& extension, const std::string& bytes) {
    if (extension == ".ply")
        requireSoundPly(bytes);
    if (extension == ".stl" && bytes.starts_with("solid") && !isBinaryStl(bytes) &&
        bytes.find("endsolid") == std::string::npos)
        refuse("it is damaged or truncated: it has no \"endsolid\"");
    if (extension == ".glb" && !hasWholeChunks(bytes))
        refuse("it is damaged or truncated: its length or that of a chunk is not what its head tells");
}

void requireFinite(const aiVector3D& position) {
    if (!std::isfinite(position.x) || !std::isfinite(position.y) || !std::isfinite(position.z))
        refuse("it has a vertex at (" + std::to_string(position.x) + ", " + std::to_string(position.y) +
               ", " + std::to_string(position.z) + "), which is no place");
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

    Mesh collect(std::string name) {
        my_mesh.name = std::move(name);
        if (my_scene.mRootNode)
            addNode(*my_scene.mRootNode, aiMatrix4x4());
        if (std::all_of(my_mesh.colors.begin(), my_mesh.colors.end(),
                        [](const glm::vec3& color) { return color == white; }))
            my_mesh.colors.clear();
        return std::move(my_mesh);
    }

private:
    void addNode(const aiNode& node, const aiMatrix4x4& parent_transform) {
        const aiMatrix4x4 transform = parent_transform * node.mTransformation;
        for (unsigned i = 0; i < node.mNumMeshes; ++i)
            addMesh(*my_scene.mMeshes[node.mMeshes[i]], transform);
        for (unsigned i = 0; i < node.mNumChildren; ++i)
            addNode(*node.mChildren[i], transform);
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
        refuse("all its vertices are in one place, so that it has no size");
    for (glm::vec3& position : mesh.positions)
        position = glm::vec3((glm::dvec3(position) - ball.center) * (fitted_radius / ball.radius));
}

/// A file that Assimp reads from.
class ModelStream final : public Assimp::IOStream {
public:
    ModelStream(std::unique_ptr<Assimp::IOStream> stream, std::set<ModelStream*>& open_streams)
        : my_stream(std::move(stream)), my_open_streams(open_streams) {
        my_open_streams.insert(this);
    }
    ~ModelStream() override { my_open_streams.erase(this); }
    ModelStream(const ModelStream&) = delete;
    ModelStream& operator=(const ModelStream&) = delete;

    std::size_t Read(void* to, std::size_t size, std::size_t count) override {
        return my_stream->Read(to, size, count);
    }
    std::size_t Write(const void*, std::size_t, std::size_t) override { return 0; }
    aiReturn Seek(std::size_t place, aiOrigin from) override { return my_stream->Seek(place, from); }
    std::size_t Tell() const override { return my_stream->Tell(); }
    std::size_t FileSize() const override { return my_stream->FileSize(); }
    void Flush() override {}

private:
    std::unique_ptr<Assimp::IOStream> my_stream;
    std::set<ModelStream*>& my_open_streams;
};

/// Closes the files that Assimp leaves open when it meets something damaged.
class ModelStreams final : public Assimp::DefaultIOSystem {
public:
    ModelStreams() = default;
    ~ModelStreams() override {
        while (!my_open_streams.empty())
            delete *my_open_streams.begin();
    }
    ModelStreams(const ModelStreams&) = delete;
    ModelStreams& operator=(const ModelStreams&) = delete;

    Assimp::IOStream* Open(const char* file, const char* mode) override {
        std::unique_ptr<Assimp::IOStream> stream(DefaultIOSystem::Open(file, mode));
        return stream ? new ModelStream(std::move(stream), my_open_streams) : nullptr;
    }
    void Close(Assimp::IOStream* stream) override { delete stream; }

private:
    std::set<ModelStream*> my_open_streams;
};

[[noreturn]] void refuseUnread(const Assimp::Importer& importer) {
    const std::string reason = importer.GetErrorString();
    if (reason == "No meshes remaining")
        refuse("it has no triangles");
    if (reason.starts_with("No suitable reader found"))
        refuse("it is damaged or truncated: its content is not what its extension tells");
    refuse("it is damaged or truncated: " + reason);
}

Mesh readModel(const fs::path& file) {
    Assimp::Importer importer;
    importer.SetIOHandler(new ModelStreams); // which the importer owns
    importer.SetPropertyInteger(AI_CONFIG_PP_SBP_REMOVE, aiPrimitiveType_POINT | aiPrimitiveType_LINE);
    // What is not drawn must not keep vertices apart that are identical otherwise.
    importer.SetPropertyInteger(AI_CONFIG_PP_RVC_FLAGS,
                                aiComponent_TEXCOORDS | aiComponent_TANGENTS_AND_BITANGENTS |
                                    aiComponent_BONEWEIGHTS | aiComponent_ANIMATIONS | aiComponent_TEXTURES |
                                    aiComponent_LIGHTS | aiComponent_CAMERAS);
    const aiScene* const scene =
        importer.ReadFile(file.string(), aiProcess_RemoveComponent | aiProcess_Triangulate |
                                             aiProcess_SortByPType | aiProcess_JoinIdenticalVertices);
    if (!scene)
        refuseUnread(importer);
    return Collector(*scene).collect(file.filename().string());
}

} // namespace

UpAxis parseUpAxis(std::string_view text) {
    if (text == "x")
        return UpAxis::x;
    if (text == "y")
        return UpAxis::y;
    if (text == "z")
        return UpAxis::z;
    throw Error("\"" + std::string(text) + "\" is no axis of a model; there are x, y and z");
}

Mesh importModel(const fs::path& file, UpAxis up) {
    try {
        requireModelFile(file);
        requireSound(extensionOf(file), bytesOf(file));
        Mesh mesh = readModel(file);
        if (mesh.triangles.empty())
            refuse("it has no triangles");
        addMissingNormals(mesh);
        fitIntoScene(mesh, up);
        validate(mesh);
        mesh.source = ModelSource{fs::absolute(file), up};
        return mesh;
    } catch (const std::exception& error) {
        throw Error("cannot read the model " + file.string() + ": " + error.what());
    }
}

} // namespace korl
