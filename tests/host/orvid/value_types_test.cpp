#include <orvid/coordinates.hpp>
#include <orvid/fixed_array.hpp>
#include <orvid/physical_space.hpp>
#include <orvid/quadratic.hpp>
#include <orvid/rgba_float.hpp>

#include <gtest/gtest.h>
#include <type_traits>
#include <utility>

namespace {

using Orvid::Ball;
using Orvid::FixedArray;
using Orvid::PhysicalSpace;
using Orvid::Quadratic;
using Orvid::rgba_float_t;
using FloatSpace = Orvid::Coordinates<Orvid::Cartesian3D, float>;

/// Expects that a value equals its copy, but none that differs from it in one of its components alone.
template <class Value, class... Members>
void expectEachComponentCounts(const Value& value, Members... members) {
    int component = 0;
    const auto expectToCount = [&](auto member) {
        Value other = value;
        EXPECT_TRUE(other == value);
        other.*member += 1;
        EXPECT_FALSE(other == value) << "component " << component;
        ++component;
    };
    (expectToCount(members), ...);
}

/// The same for values that hold their components in an array.
template <class Value>
void expectEachElementCounts(const Value& value) {
    for (std::size_t i = 0; i < value.components.size(); ++i) {
        Value other = value;
        EXPECT_TRUE(other == value);
        other.components[i] += 1;
        EXPECT_FALSE(other == value) << "component " << i;
    }
}

template <class Triple>
class Triples : public testing::Test {};
using TripleTypes =
    testing::Types<PhysicalSpace::point, PhysicalSpace::vector, FloatSpace::point, FloatSpace::vector>;
TYPED_TEST_SUITE(Triples, TripleTypes);

TYPED_TEST(Triples, StartAsZeroAndCompareEachComponent) {
    const TypeParam zero;
    EXPECT_TRUE(zero.x == 0 && zero.y == 0 && zero.z == 0);
    expectEachComponentCounts(TypeParam{1, 20, 300}, &TypeParam::x, &TypeParam::y, &TypeParam::z);
}

template <class Space>
class Spaces : public testing::Test {};
using SpaceTypes = testing::Types<PhysicalSpace, FloatSpace>;
TYPED_TEST_SUITE(Spaces, SpaceTypes);

TYPED_TEST(Spaces, DifferenceOfPointsIsTheVectorFromOneToTheOther) {
    const typename TypeParam::point from{1, 20, 300}, to{5, 28, 316};
    const auto way = to - from;
    static_assert(std::is_same_v<decltype(way), const typename TypeParam::vector>);
    EXPECT_EQ(way, (typename TypeParam::vector{4, 8, 16}));
    EXPECT_EQ(from - to, (typename TypeParam::vector{-4, -8, -16}));
    EXPECT_EQ(from + way, to);
}

TEST(Coordinates, PointAndVectorAreTypesOfTheirOwn) {
    static_assert(!std::is_convertible_v<PhysicalSpace::point, PhysicalSpace::vector>);
    static_assert(std::is_same_v<decltype(PhysicalSpace::point::x), double>);
    static_assert(std::is_same_v<decltype(FloatSpace::point::x), float>);
    EXPECT_EQ(sizeof(PhysicalSpace::point), 3 * sizeof(double));
}

TEST(Ball, StartsAsAPointAndComparesBothParts) {
    EXPECT_EQ(Ball().radius, 0);
    EXPECT_EQ(Ball().center, (PhysicalSpace::point{0, 0, 0}));
    const Ball ball{{1, 20, 300}, 4};
    expectEachComponentCounts(ball, &Ball::radius);
    EXPECT_FALSE((ball == Ball{{1, 21, 300}, 4}));
}

TEST(FixedArray, HoldsItsComponentsInOrder) {
    FixedArray<float, 4> color{1, 20, 300, 4000};
    EXPECT_EQ(color.size(), 4u);
    EXPECT_EQ((FixedArray<int, 2>::size()), 2u);
    const float expected[] = {1, 20, 300, 4000};
    for (std::size_t i = 0; i < color.size(); ++i) {
        EXPECT_EQ(color[i], expected[i]);
        EXPECT_EQ(std::as_const(color)[i], expected[i]);
        EXPECT_EQ(color.data()[i], expected[i]);
    }
    color[1] = 9;
    color[3] = 7;
    EXPECT_EQ(color, (FixedArray<float, 4>{1, 9, 300, 7}));
    expectEachElementCounts(color);
    EXPECT_EQ((FixedArray<int, 3>()), (FixedArray<int, 3>{0, 0, 0}));
}

template <class Matrix>
constexpr std::size_t rows_of = 0;
template <std::size_t N, class T>
constexpr std::size_t rows_of<Quadratic<N, T>> = N;

template <class Matrix>
class Matrices : public testing::Test {};
using MatrixTypes = testing::Types<Quadratic<2, float>, Quadratic<3, float>, Quadratic<4, float>>;
TYPED_TEST_SUITE(Matrices, MatrixTypes);

TYPED_TEST(Matrices, AreStoredColumnByColumn) {
    TypeParam matrix;
    const std::size_t rows = rows_of<TypeParam>;
    for (const float component : matrix.components)
        EXPECT_EQ(component, 0);
    for (std::size_t row = 0; row < rows; ++row)
        for (std::size_t column = 0; column < rows; ++column)
            matrix(row, column) = static_cast<float>(10 * row + column);
    const float* stored = matrix.data();
    for (std::size_t column = 0; column < rows; ++column)
        for (std::size_t row = 0; row < rows; ++row, ++stored) {
            EXPECT_EQ(*stored, static_cast<float>(10 * row + column));
            EXPECT_EQ(std::as_const(matrix)(row, column), *stored);
        }
    EXPECT_EQ(sizeof(TypeParam), rows * rows * sizeof(float));
    expectEachElementCounts(matrix);
}

TEST(Color, IsFourFloatsThatStartAsZero) {
    EXPECT_EQ(sizeof(rgba_float_t), 4 * sizeof(float));
    const rgba_float_t none;
    EXPECT_TRUE(none.r == 0 && none.g == 0 && none.b == 0 && none.a == 0);
    expectEachComponentCounts(rgba_float_t{1, 20, 300, 4000}, &rgba_float_t::r, &rgba_float_t::g,
                              &rgba_float_t::b, &rgba_float_t::a);
}

} // namespace
