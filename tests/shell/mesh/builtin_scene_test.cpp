#include "shell/mesh/builtin_scene.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <glm/geometric.hpp>
#include <gtest/gtest.h>
#include <map>

namespace korl {
namespace {

const Mesh& meshOf(const std::vector<Mesh>& meshes, const std::string& name) {
    return *std::find_if(meshes.begin(), meshes.end(), [&](const Mesh& mesh) { return mesh.name == name; });
}

template <class Visit>
void forEachTriangle(const Mesh& mesh, Visit visit) {
    for (std::size_t i = 0; i < mesh.triangles.size(); i += 3)
        visit(mesh.triangles[i], mesh.triangles[i + 1], mesh.triangles[i + 2]);
}

/// A place on a grid so fine that different vertices differ, and so coarse that rounding doesn't show.
using Place = std::array<long, 3>;
Place placeOf(const glm::vec3& position) {
    return {std::lround(position.x * 1e5), std::lround(position.y * 1e5), std::lround(position.z * 1e5)};
}

TEST(BuiltinSceneTest, HasALandscapeAColumnAndASphere) {
    const std::vector<Mesh> meshes = builtinScene();
    std::vector<std::string> names;
    std::size_t triangle_count = 0;
    for (const Mesh& mesh : meshes) {
        EXPECT_NO_THROW(validate(mesh)) << mesh.name;
        names.push_back(mesh.name);
        triangle_count += mesh.triangles.size() / 3;
    }
    EXPECT_EQ(names, (std::vector<std::string>{"landscape", "column", "sphere"}));
    EXPECT_LT(triangle_count, 40000u);
    EXPECT_GT(triangle_count, 20000u);
}

TEST(BuiltinSceneTest, IsAlwaysTheSame) {
    const std::vector<Mesh> once = builtinScene(), again = builtinScene();
    for (std::size_t i = 0; i < once.size(); ++i) {
        EXPECT_EQ(once[i].positions, again[i].positions);
        EXPECT_EQ(once[i].normals, again[i].normals);
        EXPECT_EQ(once[i].colors, again[i].colors);
        EXPECT_EQ(once[i].triangles, again[i].triangles);
    }
}

TEST(BuiltinSceneTest, FillsTheReachOfTheLightsAndNoMore) {
    double farthest = 0;
    for (const Mesh& mesh : builtinScene())
        for (const glm::vec3& position : mesh.positions)
            farthest = std::max(farthest, static_cast<double>(glm::length(position)));
    EXPECT_LE(farthest, 0.6);
    EXPECT_GE(farthest, 0.5);
}

TEST(BuiltinSceneTest, NormalsAgreeWithTheWinding) {
    for (const Mesh& mesh : builtinScene()) {
        double smallest = 1;
        forEachTriangle(mesh, [&](std::uint32_t a, std::uint32_t b, std::uint32_t c) {
            const glm::dvec3 first = mesh.positions[a];
            const glm::dvec3 across =
                glm::cross(glm::dvec3(mesh.positions[b]) - first, glm::dvec3(mesh.positions[c]) - first);
            ASSERT_GT(glm::length(across), 0) << "a triangle without area in the " << mesh.name;
            for (const std::uint32_t corner : {a, b, c})
                smallest =
                    std::min(smallest, glm::dot(glm::normalize(across), glm::dvec3(mesh.normals[corner])));
        });
        EXPECT_GT(smallest, 0.95) << mesh.name;
    }
}

TEST(BuiltinSceneTest, SurfacesAreClosed) {
    for (const Mesh& mesh : builtinScene()) {
        std::map<std::pair<Place, Place>, int> edges;
        forEachTriangle(mesh, [&](std::uint32_t a, std::uint32_t b, std::uint32_t c) {
            const std::array corners{placeOf(mesh.positions[a]), placeOf(mesh.positions[b]),
                                     placeOf(mesh.positions[c])};
            for (std::size_t i = 0; i < 3; ++i)
                ++edges[{corners[i], corners[(i + 1) % 3]}];
        });
        std::size_t open_edges = 0;
        for (const auto& [edge, count] : edges) {
            const auto opposite = edges.find({edge.second, edge.first});
            if (count != 1 || opposite == edges.end())
                ++open_edges;
        }
        EXPECT_EQ(open_edges, 0u) << mesh.name;
    }
}

TEST(BuiltinSceneTest, SurfacesLookOutwards) {
    // The signed volume of a closed surface is positive where it is counter-clockwise from outside.
    for (const Mesh& mesh : builtinScene()) {
        double volume = 0;
        forEachTriangle(mesh, [&](std::uint32_t a, std::uint32_t b, std::uint32_t c) {
            volume += glm::dot(glm::dvec3(mesh.positions[a]),
                               glm::cross(glm::dvec3(mesh.positions[b]), glm::dvec3(mesh.positions[c]))) /
                      6;
        });
        EXPECT_GT(volume, 0.001) << mesh.name;
        if (mesh.name == "sphere") {
            const double radius = boundingBall(std::span(&mesh, 1))->radius;
            EXPECT_NEAR(volume, 4.18879 * radius * radius * radius, 0.005 * volume);
        }
    }
}

TEST(BuiltinSceneTest, TheSphereIsRoundWhiteAndFree) {
    const std::vector<Mesh> meshes = builtinScene();
    const Mesh& sphere = meshOf(meshes, "sphere");
    EXPECT_TRUE(sphere.colors.empty());
    const Ball ball = *boundingBall(std::span(&sphere, 1));
    for (std::size_t i = 0; i < sphere.positions.size(); ++i) {
        const glm::dvec3 outward = glm::dvec3(sphere.positions[i]) - ball.center;
        ASSERT_NEAR(glm::length(outward), ball.radius, 1e-6);
        ASSERT_GT(glm::dot(outward / ball.radius, glm::dvec3(sphere.normals[i])), 0.99999);
    }
    for (const std::string name : {"landscape", "column"})
        for (const glm::vec3& position : meshOf(meshes, name).positions)
            ASSERT_GT(glm::distance(glm::dvec3(position), ball.center), ball.radius + 0.03) << name;
}

TEST(BuiltinSceneTest, TheColumnStandsOnTheLand) {
    const std::vector<Mesh> meshes = builtinScene();
    const Mesh& column = meshOf(meshes, "column");
    const Ball ball = *boundingBall(std::span(&column, 1));
    const auto [low, high] =
        std::minmax_element(column.positions.begin(), column.positions.end(),
                            [](const glm::vec3& a, const glm::vec3& b) { return a.z < b.z; });
    EXPECT_GT(high->z, 0.3f);
    double widest = 0;
    for (const glm::vec3& position : column.positions)
        widest = std::max(widest, std::hypot(position.x - ball.center.x, position.y - ball.center.y));
    int vertices_at_foot = 0;
    for (const glm::vec3& position : meshOf(meshes, "landscape").positions) {
        if (std::hypot(position.x - ball.center.x, position.y - ball.center.y) > widest + 0.02 ||
            position.z < -0.3)
            continue;
        ++vertices_at_foot;
        EXPECT_GT(position.z, low->z) << "a gap below the column";
        EXPECT_LT(position.z, low->z + 0.045) << "the land covers the foot";
    }
    EXPECT_GT(vertices_at_foot, 20);
}

TEST(BuiltinSceneTest, TheLandHasHillsAndGreenColors) {
    const std::vector<Mesh> meshes = builtinScene();
    const Mesh& land = meshOf(meshes, "landscape");
    float lowest = 1, highest = -1;
    for (std::size_t i = 0; i < land.positions.size(); ++i) {
        if (land.normals[i].z < 0.5f)
            continue; // the rim and the underside
        lowest = std::min(lowest, land.positions[i].z);
        highest = std::max(highest, land.positions[i].z);
        ASSERT_GT(land.normals[i].z, 0.8f) << "steeper than gentle";
        ASSERT_GT(land.colors[i].g, land.colors[i].b);
    }
    EXPECT_GT(highest - lowest, 0.05f);
    EXPECT_LT(highest - lowest, 0.15f);
}

} // namespace
} // namespace korl
