#include "shell/mesh/model_import.hpp"

#include "shell/base/error.hpp"
#include "tests/shell/mesh/model_files.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <glm/geometric.hpp>
#include <gtest/gtest.h>

namespace korl {
namespace {

using namespace test;

const std::array<glm::dvec3, 4> corner_vertices{glm::dvec3(0, 0, 0), {3, 0, 0}, {0, 2, 0}, {0, 0, 1}};

/// Where a vertex of the corner comes to, by the box's centre and half of its diagonal.
glm::dvec3 fitted(const glm::dvec3& vertex) {
    return (vertex - glm::dvec3(1.5, 1, 0.5)) * (0.5 / std::sqrt(1.5 * 1.5 + 1 + 0.25));
}

/// The mesh's only vertices at a place, or none.
std::vector<std::size_t> verticesAt(const Mesh& mesh, const glm::dvec3& place) {
    std::vector<std::size_t> found;
    for (std::size_t i = 0; i < mesh.positions.size(); ++i)
        if (glm::distance(glm::dvec3(mesh.positions[i]), place) < 1e-6)
            found.push_back(i);
    return found;
}

double volumeOf(const Mesh& mesh) {
    double volume = 0;
    for (std::size_t i = 0; i < mesh.triangles.size(); i += 3) {
        const auto corner = [&](std::size_t k) { return glm::dvec3(mesh.positions[mesh.triangles[i + k]]); };
        volume += glm::dot(corner(0), glm::cross(corner(1), corner(2))) / 6;
    }
    return volume;
}

/// Imports a model that is given as the text of a file.
class ModelTextTest : public testing::Test {
protected:
    Mesh import(const std::string& name, const std::string& text) {
        writeBytes(my_folder / name, text);
        return importModel(my_folder / name, UpAxis::z);
    }

    TemporaryFolder my_folder;
};

TEST(ModelImportTest, EveryFormatGivesTheSameModel) {
    for (const std::string& name : corner_files) {
        const Mesh mesh = importModel(data / name, UpAxis::z);
        EXPECT_NO_THROW(validate(mesh)) << name;
        EXPECT_EQ(mesh.name, name);
        EXPECT_EQ(mesh.triangles.size(), 12u) << name;
        const bool has_face_normals = name.find("stl") != std::string::npos;
        EXPECT_EQ(mesh.positions.size(), has_face_normals ? 12u : 4u) << name;
        for (const glm::dvec3& vertex : corner_vertices)
            EXPECT_EQ(verticesAt(mesh, fitted(vertex)).size(), has_face_normals ? 3u : 1u) << name;
        // A corner has a sixth of its box's volume, positive where the triangles look outwards.
        EXPECT_NEAR(volumeOf(mesh), std::pow(0.5 / std::sqrt(3.5), 3), 1e-6) << name;
    }
}

TEST(ModelImportTest, EveryFormatIsFittedIntoABallOfHalfTheUnit) {
    for (const std::string& name : corner_files) {
        for (const UpAxis up : {UpAxis::x, UpAxis::y, UpAxis::z}) {
            const Mesh mesh = importModel(data / name, up);
            const Ball ball = *boundingBall(std::span(&mesh, 1));
            EXPECT_LT(glm::length(ball.center), 1e-7) << name;
            EXPECT_NEAR(ball.radius, 0.5, 1e-7) << name;
        }
    }
}

TEST(ModelImportTest, TheUpAxisIsTurnedToZWithoutMirroring) {
    struct Row {
        UpAxis up;
        glm::dvec3 x, y, z; ///< where the model's axes lead
    };
    const std::array rows{Row{UpAxis::x, {0, 0, 1}, {1, 0, 0}, {0, 1, 0}},
                          Row{UpAxis::y, {-1, 0, 0}, {0, 0, 1}, {0, 1, 0}},
                          Row{UpAxis::z, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
    for (const Row& row : rows) {
        for (const std::string& name : corner_files) {
            const Mesh mesh = importModel(data / name, row.up);
            const auto turned = [&](const glm::dvec3& v) { return v.x * row.x + v.y * row.y + v.z * row.z; };
            for (const glm::dvec3& vertex : corner_vertices)
                EXPECT_FALSE(verticesAt(mesh, turned(fitted(vertex))).empty()) << name;
            EXPECT_GT(volumeOf(mesh), 0) << name;
            // The face across the corner looks along (1/3, 1/2, 1), and the normals of its corners, on the
            // whole, too.
            const glm::dvec3 across = turned(glm::normalize(glm::dvec3(2, 3, 6)));
            glm::dvec3 sum(0);
            for (const std::size_t vertex : verticesAt(mesh, turned(fitted({3, 0, 0}))))
                sum += glm::dvec3(mesh.normals[vertex]);
            EXPECT_GT(glm::dot(sum, turned({1, 0, 0})), 0) << name;
            EXPECT_GT(glm::dot(sum, across), -1) << name;
        }
    }
}

TEST(ModelImportTest, NormalsAreMadeSmoothWhereTheFileHasNone) {
    // At the corner three faces meet, with areas 3 (looking along -z), 1 (-x) and 1.5 (-y).
    for (const std::string name : {"corner.obj", "corner_binary.ply", "corner.gltf", "corner.3ds"}) {
        const Mesh mesh = importModel(data / name, UpAxis::z);
        const glm::dvec3 normal = mesh.normals[verticesAt(mesh, fitted({0, 0, 0})).at(0)];
        EXPECT_LT(glm::distance(normal, -glm::normalize(glm::dvec3(1, 1.5, 3))), 1e-6) << name;
    }
}

TEST(ModelImportTest, ColorsAreTheVertexsElseTheMaterialsElseWhite) {
    for (const std::string name : {"corner.obj", "corner.gltf", "corner.glb", "corner.3ds"}) {
        const Mesh mesh = importModel(data / name, UpAxis::z);
        ASSERT_EQ(mesh.colors.size(), 4u) << name;
        for (const glm::vec3& color : mesh.colors)
            EXPECT_LT(glm::distance(color, glm::vec3(0.75f, 0.5f, 0.25f)), 1e-6f) << name;
    }
    for (const std::string name : {"corner_text.ply", "corner_binary.ply"}) {
        const Mesh mesh = importModel(data / name, UpAxis::z);
        ASSERT_EQ(mesh.colors.size(), 4u) << name;
        const std::array<glm::vec3, 4> expected{glm::vec3(1, 1, 1), {1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
        for (std::size_t i = 0; i < 4; ++i)
            EXPECT_EQ(mesh.colors[verticesAt(mesh, fitted(corner_vertices[i])).at(0)], expected[i]) << name;
    }
    for (const std::string name : {"corner_text.stl", "corner_binary.stl"})
        EXPECT_TRUE(importModel(data / name, UpAxis::z).colors.empty()) << name;
}

TEST_F(ModelTextTest, PolygonsAreCutAndPointsAndLinesLeftOut) {
    const Mesh mesh = import("roof.obj", "v 0 0 0\nv 1 0 0\nv 1 1 0\nv 0 1 0\nv 90 0 0\nv 0 0 80\n"
                                         "f 1 2 3 4\nl 1 5\np 6\n");
    EXPECT_EQ(mesh.triangles.size(), 6u);
    EXPECT_EQ(mesh.positions.size(), 4u);
    EXPECT_NEAR(mesh.positions[0].x, -0.5 / std::sqrt(2), 1e-6);
    EXPECT_TRUE(mesh.colors.empty());
}

TEST_F(ModelTextTest, VerticesThatNoTriangleUsesDoNotCount) {
    const Mesh mesh = import("sail.ply", "ply\nformat ascii 1.0\nelement vertex 5\nproperty float x\n"
                                         "property float y\nproperty float z\nelement face 1\n"
                                         "property list uchar int vertex_index\nend_header\n"
                                         "7e9 0 0\n0 0 0\n2 0 0\n0 2 0\n0 nan 0\n3 1 2 3\n");
    EXPECT_EQ(mesh.positions.size(), 3u);
    EXPECT_EQ(verticesAt(mesh, glm::dvec3(1, -1, 0) * std::sqrt(0.125)).size(), 1u);
}

TEST_F(ModelTextTest, MeshesAreMergedAndMadeSmoothAcross) {
    const Mesh mesh =
        import("two.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nv 0 0 1\no floor\nf 1 2 3\no wall\nf 1 4 2\n");
    EXPECT_EQ(mesh.triangles.size(), 6u);
    const glm::vec3 shared = glm::normalize(glm::vec3(0, 1, 1));
    EXPECT_EQ(std::count_if(mesh.normals.begin(), mesh.normals.end(),
                            [&](const glm::vec3& normal) { return glm::distance(normal, shared) < 1e-6f; }),
              4);
}

TEST_F(ModelTextTest, NormalsOfTheFileAreKept) {
    const Mesh mesh = import("leaning.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nvn 0 3 4\nf 1//1 2//1 3//1\n");
    for (const glm::vec3& normal : mesh.normals)
        EXPECT_LT(glm::distance(normal, glm::vec3(0, 0.6f, 0.8f)), 1e-6f);
}

TEST_F(ModelTextTest, FacetsWithoutANormalGetOne) {
    const Mesh mesh =
        import("flat.stl", "solid flat\nfacet normal 0 0 0\nouter loop\nvertex 0 0 0\nvertex 1 0 0\n"
                           "vertex 0 1 0\nendloop\nendfacet\nendsolid flat\n");
    for (const glm::vec3& normal : mesh.normals)
        EXPECT_EQ(normal, glm::vec3(0, 0, 1));
}

TEST_F(ModelTextTest, NodesPutTheirMeshesInPlace) {
    // The corner twice: once twice as wide along x, once mirrored there and moved.
    std::string text = bytesOf(data / "corner.gltf");
    const auto replace = [&](const std::string& from, const std::string& to) {
        const std::size_t place = text.find(from);
        ASSERT_NE(place, std::string::npos) << from;
        text.replace(place, from.size(), to);
    };
    const std::size_t nodes = text.find("\"nodes\"", text.find("\"nodes\"") + 1);
    text.replace(nodes, text.find("\"meshes\"") - nodes,
                 "\"nodes\": [{\"children\": [1, 2]}, {\"mesh\": 0, \"scale\": [2, 1, 1]}, "
                 "{\"mesh\": 0, \"scale\": [-1, 1, 1], \"translation\": [0, 0, 5]}],\n");
    replace("corner.bin", "moved.bin");
    std::filesystem::copy_file(data / "corner.bin", my_folder / "moved.bin");
    const Mesh mesh = import("moved.gltf", text);

    EXPECT_EQ(mesh.triangles.size(), 24u);
    const glm::dvec3 low(-3, 0, 0), high(6, 2, 6), center = (low + high) / 2.0;
    const std::vector<glm::dvec3> expected{{0, 0, 0}, {6, 0, 0},  {0, 2, 0}, {0, 0, 1},
                                           {0, 0, 5}, {-3, 0, 5}, {0, 2, 5}, {0, 0, 6}};
    double radius = 0;
    for (const glm::dvec3& vertex : expected)
        radius = std::max(radius, glm::distance(vertex, center));
    for (const glm::dvec3& vertex : expected)
        EXPECT_EQ(verticesAt(mesh, (vertex - center) * (0.5 / radius)).size(), 1u);
    // Were the mirrored one inside out, its volume would be taken away.
    EXPECT_NEAR(volumeOf(mesh), (2.0 + 1.0) * std::pow(0.5 / radius, 3), 1e-6);
    const glm::dvec3 wide_corner =
        mesh.normals[verticesAt(mesh, (expected[0] - center) * (0.5 / radius)).at(0)];
    EXPECT_LT(glm::distance(wide_corner, -glm::normalize(glm::dvec3(1, 3, 6))), 1e-6);
    const glm::dvec3 mirrored = mesh.normals[verticesAt(mesh, (expected[4] - center) * (0.5 / radius)).at(0)];
    EXPECT_LT(glm::distance(mirrored, -glm::normalize(glm::dvec3(-1, 1.5, 3))), 1e-6);
}

TEST_F(ModelTextTest, NormalsOfTheFileStayAcrossTheirSurface) {
    // A triangle in the plane x + z = 1, which twice the width turns into x / 2 + z = 1.
    const float slope = std::sqrt(0.5f);
    const std::array<float, 18> numbers{1,     0, 0,     0,     0, 1,     0,     -1, 1, //
                                        slope, 0, slope, slope, 0, slope, slope, 0,  slope};
    std::string buffer(sizeof numbers, '\0');
    std::memcpy(buffer.data(), numbers.data(), buffer.size());
    writeBytes(my_folder / "slope.bin", buffer);
    const Mesh mesh =
        import("slope.gltf", R"({"asset": {"version": "2.0"}, "scene": 0, "scenes": [{"nodes": [0]}],
        "nodes": [{"mesh": 0, "scale": [2, 1, 1]}],
        "meshes": [{"primitives": [{"attributes": {"POSITION": 0, "NORMAL": 1}}]}],
        "accessors": [{"bufferView": 0, "componentType": 5126, "count": 3, "type": "VEC3"},
                      {"bufferView": 1, "componentType": 5126, "count": 3, "type": "VEC3"}],
        "bufferViews": [{"buffer": 0, "byteLength": 36}, {"buffer": 0, "byteOffset": 36, "byteLength": 36}],
        "buffers": [{"uri": "slope.bin", "byteLength": 72}]})");
    ASSERT_EQ(mesh.normals.size(), 3u);
    for (const glm::vec3& normal : mesh.normals)
        EXPECT_LT(glm::distance(glm::dvec3(normal), glm::normalize(glm::dvec3(0.5, 0, 1))), 1e-6);
    EXPECT_TRUE(mesh.colors.empty());
}

TEST_F(ModelTextTest, PlyMayHaveEitherByteOrderAndOtherTypes) {
    std::string text = "ply\r\nformat binary_big_endian 1.0\r\ncomment by hand\r\nelement vertex 3\r\n"
                       "property double x\r\nproperty double y\r\nproperty double z\r\nelement face 1\r\n"
                       "property list uint8 uint32 vertex_indices\r\nend_header\r\n";
    const auto append = [&](auto number) {
        std::array<char, sizeof number> bytes{};
        std::memcpy(bytes.data(), &number, sizeof number);
        std::reverse(bytes.begin(), bytes.end());
        text.append(bytes.data(), bytes.size());
    };
    for (const double component : {0.0, 0.0, 0.0, 2.0, 0.0, 0.0, 0.0, 2.0, 0.0})
        append(component);
    text += '\3';
    for (const std::uint32_t index : {0u, 1u, 2u})
        append(index);
    const Mesh mesh = import("big.ply", text);
    EXPECT_EQ(mesh.triangles.size(), 3u);
    EXPECT_EQ(verticesAt(mesh, glm::dvec3(1, -1, 0) * std::sqrt(0.125)).size(), 1u);
}

TEST_F(ModelTextTest, ExtensionsMayBeInCapitals) {
    EXPECT_EQ(import("SAIL.OBJ", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n").triangles.size(), 3u);
}

TEST(UpAxisTest, HasThreeNames) {
    EXPECT_EQ(parseUpAxis("x"), UpAxis::x);
    EXPECT_EQ(parseUpAxis("y"), UpAxis::y);
    EXPECT_EQ(parseUpAxis("z"), UpAxis::z);
    for (const std::string text : {"", "Y", "up", "xy", "-z", " z"}) {
        try {
            parseUpAxis(text);
            ADD_FAILURE() << "no error for \"" << text << '"';
        } catch (const Error& error) {
            EXPECT_EQ(error.what(), '"' + text + "\" is not an axis of a model; there are x, y and z");
        }
    }
}

} // namespace
} // namespace korl
