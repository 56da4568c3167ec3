#include <tessan/ageable.hpp>

#include <gtest/gtest.h>

namespace {

using Tessan::Ageable;

TEST(Ageable, NewObjectsTakeTheCurrentTimeAndLeaveItStanding) {
    const auto now = Ageable::GlobalTime.load();
    const Ageable first, second;
    EXPECT_EQ(first.age(), now);
    EXPECT_EQ(second.age(), now);
    EXPECT_EQ(Ageable::GlobalTime.load(), now);
}

TEST(Ageable, AChangeAdvancesTheClock) {
    Ageable changed, unchanged;
    const auto before = Ageable::GlobalTime.load();
    changed.grow();
    EXPECT_EQ(Ageable::GlobalTime.load(), before + 1);
    EXPECT_EQ(changed.age(), before + 1);
    EXPECT_EQ(unchanged.age(), before);
    unchanged = changed;
    EXPECT_EQ(unchanged.age(), before + 2);
}

} // namespace
