#include "shell/catalogue/parameter_value.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <orvid/physical_space.hpp>
#include <orvid/rgba_float.hpp>
#include <palune/geometry_traits.hpp>
#include <string>

namespace {

using Orvid::PhysicalSpace;
using Orvid::rgba_float_t;
using Qelt::VValue;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(ParameterValueTest, HasKindFormAndCount) {
    struct Row {
        const std::type_info& type;
        std::string kind, form;
        std::size_t count;
    };
    const Row rows[]{
        {typeid(double), "double", "a double, one number", 1},
        {typeid(rgba_float_t), "color", "a colour, four numbers \"red green blue alpha\"", 4},
        {typeid(PhysicalSpace::point), "point", "a point, three numbers \"x y z\"", 3},
        {typeid(PhysicalSpace::vector), "vector", "a vector, three numbers \"x y z\"", 3},
        {typeid(int), "int", "a value of type int", 0},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(korl::valueKind(row.type), row.kind);
        EXPECT_EQ(korl::valueForm(row.type), row.form);
        EXPECT_EQ(korl::numberCount(row.type), row.count);
    }
}

TEST(ParameterValueTest, NumbersAreThoseThatAreWritten) {
    EXPECT_THAT(korl::numbersOf(VValue<double>(0.1)), ElementsAre(0.1));
    EXPECT_THAT(korl::numbersOf(VValue<rgba_float_t>({0.7f, 0.1f, 1e-45f, 1})),
                ElementsAre(0.7, 0.1, 1e-45, 1.0));
    EXPECT_THAT(korl::numbersOf(VValue<PhysicalSpace::point>({1, 2, 3})), ElementsAre(1, 2, 3));
    EXPECT_THAT(korl::numbersOf(VValue<PhysicalSpace::vector>({4, 5, 6})), ElementsAre(4, 5, 6));
    EXPECT_THAT(korl::numbersOf(VValue<std::string>("1 2 3")), IsEmpty());
}

TEST(ParameterValueTest, IsMadeFromItsNumbers) {
    const std::vector<double> numbers{0.25, -2, 3e7, 0.7};
    const auto textOf = [&](const std::type_info& type, std::size_t count) {
        const auto value = korl::makeValue(type, std::span(numbers).first(count));
        return value ? value->Text() : "none";
    };
    EXPECT_EQ(textOf(typeid(double), 1), "0.25");
    EXPECT_EQ(textOf(typeid(PhysicalSpace::point), 3), "0.25 -2 3e+07");
    EXPECT_EQ(textOf(typeid(PhysicalSpace::vector), 3), "0.25 -2 3e+07");
    EXPECT_EQ(textOf(typeid(rgba_float_t), 4), "0.25 -2 3e+07 0.7");
    EXPECT_EQ(textOf(typeid(double), 2), "none");
    EXPECT_EQ(textOf(typeid(rgba_float_t), 3), "none");
    EXPECT_EQ(textOf(typeid(std::string), 0), "none");
}

TEST(ParameterValueTest, IsFiniteWhereAllItsNumbersAre) {
    constexpr double infinite = std::numeric_limits<double>::infinity();
    constexpr float none = std::numeric_limits<float>::quiet_NaN();
    EXPECT_TRUE(korl::isFinite(VValue<double>(1e308)));
    EXPECT_FALSE(korl::isFinite(VValue<double>(-infinite)));
    EXPECT_FALSE(korl::isFinite(VValue<PhysicalSpace::point>({0, infinite, 0})));
    EXPECT_FALSE(korl::isFinite(VValue<rgba_float_t>({0, 0, 0, none})));
    EXPECT_TRUE(korl::isFinite(VValue<std::string>("infinite")));
    const auto beyond = korl::makeValue(typeid(rgba_float_t), std::vector<double>{1e39, 0, 0, 1});
    EXPECT_FALSE(korl::isFinite(*beyond)) << "no float holds 1e39";
}

} // namespace
