#include <tessan/typename.hpp>

#include <gtest/gtest.h>
#include <vector>

namespace {

TEST(Typename, IsReadable) {
    EXPECT_EQ(Tessan::Typename(typeid(double)), "double");
    EXPECT_EQ(Tessan::Typename(typeid(std::vector<int>)), "std::vector<int, std::allocator<int> >");
}

} // namespace
