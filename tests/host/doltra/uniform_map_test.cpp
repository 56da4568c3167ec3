#include <doltra/uniform_map.hpp>

#include <gmock/gmock.h>
#include <type_traits>
#include <utility>

namespace {

using namespace Qelt::RenderNamespace;
using Orvid::Cartesian3D;
using Orvid::Coordinates;
using Orvid::FixedArray;
using Orvid::PhysicalSpace;
using Orvid::Quadratic;

template <std::size_t Index, class Alternative>
constexpr bool is_alternative = std::is_same_v<std::variant_alternative_t<Index, UniformValue>, Alternative>;

TEST(UniformValue, HasTwentyAlternativesInOrder) {
    static_assert(std::variant_size_v<UniformValue> == 20);
    static_assert(is_alternative<0, int>);
    static_assert(is_alternative<1, float>);
    static_assert(is_alternative<2, double>);
    static_assert(is_alternative<3, unsigned int>);
    static_assert(is_alternative<4, FixedArray<int, 2>>);
    static_assert(is_alternative<5, FixedArray<float, 2>>);
    static_assert(is_alternative<6, FixedArray<double, 2>>);
    static_assert(is_alternative<7, FixedArray<int, 3>>);
    static_assert(is_alternative<8, Coordinates<Cartesian3D, float>::point>);
    static_assert(is_alternative<9, FixedArray<float, 3>>);
    static_assert(is_alternative<10, PhysicalSpace::point>);
    static_assert(is_alternative<11, FixedArray<double, 3>>);
    static_assert(is_alternative<12, FixedArray<int, 4>>);
    static_assert(is_alternative<13, FixedArray<float, 4>>);
    static_assert(is_alternative<14, FixedArray<double, 4>>);
    static_assert(is_alternative<15, Quadratic<2, float>>);
    static_assert(is_alternative<16, Quadratic<3, float>>);
    static_assert(is_alternative<17, Quadratic<4, float>>);
    static_assert(is_alternative<18, std::vector<FixedArray<float, 3>>>);
    static_assert(is_alternative<19, std::vector<Coordinates<Cartesian3D, float>::point>>);
}

TEST(UniformMap, EntryWrittenTwiceHoldsTheLast) {
    UniformMap map;
    writeUniform(map, "X$$", FixedArray<float, 4>{1, 2, 3, 4});
    EXPECT_EQ(map.at("X$$").index(), 13u);
    writeUniform(map, "X$$", 2.5);
    ASSERT_EQ(map.size(), 1u);
    EXPECT_EQ(map.at("X$$").index(), 2u);
    EXPECT_EQ(std::get<double>(map.at("X$$")), 2.5);
}

TEST(UniformMap, EntriesAreWrittenApart) {
    UniformMap map;
    for (const auto& [name, value] : {std::pair("B$$", 2.5), std::pair("A$$", 1.5), std::pair("C$$", 3.5),
                                      std::pair("A", 0.5), std::pair("B$$", 4.5)})
        writeUniform(map, name, value);
    writeUniform(map, "C$$", 7u);
    const UniformMap expected{{"A", 0.5}, {"A$$", 1.5}, {"B$$", 4.5}, {"C$$", 7u}};
    EXPECT_EQ(map, expected);
}

TEST(UniformMap, OrdersNamesByBytesTheShorterFirst) {
    UniformMap map;
    for (const char* const name : {"b", "ab", "a", "B", "\xc3\xa4", "a$", "aa"})
        writeUniform(map, name, 1);
    std::vector<std::string> names;
    for (const auto& [name, value] : map)
        names.push_back(name);
    EXPECT_THAT(names, testing::ElementsAre("B", "a", "a$", "aa", "ab", "b", "\xc3\xa4"));
}

} // namespace
