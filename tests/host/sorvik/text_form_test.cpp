#include <orvid/physical_space.hpp>
#include <orvid/rgba_float.hpp>
#include <palune/geometry_traits.hpp>
#include <sorvik/component_text.hpp>
#include <sorvik/value_trait.hpp>

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <string>
#include <utility>

namespace {

using Orvid::PhysicalSpace;
using Orvid::rgba_float_t;
using Qelt::VValueTrait;

TEST(DoubleText, IsTheShortestThatReadsBack) {
    EXPECT_EQ(VValueTrait<double>::Text(0.1), "0.1");
    EXPECT_EQ(VValueTrait<double>::Text(-0.0), "-0");
    EXPECT_EQ(VValueTrait<double>::Text(1e300), "1e+300");
    EXPECT_EQ(VValueTrait<double>::Text(5e-324), "5e-324");
    EXPECT_EQ(VValueTrait<double>::Text(52), "52");
}

TEST(DoubleText, RoundTripsRandomBits) {
    std::mt19937_64 random(1);
    for (int i = 0; i < 100000; ++i) {
        const auto bits = random();
        const double value = std::bit_cast<double>(bits);
        if (value != value)
            continue;
        const std::string text = VValueTrait<double>::Text(value);
        double read = 0;
        ASSERT_TRUE(VValueTrait<double>::setValueFromText(read, text)) << text;
        ASSERT_EQ(std::bit_cast<std::uint64_t>(read), bits) << text;
        ASSERT_EQ(std::strtod(text.c_str(), nullptr), value) << text; // a second reader agrees
    }
}

TEST(DoubleText, InfinitiesAndNotANumberRoundTrip) {
    for (const char* const text : {"inf", "-inf", "nan"}) {
        double read = 0;
        ASSERT_TRUE(VValueTrait<double>::setValueFromText(read, text));
        EXPECT_EQ(VValueTrait<double>::Text(read), text);
    }
}

TEST(DoubleText, MayBeginWithAPlusSign) {
    for (const auto& [text, number] : {std::pair<const char*, double>{"+20", 20},
                                       {"+.5", 0.5},
                                       {" +1e+3 ", 1000},
                                       {"+0", 0},
                                       {"+inf", std::numeric_limits<double>::infinity()}}) {
        double value = 42;
        EXPECT_TRUE(VValueTrait<double>::setValueFromText(value, text)) << text;
        EXPECT_EQ(value, number) << text;
        EXPECT_FALSE(std::signbit(value)) << text;
    }
}

TEST(ComponentText, MayBeginWithPlusSigns) {
    rgba_float_t color;
    EXPECT_TRUE(VValueTrait<rgba_float_t>::setValueFromText(color, "+0.2 +0.4 0.8 +0.3"));
    EXPECT_EQ(color, (rgba_float_t{0.2f, 0.4f, 0.8f, 0.3f}));
    PhysicalSpace::point point;
    EXPECT_TRUE(VValueTrait<PhysicalSpace::point>::setValueFromText(point, "+1 -2 +3"));
    EXPECT_EQ(point, (PhysicalSpace::point{1, -2, 3}));
    PhysicalSpace::vector vector;
    EXPECT_TRUE(VValueTrait<PhysicalSpace::vector>::setValueFromText(vector, "0 +0.5 +1"));
    EXPECT_EQ(vector, (PhysicalSpace::vector{0, 0.5, 1}));
}

TEST(DoubleText, MalformedTextIsRefusedAndChangesNothing) {
    for (const char* const text : {"", " ", "x", "1x", "1 2", "1,5", "--1", "++1", "+-1", "-+1", "+", "+ 1",
                                   "1+", "0x10", "1e", "1e400", "1e-400", "1 x"}) {
        double value = 42;
        EXPECT_FALSE(VValueTrait<double>::setValueFromText(value, text)) << text;
        EXPECT_EQ(value, 42) << text;
    }
}

TEST(ColorText, ComponentsAreSeparatedByOneBlank) {
    EXPECT_EQ(VValueTrait<rgba_float_t>::Text({0.7f, 0.6f, 0.5f, 0.9f}), "0.7 0.6 0.5 0.9");
    rgba_float_t color;
    ASSERT_TRUE(VValueTrait<rgba_float_t>::setValueFromText(color, "0.2 0.4 0.8 0.3"));
    EXPECT_EQ(color, (rgba_float_t{0.2f, 0.4f, 0.8f, 0.3f}));
    ASSERT_TRUE(VValueTrait<rgba_float_t>::setValueFromText(color, "  1\t2 \n3\r\n0.5 "));
    EXPECT_EQ(color, (rgba_float_t{1, 2, 3, 0.5f}));
}

TEST(ComponentText, SeparatesAnyNumberOfComponents) {
    EXPECT_EQ(Qelt::componentsToText(std::array<double, 0>{}), "");
    EXPECT_EQ(Qelt::componentsToText(std::array<double, 1>{0.1}), "0.1");
    EXPECT_EQ(Qelt::componentsToText(std::array<float, 6>{0.1f, 2, -3, 4e20f, 5, 6}), "0.1 2 -3 4e+20 5 6");
}

TEST(ComponentText, EachBlankSeparates) {
    for (const char* const text : {"1 2", "1\t2", "1\n2", "1\r2", "\r1\n2\t", "\t1 2\r", "\n1  2\n"}) {
        std::array<double, 2> read{};
        EXPECT_TRUE(Qelt::componentsFromText(read, text)) << text;
        EXPECT_EQ(read, (std::array<double, 2>{1, 2})) << text;
    }
    std::array<double, 2> read{7, 8};
    EXPECT_FALSE(Qelt::componentsFromText(read, "1\v2"));
}

TEST(ComponentText, ReadsUpToFourComponents) {
    std::array<double, 0> none{};
    EXPECT_TRUE(Qelt::componentsFromText(none, " "));
    EXPECT_FALSE(Qelt::componentsFromText(none, "1"));
    std::array<double, 4> four{};
    EXPECT_TRUE(Qelt::componentsFromText(four, "1 2 3 4"));
    EXPECT_EQ(four, (std::array<double, 4>{1, 2, 3, 4}));
    std::array<double, 5> five{1, 2, 3, 4, 5};
    EXPECT_FALSE(Qelt::componentsFromText(five, "6 7 8 9 10"));
    EXPECT_EQ(five, (std::array<double, 5>{1, 2, 3, 4, 5}));
    std::array<float, 5> floats{1, 2, 3, 4, 5};
    EXPECT_FALSE(Qelt::componentsFromText(floats, "6 7 8 9 10"));
    EXPECT_EQ(floats, (std::array<float, 5>{1, 2, 3, 4, 5}));
}

TEST(ComponentText, WhatIsRefusedChangesNoComponent) {
    for (const char* const text :
         {"6", "6 7", "6 7 8 9", "6 7 x", "6 7 1e999", "6 7 8x", "6 7 8 x", "x 7 8"}) {
        std::array<double, 3> kept{1, 2, 3};
        EXPECT_FALSE(Qelt::componentsFromText(kept, text)) << text;
        EXPECT_EQ(kept, (std::array<double, 3>{1, 2, 3})) << text;
    }
}

TEST(ColorText, RoundTripsRandomBits) {
    std::mt19937 random(2);
    const auto next = [&] {
        float value;
        do
            value = std::bit_cast<float>(static_cast<std::uint32_t>(random()));
        while (value != value);
        return value;
    };
    for (int i = 0; i < 20000; ++i) {
        const rgba_float_t color{next(), next(), next(), next()};
        const std::string text = VValueTrait<rgba_float_t>::Text(color);
        rgba_float_t read;
        ASSERT_TRUE(VValueTrait<rgba_float_t>::setValueFromText(read, text)) << text;
        ASSERT_EQ((std::bit_cast<std::array<std::uint32_t, 4>>(read)),
                  (std::bit_cast<std::array<std::uint32_t, 4>>(color)))
            << text;
    }
}

TEST(ColorText, MalformedTextIsRefusedAndChangesNothing) {
    for (const char* const text :
         {"", "1", "1 1 1", "1 1 1 1 1", "1 1 1 red", "1e39 0 0 1", "#ffffff", "1,1,1,1"}) {
        rgba_float_t color{1, 2, 3, 4};
        EXPECT_FALSE(VValueTrait<rgba_float_t>::setValueFromText(color, text)) << text;
        EXPECT_EQ(color, (rgba_float_t{1, 2, 3, 4})) << text;
    }
}

template <class Triple>
class TripleText : public testing::Test {};
using Triples = testing::Types<PhysicalSpace::point, PhysicalSpace::vector>;
TYPED_TEST_SUITE(TripleText, Triples);

TYPED_TEST(TripleText, RoundTrips) {
    const TypeParam value{-0.0, 1e-300, 5e-324};
    EXPECT_EQ(VValueTrait<TypeParam>::Text(value), "-0 1e-300 5e-324");
    TypeParam read{7, 7, 7};
    ASSERT_TRUE(VValueTrait<TypeParam>::setValueFromText(read, "-0 1e-300 5e-324"));
    EXPECT_EQ(read, value);
    EXPECT_TRUE(std::signbit(read.x));
}

TYPED_TEST(TripleText, IsXThenYThenZ) {
    EXPECT_EQ(VValueTrait<TypeParam>::Text({1.5, -20, 300}), "1.5 -20 300");
    TypeParam read;
    ASSERT_TRUE(VValueTrait<TypeParam>::setValueFromText(read, "1.5 -20 300"));
    EXPECT_EQ(read, (TypeParam{1.5, -20, 300}));
}

TYPED_TEST(TripleText, MalformedTextIsRefusedAndChangesNothing) {
    for (const char* const text : {"", "1 2", "1 2 3 4", "1 2 z", "1e999 0 0", "(1 2 3)"}) {
        TypeParam value{1, 2, 3};
        EXPECT_FALSE(VValueTrait<TypeParam>::setValueFromText(value, text)) << text;
        EXPECT_EQ(value, (TypeParam{1, 2, 3})) << text;
    }
}

} // namespace
