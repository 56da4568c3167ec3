#include "shell/mesh/mesh.hpp"

#include "tests/support/error_of.hpp"

#include "shell/base/error.hpp"

#include <cmath>
#include <glm/geometric.hpp>
#include <gtest/gtest.h>
#include <limits>

namespace korl {
namespace {

constexpr float nan = std::numeric_limits<float>::quiet_NaN();
constexpr float infinity = std::numeric_limits<float>::infinity();

Mesh triangle() {
    return {"sail", {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {{0, 0, 1}, {0, 0, 1}, {0, 0, 1}}, {}, {0, 1, 2}};
}

std::string errorOf(const Mesh& mesh) {
    return korl::test::errorOf([&] { validate(mesh); });
}

void expectNear(const glm::vec3& actual, const glm::dvec3& expected) {
    EXPECT_LT(glm::distance(glm::dvec3(actual), expected), 1e-6)
        << actual.x << ' ' << actual.y << ' ' << actual.z;
}

TEST(MeshBallTest, ReachesFromTheBoxCenterToTheFarthestPosition) {
    Mesh low, high;
    low.positions = {{-1, -2, -3}, {0, 0, 0}};
    high.positions = {{3, 2, 1}, {3, -2, 1}};
    const std::vector<Mesh> meshes{low, high};
    const auto ball = boundingBall(meshes);
    ASSERT_TRUE(ball);
    EXPECT_EQ(ball->center, glm::dvec3(1, 0, -1));
    EXPECT_DOUBLE_EQ(ball->radius, std::sqrt(4.0 + 4 + 4));
}

TEST(MeshBallTest, IsSmallerThanTheBoxWhereNoCornerIsTaken) {
    Mesh mesh;
    mesh.positions = {{1, 0, 0}, {-1, 0, 0}, {0, 1, 0}, {0, -1, 0}};
    EXPECT_DOUBLE_EQ(boundingBall(std::span(&mesh, 1))->radius, 1);
}

TEST(MeshBallTest, OnePositionHasABallWithoutExtent) {
    Mesh mesh;
    mesh.positions = {{4, 5, 6}};
    const auto ball = boundingBall(std::span(&mesh, 1));
    ASSERT_TRUE(ball);
    EXPECT_EQ(ball->center, glm::dvec3(4, 5, 6));
    EXPECT_EQ(ball->radius, 0);
}

TEST(MeshBallTest, NoPositionsHaveNoBall) {
    EXPECT_FALSE(boundingBall({}));
    const std::vector<Mesh> empty_ones(2);
    EXPECT_FALSE(boundingBall(empty_ones));
}

TEST(MeshBallTest, TheLargestFloatsDoNotOverflow) {
    constexpr float largest = std::numeric_limits<float>::max();
    Mesh mesh;
    mesh.positions = {{largest, 0, 0}, {-largest, 0, 0}};
    const auto ball = boundingBall(std::span(&mesh, 1));
    EXPECT_EQ(ball->center, glm::dvec3(0));
    EXPECT_DOUBLE_EQ(ball->radius, largest);
}

TEST(MeshValidationTest, SoundMeshesPass) {
    EXPECT_EQ(errorOf(triangle()), "no error");
    EXPECT_EQ(errorOf({}), "no error");
    Mesh colored = triangle();
    colored.colors = {{0, 0, 0}, {1, 1, 1}, {0.5f, 0, 1}};
    EXPECT_EQ(errorOf(colored), "no error");
}

TEST(MeshValidationTest, EachDefectIsNamed) {
    struct Row {
        void (*damage)(Mesh&);
        std::string message;
    };
    const std::vector<Row> rows{
        {[](Mesh& mesh) { mesh.normals.pop_back(); }, "it has 3 positions, but 2 normals"},
        {[](Mesh& mesh) { mesh.normals.clear(); }, "it has 3 positions, but 0 normals"},
        {[](Mesh& mesh) { mesh.colors.resize(4); }, "it has 3 positions, but 4 colors"},
        {[](Mesh& mesh) { mesh.positions[1].y = nan; }, "position 1 is (1, nan, 0), expected finite numbers"},
        {[](Mesh& mesh) { mesh.positions[2].z = -infinity; },
         "position 2 is (0, 1, -inf), expected finite numbers"},
        {[](Mesh& mesh) {
             mesh.normals[2] = {0, 0, 1.5f};
         },
         "normal 2 is (0, 0, 1.5), expected unit length"},
        {[](Mesh& mesh) { mesh.normals[0].x = nan; }, "normal 0 is (nan, 0, 1), expected unit length"},
        {[](Mesh& mesh) {
             mesh.colors = {{1, 1, 1}, {0, 2, 0}, {1, 1, 1}};
         },
         "color 1 is (0, 2, 0), expected components from 0 to 1"},
        {[](Mesh& mesh) {
             mesh.colors = {{1, 1, 1}, {1, 1, 1}, {0, 0, -1}};
         },
         "color 2 is (0, 0, -1), expected components from 0 to 1"},
        {[](Mesh& mesh) {
             mesh.colors = {{1, 1, 1}, {1, nan, 1}, {0, 0, 0}};
         },
         "color 1 is (1, nan, 1), expected components from 0 to 1"},
        {[](Mesh& mesh) { mesh.triangles.push_back(0); }, "its 4 indices are not three for each triangle"},
        {[](Mesh& mesh) { mesh.triangles = {0, 1, 2, 2, 3, 0}; },
         "triangle 1 leads to position 3, but there are 3"},
        {[](Mesh& mesh) { mesh.triangles[2] = 4294967295u; },
         "triangle 0 leads to position 4294967295, but there are 3"},
    };
    for (const auto& [damage, message] : rows) {
        Mesh mesh = triangle();
        damage(mesh);
        EXPECT_EQ(errorOf(mesh), "the mesh \"sail\" is damaged: " + message);
    }
}

TEST(MeshNormalsTest, MissingOnesAreTheMeanByArea) {
    // Two triangles at a right angle share the edge from 0 to 1; one is three times as large as the other.
    Mesh mesh;
    mesh.positions = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 3}};
    mesh.triangles = {0, 1, 2, 0, 3, 1};
    addMissingNormals(mesh);
    expectNear(mesh.normals[0], glm::normalize(glm::dvec3(0, 3, 1)));
    expectNear(mesh.normals[1], glm::normalize(glm::dvec3(0, 3, 1)));
    expectNear(mesh.normals[2], {0, 0, 1});
    expectNear(mesh.normals[3], {0, 1, 0});
}

TEST(MeshNormalsTest, NoSeamShowsWherePositionsStandTwice) {
    Mesh mesh;
    mesh.positions = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {-0.0f, 0, 0}, {0, 0, 1}, {1, 0, 0}};
    mesh.triangles = {0, 1, 2, 3, 4, 5};
    addMissingNormals(mesh);
    EXPECT_EQ(mesh.normals[0], mesh.normals[3]);
    EXPECT_EQ(mesh.normals[1], mesh.normals[5]);
    expectNear(mesh.normals[0], glm::normalize(glm::dvec3(0, 1, 1)));
}

TEST(MeshNormalsTest, UsableOnesKeepTheirDirection) {
    Mesh mesh = triangle();
    mesh.normals = {{0, 3, 4}, {0, 0, 0}, {nan, 0, 0}};
    addMissingNormals(mesh);
    expectNear(mesh.normals[0], {0, 0.6, 0.8});
    expectNear(mesh.normals[1], {0, 0, 1});
    expectNear(mesh.normals[2], {0, 0, 1});
}

TEST(MeshNormalsTest, VeryLargeAndSmallTrianglesHaveThemToo) {
    for (const float size : {1e-38f, 1e-20f, 1e20f, 3e38f}) {
        Mesh mesh = triangle();
        for (glm::vec3& position : mesh.positions)
            position = glm::vec3(position.z, position.x, position.y) * size;
        mesh.normals.clear();
        addMissingNormals(mesh);
        for (const glm::vec3& normal : mesh.normals)
            expectNear(normal, {1, 0, 0});
    }
}

TEST(MeshNormalsTest, WithoutAreaTheyPointUp) {
    Mesh mesh;
    mesh.positions = {{1, 0, 0}, {1, 0, 0}, {2, 0, 0}, {5, 5, 5}};
    mesh.triangles = {0, 1, 2};
    addMissingNormals(mesh);
    for (const glm::vec3& normal : mesh.normals)
        EXPECT_EQ(normal, glm::vec3(0, 0, 1));
    EXPECT_EQ(errorOf(mesh), "no error");
}

} // namespace
} // namespace korl
