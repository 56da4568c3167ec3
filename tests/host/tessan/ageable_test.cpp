#include <tessan/ageable.hpp>

#include <gtest/gtest.h>

namespace {

using Tessan::Ageable;

/// Runs each test with a clock that is not at its start.
class AgeableTest : public testing::Test {
protected:
    static Ageable::Time laterTime() {
        Ageable().grow();
        return Ageable::GlobalTime.load();
    }

    const Ageable::Time now = laterTime();
};

TEST_F(AgeableTest, NewObjectsTakeTheCurrentTimeAndLeaveItStanding) {
    ASSERT_GT(now, 0u);
    const Ageable first, second;
    EXPECT_EQ(first.age(), now);
    EXPECT_EQ(second.age(), now);
    EXPECT_EQ(Ageable::GlobalTime.load(), now);
}

TEST_F(AgeableTest, AChangeAdvancesTheClock) {
    Ageable changed;
    const Ageable unchanged;
    changed.grow();
    EXPECT_EQ(Ageable::GlobalTime.load(), now + 1);
    EXPECT_EQ(changed.age(), now + 1);
    EXPECT_EQ(unchanged.age(), now);
}

TEST_F(AgeableTest, CopyIsANewObject) {
    const Ageable original;
    Ageable().grow();
    const Ageable copy(original); // NOLINT(performance-unnecessary-copy-initialization): the copy is tested
    EXPECT_EQ(original.age(), now);
    EXPECT_EQ(copy.age(), now + 1);
    EXPECT_EQ(Ageable::GlobalTime.load(), now + 1);
}

TEST_F(AgeableTest, AssignmentChangesWhatIsAssignedTo) {
    Ageable from, to;
    from.setAge(1000);
    to = from;
    EXPECT_EQ(to.age(), now + 1);
    EXPECT_EQ(from.age(), 1000u);
    const Ageable& itself = to;
    to = itself; // changes nothing
    EXPECT_EQ(to.age(), now + 1);
    EXPECT_EQ(Ageable::GlobalTime.load(), now + 1);
}

TEST_F(AgeableTest, AgeCanBeSetWithoutAChange) {
    Ageable object;
    object.setAge(now + 41);
    EXPECT_EQ(object.age(), now + 41);
    EXPECT_EQ(Ageable::GlobalTime.load(), now);
}

} // namespace
