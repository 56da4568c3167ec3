// Assigning, comparing, converting and dereferencing pointers.

#include <tessan/strong_ptr.hpp>
#include <tessan/weak_ptr.hpp>

#include <gmock/gmock.h>
#include <map>
#include <set>
#include <sys/resource.h>
#include <type_traits>
#include <vector>

namespace {

using Tessan::Counted;
using Tessan::PointerID;
using Tessan::StrongPtr;
using Tessan::WeakPtr;

struct Thing : Counted {
    int number = 0;
};
struct DerivedThing : Thing {};

template <template <class, class> class Pointer>
void expectFreshSerials() {
    const StrongPtr<Thing> owner(new Thing);
    const Pointer<Thing, Thing> source(owner);
    Pointer<Thing, Thing> target;

    const auto made = target.serial(), before = PointerID.load();
    target = source;
    EXPECT_EQ(target.serial(), before + 1);
    EXPECT_EQ(PointerID.load(), before + 1);
    EXPECT_NE(target.serial(), made);
    EXPECT_NE(target.serial(), source.serial());

    target = Pointer<Thing, Thing>(source);
    EXPECT_EQ(target.serial(), before + 2);
    target = nullptr;
    EXPECT_EQ(target.serial(), before + 3);
}

TEST(StrongPtr, AssignmentTakesAFreshSerial) {
    expectFreshSerials<StrongPtr>();
}

TEST(WeakPtr, AssignmentTakesAFreshSerial) {
    expectFreshSerials<WeakPtr>();
}

TEST(StrongPtr, StarGivesTheObject) {
    const StrongPtr<Thing> strong(new Thing);
    const WeakPtr<Thing> weak = strong;
    (*strong).number = 3;
    EXPECT_EQ((*weak).number, 3);
    EXPECT_EQ(&*strong, strong.get());
    EXPECT_EQ(&*weak, strong.get());
    static_assert(std::is_same_v<decltype(*strong), Thing&>);
    static_assert(std::is_same_v<decltype(*StrongPtr<const Thing>()), const Thing&>);
}

TEST(PointerDeathTest, StarWithoutAnObjectIsReportedBeforeTheProcessEnds) {
    const StrongPtr<Thing> strong;
    const WeakPtr<Thing> weak;
    EXPECT_DEATH(++(*strong).number, "strong pointer to .*Thing was dereferenced, but its object is gone");
    EXPECT_DEATH(++(*weak).number, "weak pointer to .*Thing was dereferenced, but its object is gone");
}

TEST(PointerDeathTest, LeavesNoCoreFile) {
    rlimit of_cores{1, 1};
    ASSERT_EQ(getrlimit(RLIMIT_CORE, &of_cores), 0);
    EXPECT_EQ(of_cores.rlim_max, 0u); // as in every test program
}

TEST(StrongPtr, ServesAsAKey) {
    const StrongPtr<Thing> a(new Thing), b(new Thing), empty;
    const std::set<StrongPtr<Thing>> keys{a, b, a, empty, b, StrongPtr<Thing>()};
    EXPECT_EQ(keys.size(), 3u);
    EXPECT_TRUE(keys.contains(a));
    EXPECT_TRUE((a < b) != (b < a));
    EXPECT_TRUE(a <= a && a >= a && !(a < a));
}

TEST(WeakPtr, StaysTheSameKeyWhenItsObjectGoes) {
    std::vector<StrongPtr<Thing>> owners;
    std::map<WeakPtr<Thing>, int> numbers;
    std::vector<WeakPtr<Thing>> keys;
    for (int i = 0; i < 20; ++i) {
        owners.emplace_back(new Thing);
        keys.emplace_back(owners.back());
        numbers[keys.back()] = i;
    }
    for (std::size_t i = 0; i < owners.size(); i += 2)
        owners[i] = nullptr;
    ASSERT_EQ(numbers.size(), 20u);
    for (int i = 0; i < 20; ++i)
        EXPECT_EQ(numbers.at(keys[static_cast<std::size_t>(i)]), i);
}

TEST(WeakPtr, EqualsWhatLooksAtTheSameObject) {
    const StrongPtr<Thing> a(new Thing), b(new Thing);
    EXPECT_TRUE(WeakPtr<Thing>(a) == WeakPtr<Thing>(a));
    EXPECT_FALSE(WeakPtr<Thing>(a) == WeakPtr<Thing>(b));
    EXPECT_FALSE(WeakPtr<Thing>(a) == nullptr);
    EXPECT_TRUE(WeakPtr<Thing>() == nullptr);
}

TEST(WeakPtr, ConvertsToItsBase) {
    StrongPtr<DerivedThing> owner(new DerivedThing);
    const WeakPtr<DerivedThing> derived = owner;
    const WeakPtr<Thing> base = derived;
    WeakPtr<const Thing> assigned;
    assigned = derived;
    EXPECT_EQ(base.get(), owner.get());
    EXPECT_EQ(assigned.get(), owner.get());
    EXPECT_EQ(owner->controlBlock().weakCount(), 3);
    EXPECT_EQ(owner->controlBlock().strongCount(), 1);
    owner = nullptr;
    EXPECT_FALSE(base);
    EXPECT_FALSE(WeakPtr<Thing>(derived)); // of an object that has gone
    static_assert(!std::is_convertible_v<WeakPtr<Thing>, WeakPtr<DerivedThing>>);
}

} // namespace
