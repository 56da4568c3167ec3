#include "shell/mesh/mesh_arrays.hpp"

#include "shell/base/error.hpp"

#include <array>
#include <gtest/gtest.h>
#include <limits>

namespace {

using korl::Mesh;
using korl::MeshArrays;
using korl::meshFromArrays;

const std::array<glm::vec3, 3> corners{glm::vec3(0, 0, 0), {1, 0, 0}, {0, 1, 0}};
const std::array<glm::uvec3, 1> triangle{glm::uvec3(0, 1, 2)};

TEST(MeshArraysTest, CopiesTheArraysAndMakesNormals) {
    const Mesh mesh = meshFromArrays("corner", {corners, triangle, {}, {}});
    EXPECT_EQ(mesh.name, "corner");
    EXPECT_EQ(mesh.positions, std::vector<glm::vec3>(corners.begin(), corners.end()));
    EXPECT_EQ(mesh.triangles, (std::vector<std::uint32_t>{0, 1, 2}));
    EXPECT_EQ(mesh.normals, std::vector<glm::vec3>(3, glm::vec3(0, 0, 1)));
    EXPECT_TRUE(mesh.colors.empty());
    const std::array<glm::uvec3, 1> other_side{glm::uvec3(0, 2, 1)};
    EXPECT_EQ(meshFromArrays("", {corners, other_side, {}, {}}).normals[1], glm::vec3(0, 0, -1));
}

TEST(MeshArraysTest, BringsNormalsToUnitLength) {
    const std::array<glm::vec3, 3> normals{glm::vec3(0, 0, 5), {0, 1e-30f, 0}, {3e38f, 0, 0}};
    EXPECT_EQ(meshFromArrays("", {corners, triangle, normals, {}}).normals,
              (std::vector<glm::vec3>{{0, 0, 1}, {0, 1, 0}, {1, 0, 0}}));
}

TEST(MeshArraysTest, LeavesNormalsOfUnitLengthToTheBit) {
    const std::array<glm::vec3, 3> normals{
        glm::vec3(0.6f, 0.8f, 0), {0, 0, 1.0005f}, {0.57735f, 0.57735f, 0.57735f}};
    EXPECT_EQ(meshFromArrays("", {corners, triangle, normals, {}}).normals,
              std::vector<glm::vec3>(normals.begin(), normals.end()));
}

TEST(MeshArraysTest, MayHaveNoTriangles) {
    EXPECT_TRUE(meshFromArrays("points", {corners, {}, {}, {}}).triangles.empty());
    EXPECT_TRUE(meshFromArrays("nothing", {}).positions.empty());
}

TEST(MeshArraysTest, RefusesWhatMakesNoMesh) {
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const std::array<glm::uvec3, 1> beyond{glm::uvec3(0, 1, 3)};
    const std::array<glm::vec3, 3> zero{}, broken{glm::vec3(nan), glm::vec3(nan), glm::vec3(nan)};
    const std::array<glm::vec3, 3> bright{glm::vec3(2), glm::vec3(2), glm::vec3(2)};
    const std::span<const glm::vec3> two(corners.data(), 2);
    for (const MeshArrays& arrays : std::initializer_list<MeshArrays>{{{}, triangle, {}, {}},
                                                                      {corners, beyond, {}, {}},
                                                                      {broken, triangle, {}, {}},
                                                                      {corners, triangle, zero, {}},
                                                                      {corners, triangle, broken, {}},
                                                                      {corners, triangle, two, {}},
                                                                      {corners, triangle, {}, two},
                                                                      {corners, triangle, {}, bright}})
        EXPECT_THROW(meshFromArrays("bad", arrays), korl::InvalidValue);
}

} // namespace
