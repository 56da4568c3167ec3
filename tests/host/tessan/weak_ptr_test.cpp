#include "tests/host/tessan/thing.hpp"
#include "tests/support/recorded_reports.hpp"

#include <tessan/weak_ptr.hpp>

#include <gmock/gmock.h>
#include <new>
#include <vector>

namespace {

using korl::test::DerivedThing;
using korl::test::RecordedReports;
using korl::test::Thing;
using Tessan::ControlBlock;
using Tessan::StrongPtr;
using Tessan::WeakPtr;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(WeakPtr, SeesTheObjectGo) {
    RecordedReports recorded;
    StrongPtr<Thing> strong(new Thing);
    const WeakPtr<Thing> weak = strong;
    EXPECT_EQ(weak.operator->(), strong.get());
    EXPECT_EQ(weak.lock(), strong);
    EXPECT_EQ(strong->controlBlock().strongCount(), 1);
    strong = nullptr;
    EXPECT_FALSE(weak);
    EXPECT_EQ(weak.get(), nullptr);
    EXPECT_FALSE(weak.lock());
    EXPECT_THAT(recorded.places, IsEmpty()); // asking is not an error
    EXPECT_EQ(weak.operator->(), nullptr);
    EXPECT_THAT(recorded.places, ElementsAre("InvalidWeakPtr"));
    EXPECT_THAT(recorded.messages,
                ElementsAre("a weak pointer to korl::test::Thing was dereferenced, but its "
                            "object is gone"));
}

TEST(WeakPtr, LooksAtNothingUnlessTold) {
    RecordedReports recorded;
    const WeakPtr<Thing> empty, null(nullptr), none(static_cast<Thing*>(nullptr)),
        of_nothing = StrongPtr<Thing>(), copy = empty;
    for (const WeakPtr<Thing>* const weak : {&empty, &null, &none, &of_nothing, &copy}) {
        EXPECT_FALSE(*weak);
        EXPECT_EQ(weak->get(), nullptr);
        EXPECT_FALSE(weak->lock());
    }
    EXPECT_THAT(recorded.places, IsEmpty());
    EXPECT_EQ(empty.operator->(), nullptr);
    EXPECT_THAT(recorded.places, ElementsAre("InvalidWeakPtr"));
    const WeakPtr<DerivedThing, Thing> derived;
    EXPECT_EQ(derived.operator->(), nullptr);
    EXPECT_EQ(recorded.messages.back(),
              "a weak pointer to korl::test::DerivedThing was dereferenced, but its object is gone");
}

TEST(WeakPtr, CountsEveryPointer) {
    StrongPtr<Thing> strong(new Thing);
    const StrongPtr<Thing> second = strong;
    const ControlBlock& block = strong->controlBlock();
    std::vector<WeakPtr<Thing>> weak(5, WeakPtr<Thing>(strong));
    EXPECT_EQ(block.weakCount(), 5);
    EXPECT_EQ(block.strongCount(), 2);
    weak.pop_back();
    EXPECT_EQ(block.weakCount(), 4);
    weak.resize(1);
    EXPECT_EQ(block.weakCount(), 1);
    weak.clear();
    EXPECT_EQ(block.weakCount(), 0);
    EXPECT_EQ(block.strongCount(), 2);
}

TEST(WeakPtr, IsCountedAfterTheObjectToo) {
    StrongPtr<Thing> strong(new Thing);
    const ControlBlock& block = strong->controlBlock(); // lives as long as `weak` looks at it
    const WeakPtr<Thing> weak = strong;
    strong = nullptr;
    EXPECT_EQ(block.object(), nullptr);
    EXPECT_EQ(block.weakCount(), 1);
    {
        const WeakPtr<Thing> copy = weak;
        EXPECT_EQ(block.weakCount(), 2);
        EXPECT_FALSE(copy);
    }
    EXPECT_EQ(block.weakCount(), 1);
}

TEST(WeakPtr, AssignmentLooksElsewhere) {
    const StrongPtr<Thing> first(new Thing), second(new Thing);
    WeakPtr<Thing> weak = first;
    const WeakPtr<Thing> other = second;
    weak = other;
    EXPECT_EQ(weak.get(), second.get());
    EXPECT_EQ(other.get(), second.get());
    EXPECT_EQ(first->controlBlock().weakCount(), 0);
    EXPECT_EQ(second->controlBlock().weakCount(), 2);
    weak = nullptr;
    EXPECT_FALSE(weak);
    EXPECT_EQ(second->controlBlock().weakCount(), 1);
}

TEST(WeakPtr, LooksAtObjectsOfDerivedClasses) {
    const StrongPtr<DerivedThing> strong(new DerivedThing);
    const WeakPtr<Thing> weak = strong;
    EXPECT_EQ(weak.get(), strong.get());
    EXPECT_EQ(weak.lock(), StrongPtr<Thing>(strong));
    EXPECT_EQ(strong->controlBlock().weakCount(), 1);
}

TEST(WeakPtr, LooksAtObjectsThatNobodyOwns) {
    WeakPtr<Thing> weak;
    const ControlBlock* block = nullptr; // lives as long as `weak` looks at it
    {
        Thing on_the_stack;
        weak = WeakPtr<Thing>(&on_the_stack);
        EXPECT_EQ(weak.get(), &on_the_stack);
        EXPECT_TRUE(weak);
        EXPECT_EQ(on_the_stack.controlBlock().weakCount(), 1);
        EXPECT_EQ(on_the_stack.controlBlock().strongCount(), 0);
        block = &on_the_stack.controlBlock();
    }
    EXPECT_FALSE(weak);
    const StrongPtr<Thing> locked = weak.lock();
    EXPECT_FALSE(locked);
    EXPECT_EQ(block->strongCount(), 0); // no share in what has gone
}

TEST(WeakPtr, LockTakesAnObjectThatNobodyOwned) {
    int deaths = 0;
    auto* const thing = new Thing(&deaths);
    const WeakPtr<Thing> weak(thing);
    {
        const StrongPtr<Thing> locked = weak.lock(), again = weak.lock();
        EXPECT_EQ(locked.get(), thing);
        EXPECT_EQ(again.get(), thing);
        EXPECT_EQ(thing->controlBlock().strongCount(), 2);
        EXPECT_EQ(thing->controlBlock().weakCount(), 1);
    }
    EXPECT_EQ(deaths, 1);
    EXPECT_FALSE(weak);
    EXPECT_FALSE(weak.lock());
}

TEST(WeakPtr, DoesNotLockDuringDestruction) {
    RecordedReports recorded;
    bool locked = true;
    auto* const thing = new Thing;
    const WeakPtr<Thing> weak(thing);
    thing->at_death = [&](Thing&) { locked = static_cast<bool>(weak.lock()); };
    { const StrongPtr<Thing> pointer(thing); }
    EXPECT_FALSE(locked);
    EXPECT_THAT(recorded.places, IsEmpty());
}

TEST(WeakPtr, ConstructionFromItselfIsReported) {
    RecordedReports recorded;
    alignas(WeakPtr<Thing>) unsigned char memory[sizeof(WeakPtr<Thing>)] = {};
    auto* const itself = reinterpret_cast<WeakPtr<Thing>*>(memory);
    const auto* const made = new (memory) WeakPtr<Thing>(*itself);
    EXPECT_FALSE(*made);
    made->~WeakPtr();
    EXPECT_THAT(recorded.places, ElementsAre("SelfConstruction"));
    EXPECT_THAT(recorded.messages,
                ElementsAre("a pointer to korl::test::Thing was constructed from itself; it holds nothing"));
}

} // namespace
