#include <orvid/physical_space.hpp>
#include <tessan/typename.hpp>

#include <gmock/gmock.h>
#include <utility>
#include <vector>

namespace {

TEST(Typename, IsReadable) {
    EXPECT_EQ(Tessan::Typename(typeid(double)), "double");
    EXPECT_EQ(Tessan::Typename(typeid(std::vector<int>)), "std::vector<int, std::allocator<int> >");
}

TEST(Typename, CallsThePhysicalSpaceByItsName) {
    using Orvid::PhysicalSpace;
    EXPECT_EQ(Tessan::Typename(typeid(PhysicalSpace::point)), "Orvid::PhysicalSpace::point");
    EXPECT_EQ(Tessan::Typename(typeid(PhysicalSpace::vector)), "Orvid::PhysicalSpace::vector");
    EXPECT_EQ(Tessan::Typename(typeid(std::pair<PhysicalSpace::point, PhysicalSpace::vector>)),
              "std::pair<Orvid::PhysicalSpace::point, Orvid::PhysicalSpace::vector>");
    // That of single precision has no other name.
    using FloatSpace = Orvid::Coordinates<Orvid::Cartesian3D, float>;
    EXPECT_EQ(Tessan::Typename(typeid(FloatSpace::point)),
              "Orvid::Coordinates<Orvid::Cartesian3D, float>::point");
}

TEST(Library, IsTheOneThatATypeIsDefinedIn) {
    struct Local {};
    const Tessan::Library program = Tessan::libraryOf(typeid(Local));
    EXPECT_TRUE(program == Tessan::libraryOf(typeid(Typename_IsReadable_Test)));
    EXPECT_NE(program.base, nullptr);
    EXPECT_THAT(program.file, testing::EndsWith("tessan_test"));
}

/// A type whose name follows no rule of the compiler's.
struct OddType : std::type_info {
    OddType() : type_info("1 odd name") {}
};

TEST(Typename, ThatCannotBeMadeReadableStaysAsItIs) {
    EXPECT_EQ(Tessan::Typename(OddType()), "1 odd name");
}

} // namespace
