#include "shell/scene/vectors.hpp"

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

} // namespace
