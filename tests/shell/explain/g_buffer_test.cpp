#include "shell/explain/g_buffer.hpp"

#include "tests/support/gl_test.hpp"

#include <glm/ext/matrix_clip_space.hpp>
#include <glm/ext/matrix_transform.hpp>

namespace {

using korl::GBuffer;
using korl::Mesh;
using korl::SurfacePoint;
using korl::Viewpoint;

/// A square of side 2 around a point, which faces upwards.
std::shared_ptr<const Mesh> square(const glm::vec3& center, const glm::vec3& color) {
    Mesh mesh;
    for (const glm::vec3 corner : {glm::vec3(-1, -1, 0), {1, -1, 0}, {1, 1, 0}, {-1, 1, 0}})
        mesh.positions.push_back(center + corner);
    mesh.normals.assign(4, {0, 0, 1});
    mesh.colors.assign(4, color);
    mesh.triangles = {0, 1, 2, 0, 2, 3};
    return std::make_shared<const Mesh>(std::move(mesh));
}

/// Looks straight down on the square from (-2, -2) to (2, 2), y up in the picture.
const Viewpoint from_above{glm::lookAt(glm::vec3(0, 0, 5), glm::vec3(0), glm::vec3(0, 1, 0)),
                           glm::ortho(-2.0f, 2.0f, -2.0f, 2.0f, 1.0f, 10.0f),
                           {0, 0, 5}};

class GBufferGLTest : public korl::test::GLTest {
protected:
    const std::vector<std::shared_ptr<const Mesh>> meshes{square({0, 0, 0}, {1, 0, 0}),
                                                          square({1, 1, 1}, {0, 0.5f, 0})};
    const GBuffer map = [this] {
        context().makeCurrent();
        return GBuffer(meshes, from_above, 8, 8); // two pixels for a unit
    }();
};

TEST_F(GBufferGLTest, FindsTheNearestSurfaceAtThePixelsCentre) {
    const auto lower = map.at(2, 5); // x from -1 to -0.5, y from -1 to -0.5
    ASSERT_TRUE(lower);
    EXPECT_NEAR(lower->position.x, -0.75, 1e-5);
    EXPECT_NEAR(lower->position.y, -0.75, 1e-5);
    EXPECT_NEAR(lower->position.z, 0, 1e-5);
    EXPECT_EQ(lower->normal, glm::vec3(0, 0, 1));
    EXPECT_EQ(lower->color, glm::vec3(1, 0, 0));
    EXPECT_EQ(lower->mesh, 0u);
    const auto upper = map.at(4, 3); // where the other square lies over it
    ASSERT_TRUE(upper);
    EXPECT_NEAR(upper->position.z, 1, 1e-5);
    EXPECT_EQ(upper->color, glm::vec3(0, 0.5f, 0));
    EXPECT_EQ(upper->mesh, 1u);
}

TEST_F(GBufferGLTest, FindsNothingBesideTheMeshes) {
    EXPECT_FALSE(map.at(0, 7));
    EXPECT_EQ(map.covered(), 16u + 16u - 4u);
}

TEST_F(GBufferGLTest, SpreadsPlacesOverAllThatIsSeen) {
    EXPECT_EQ(map.spread(1000).size(), 28u);
    const std::vector<SurfacePoint> few = map.spread(10);
    EXPECT_EQ(few.size(), 10u);
    EXPECT_EQ(few.front().mesh, 1u); // from the top
    EXPECT_EQ(few.back().mesh, 0u);
}

TEST_F(GBufferGLTest, OfNoMeshesIsEmpty) {
    const GBuffer empty({}, from_above, 4, 3);
    EXPECT_EQ(empty.covered(), 0u);
    EXPECT_TRUE(empty.spread(10).empty());
}

} // namespace
