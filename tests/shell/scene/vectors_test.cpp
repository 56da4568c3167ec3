#include "shell/scene/vectors.hpp"

#include <glm/geometric.hpp>
#include <gtest/gtest.h>
#include <limits>

namespace {

TEST(VectorsTest, TextIsTheShortestThatReadsBackInTheVectorsOwnPrecision) {
    EXPECT_EQ(korl::componentsText(glm::vec3(0.1f, -3, 4e20f)), "0.1 -3 4e+20");
    EXPECT_EQ(korl::componentsText(glm::dvec3(0.1f, -3, 0.1)), "0.10000000149011612 -3 0.1");
}

TEST(VectorsTest, IsFiniteWhereEachComponentIs) {
    constexpr double infinity = std::numeric_limits<double>::infinity();
    EXPECT_TRUE(korl::isFinite(glm::dvec3(0, -1e308, 1)));
    EXPECT_FALSE(korl::isFinite(glm::dvec3(infinity, 0, 0)));
    EXPECT_FALSE(korl::isFinite(glm::vec3(0, -infinity, 0)));
    EXPECT_FALSE(korl::isFinite(glm::dvec3(0, 0, std::numeric_limits<double>::quiet_NaN())));
}

TEST(VectorsTest, DirectionIsOfUnitLengthWhereSquaresLeaveTheRange) {
    for (const double size : {5e-324, 1e-200, 1.0, 1e308})
        EXPECT_EQ(korl::directionOf(glm::dvec3(0, -size, 0)), glm::dvec3(0, -1, 0)) << size;
    for (const float size : {1e-45f, 1e-30f, 1.0f, 1e38f})
        EXPECT_EQ(korl::directionOf(glm::vec3(size, 0, 0)), glm::vec3(1, 0, 0)) << size;
    EXPECT_LT(glm::distance(korl::directionOf(glm::dvec3(-3e300, 0, 4e300)), {-0.6, 0, 0.8}), 1e-15);
    EXPECT_EQ(korl::directionOf(glm::vec3(0)), glm::vec3(0));
}

} // namespace
