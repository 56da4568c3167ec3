#include <orvid/coordinates.hpp>
#include <orvid/fixed_array.hpp>
#include <orvid/physical_space.hpp>
#include <orvid/quadratic.hpp>
#include <orvid/rgba_float.hpp>

#include <gtest/gtest.h>
#include <type_traits>

namespace {

using Orvid::PhysicalSpace;

TEST(Coordinates, DifferenceOfPointsIsVector) {
    const PhysicalSpace::point from{1, 2, 3}, to{4, 6, 8};
    const auto way = to - from;
    static_assert(std::is_same_v<decltype(way), const PhysicalSpace::vector>);
    EXPECT_EQ(way, (PhysicalSpace::vector{3, 4, 5}));
    EXPECT_EQ(from + way, to);
}

TEST(Coordinates, PointAndVectorAreTypesOfTheirOwn) {
    static_assert(!std::is_convertible_v<PhysicalSpace::point, PhysicalSpace::vector>);
    static_assert(std::is_same_v<decltype(PhysicalSpace::point::x), double>);
    static_assert(std::is_same_v<decltype(Orvid::Coordinates<Orvid::Cartesian3D, float>::point::x), float>);
    EXPECT_EQ(sizeof(PhysicalSpace::point), 3 * sizeof(double));
}

TEST(FixedArray, HoldsItsComponentsInOrder) {
    Orvid::FixedArray<float, 4> color{0.1f, 0.2f, 0.3f, 0.4f};
    EXPECT_EQ(color.size(), 4u);
    EXPECT_EQ(color.data()[3], 0.4f);
    color[1] = 9;
    EXPECT_EQ(color, (Orvid::FixedArray<float, 4>{0.1f, 9.0f, 0.3f, 0.4f}));
}

TEST(Quadratic, IsStoredColumnByColumn) {
    Orvid::Quadratic<2, float> matrix;
    matrix(0, 1) = 7; // first row, second column
    EXPECT_EQ(matrix.data()[2], 7);
    EXPECT_EQ(sizeof(Orvid::Quadratic<3, float>), 9 * sizeof(float));
}

TEST(Color, IsFourFloats) {
    EXPECT_EQ(sizeof(Orvid::rgba_float_t), 4 * sizeof(float));
    EXPECT_EQ(Orvid::rgba_float_t(), (Orvid::rgba_float_t{0, 0, 0, 0}));
}

} // namespace
