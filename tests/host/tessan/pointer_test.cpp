#include "tests/host/tessan/thing.hpp"
#include "tests/support/recorded_reports.hpp"

#include <tessan/strong_ptr.hpp>
#include <tessan/weak_ptr.hpp>

#include <gmock/gmock.h>
#include <new>
#include <thread>
#include <vector>

namespace {

using korl::test::DerivedThing;
using korl::test::RecordedReports;
using korl::test::Thing;
using Tessan::Counted;
using Tessan::StrongPtr;
using Tessan::WeakPtr;
using testing::ElementsAre;
using testing::IsEmpty;

/// Two counted bases: `Base` says which one the pointer counts.
struct TwoFold : Thing, virtual Tessan::SpeakPtr {};

TEST(StrongPtr, DeletesTheObjectWithTheLastPointer) {
    int deaths = 0;
    {
        StrongPtr<Thing> first(new Thing(&deaths));
        const StrongPtr<Thing> second = first;
        EXPECT_EQ(first->controlBlock().strongCount(), 2);
        first = nullptr;
        EXPECT_EQ(deaths, 0);
        EXPECT_EQ(second->controlBlock().strongCount(), 1);
    }
    EXPECT_EQ(deaths, 1);
}

TEST(StrongPtr, CountsEveryPointer) {
    const StrongPtr<Thing> first(new Thing);
    const WeakPtr<Thing> weak = first;
    const Tessan::ControlBlock& block = first->controlBlock();
    std::vector<StrongPtr<Thing>> more(4, first);
    EXPECT_EQ(block.strongCount(), 5);
    EXPECT_EQ(block.weakCount(), 1);
    more.pop_back();
    EXPECT_EQ(block.strongCount(), 4);
    more.clear();
    EXPECT_EQ(block.strongCount(), 1);
    EXPECT_EQ(block.object(), first.get());
}

TEST(StrongPtr, AssignmentTakesAShareAndGivesOneBack) {
    int deaths = 0, other_deaths = 0;
    StrongPtr<Thing> pointer(new Thing(&deaths));
    const StrongPtr<Thing> other(new Thing(&other_deaths));
    pointer = other;
    EXPECT_EQ(deaths, 1);
    EXPECT_EQ(pointer.get(), other.get());
    EXPECT_EQ(other->controlBlock().strongCount(), 2);
    const StrongPtr<Thing>& itself = pointer;
    pointer = itself;
    EXPECT_EQ(other->controlBlock().strongCount(), 2);
    pointer = nullptr;
    EXPECT_EQ(other->controlBlock().strongCount(), 1);
    EXPECT_EQ(other_deaths, 0);
}

TEST(StrongPtr, ComparesByTheObjectThatIsThere) {
    const StrongPtr<Thing> pointer(new Thing), same = pointer, other(new Thing), none;
    EXPECT_TRUE(pointer == same);
    EXPECT_FALSE(pointer == other);
    EXPECT_FALSE(pointer == none);
    EXPECT_FALSE(pointer == nullptr);
    EXPECT_TRUE(none == nullptr);
    Counted::destroy(pointer.get());
    EXPECT_TRUE(pointer == same);
    EXPECT_TRUE(pointer == none);
    EXPECT_TRUE(pointer == nullptr);
    EXPECT_FALSE(pointer == other);
}

TEST(StrongPtr, DeletesThroughTheVirtualDestructorOfItsBase) {
    int deaths = 0;
    { const StrongPtr<Thing> pointer(new DerivedThing(&deaths)); }
    { const StrongPtr<Counted, Counted> pointer(new DerivedThing(&deaths)); }
    { const StrongPtr<TwoFold, Thing> pointer(new TwoFold); }
    EXPECT_EQ(deaths, 2);
}

TEST(StrongPtr, ConvertsUpAndDown) {
    const StrongPtr<DerivedThing> derived(new DerivedThing);
    const StrongPtr<Thing> base = derived;
    EXPECT_EQ(base.get(), derived.get());
    EXPECT_EQ(Tessan::dynamicPtr<DerivedThing>(base).get(), derived.get());
    EXPECT_FALSE(Tessan::dynamicPtr<DerivedThing>(StrongPtr<Thing>(new Thing)));
}

TEST(StrongPtr, MovesWithoutCounting) {
    StrongPtr<Thing> from(new Thing);
    const StrongPtr<Thing> to = std::move(from);
    EXPECT_EQ(to->controlBlock().strongCount(), 1);
    EXPECT_FALSE(from); // NOLINT(bugprone-use-after-move): that it holds nothing is what is tested
}

TEST(StrongPtr, EveryPointerTakesTheNextSerialAsItIsMade) {
    const auto before = Tessan::PointerID.load();
    const StrongPtr<Thing> empty, null(nullptr), held(new Thing);
    StrongPtr<Thing> copy = held;
    const StrongPtr<Thing> moved = std::move(copy);
    const StrongPtr<Counted> converted = held;
    const WeakPtr<Thing> weak_empty, weak = held, weak_copy = weak;
    const StrongPtr<Thing> locked = weak.lock();
    const std::vector<std::uint64_t> taken{
        empty.serial(),     null.serial(),       held.serial(), copy.serial(),      moved.serial(),
        converted.serial(), weak_empty.serial(), weak.serial(), weak_copy.serial(), locked.serial()};
    for (std::size_t i = 0; i < taken.size(); ++i)
        EXPECT_EQ(taken[i], before + 1 + i) << i;
    EXPECT_EQ(Tessan::PointerID.load(), before + taken.size());
}

TEST(StrongPtr, DereferencingNothingIsReported) {
    RecordedReports recorded;
    const StrongPtr<Thing> empty, none(static_cast<Thing*>(nullptr));
    EXPECT_EQ(empty.get(), nullptr); // asking is not an error
    EXPECT_FALSE(none);
    EXPECT_THAT(recorded.places, IsEmpty());
    EXPECT_EQ(empty.operator->(), nullptr);
    EXPECT_EQ(none.operator->(), nullptr);
    EXPECT_THAT(recorded.places, ElementsAre("DynPtrInvalid", "DynPtrInvalid"));
    const StrongPtr<DerivedThing, Thing> derived;
    EXPECT_EQ(derived.operator->(), nullptr);
    EXPECT_EQ(recorded.messages.back(),
              "a strong pointer to korl::test::DerivedThing was dereferenced, but its object is gone");
}

TEST(StrongPtr, LearnsThatItsObjectWasDeleted) {
    RecordedReports recorded;
    int deaths = 0;
    const StrongPtr<Thing> pointer(new Thing(&deaths));
    Counted::destroy(pointer.get());
    EXPECT_EQ(deaths, 1);
    EXPECT_FALSE(pointer);
    EXPECT_EQ(pointer.operator->(), nullptr);
    EXPECT_THAT(recorded.places, ElementsAre("DynPtrInvalid"));
}

TEST(StrongPtr, ConstructionFromItselfIsReported) {
    RecordedReports recorded;
    alignas(StrongPtr<Thing>) unsigned char memory[sizeof(StrongPtr<Thing>)] = {};
    auto* const itself = reinterpret_cast<StrongPtr<Thing>*>(memory);
    const auto* made = new (memory) StrongPtr<Thing>(*itself);
    EXPECT_FALSE(*made);
    made->~StrongPtr();
    made = new (memory) StrongPtr<Thing>(std::move(*itself));
    EXPECT_FALSE(*made);
    made->~StrongPtr();
    EXPECT_THAT(recorded.places, ElementsAre("SelfConstruction", "SelfConstruction"));
    EXPECT_THAT(
        recorded.messages,
        testing::Each("a pointer to korl::test::Thing was constructed from itself; it holds nothing"));
}

TEST(StrongPtr, CountIsNegativeWhileTheObjectIsDestroyed) {
    int count = 0;
    auto* const thing = new Thing;
    thing->at_death = [&](Thing& dying) { count = dying.controlBlock().strongCount(); };
    { const StrongPtr<Thing> pointer(thing); }
    EXPECT_LT(count, 0);
}

TEST(StrongPtr, CountStaysNegativeHoweverManyPointersAreTaken) {
    RecordedReports recorded;
    std::vector<int> counts;
    const auto takeTwo = [&](Thing& dying) {
        const StrongPtr<Thing> late(&dying), later(&dying);
        counts.push_back(dying.controlBlock().strongCount());
    };
    auto* const released = new Thing;
    released->at_death = takeTwo;
    { const StrongPtr<Thing> pointer(released); }
    auto* const destroyed = new Thing;
    destroyed->at_death = takeTwo;
    const std::vector<StrongPtr<Thing>> pointers(3, StrongPtr<Thing>(destroyed));
    Counted::destroy(destroyed);
    EXPECT_THAT(counts, ElementsAre(testing::Lt(0), testing::Lt(0)));
    EXPECT_EQ(recorded.places.size(), 8u); // two taken and released, each time
}

TEST(StrongPtr, TakingOneDuringDestructionIsReported) {
    RecordedReports recorded;
    auto* const thing = new Thing;
    thing->at_death = [&](Thing& dying) { const StrongPtr<Thing> late(&dying); };
    { const StrongPtr<Thing> pointer(thing); }
    EXPECT_THAT(recorded.places,
                ElementsAre("WarningUnctionChange", "WarningUnctionChange")); // taken, and released
    EXPECT_THAT(recorded.messages,
                testing::Each("the reference count of korl::test::Thing changed while it is "
                              "being destroyed"));
}

TEST(StrongPtr, PointersThatGoAfterTheirObjectSayNothing) {
    RecordedReports recorded;
    {
        const StrongPtr<Thing> first(new Thing), second = first;
        const Tessan::ControlBlock& block = first->controlBlock();
        Counted::destroy(first.get());
        const int count = block.strongCount();
        const StrongPtr<Thing> copy = second;
        EXPECT_FALSE(copy);
        EXPECT_EQ(block.strongCount(), count); // the copy holds nothing
    }
    EXPECT_THAT(recorded.places, IsEmpty());
    Counted::destroy(nullptr); // nothing to destroy
}

TEST(StrongPtr, CancelledDestructionIsReported) {
    RecordedReports recorded;
    int deaths = 0;
    StrongPtr<Thing> rescuer;
    auto* const thing = new DerivedThing(&deaths);
    thing->at_last_release = [&](Thing& released) { rescuer = StrongPtr<Thing>(&released); };
    { const StrongPtr<Thing> pointer(thing); }
    EXPECT_EQ(deaths, 0);
    EXPECT_EQ(thing->controlBlock().strongCount(), 1);
    EXPECT_THAT(recorded.places, ElementsAre("DestructionCancelled"));
    EXPECT_THAT(recorded.messages,
                ElementsAre("the destruction of korl::test::DerivedThing was cancelled, since a "
                            "new strong pointer holds it"));

    thing->at_last_release = nullptr;
    rescuer = nullptr;
    EXPECT_EQ(deaths, 1);
}

TEST(StrongPtr, PointerThatComesAndGoesInTheHookCancelsNothing) {
    RecordedReports recorded;
    int deaths = 0;
    auto* const thing = new Thing(&deaths);
    thing->at_last_release = [](Thing& released) { const StrongPtr<Thing> passing(&released); };
    { const StrongPtr<Thing> pointer(thing); }
    EXPECT_EQ(deaths, 1);
    EXPECT_THAT(recorded.places, IsEmpty());
}

TEST(StrongPtr, NeverDeletesAnObjectThatOwnsItself) {
    struct OwnOwner : Thing {
        explicit OwnOwner(int* deaths_counted) : Thing(deaths_counted) { ownItself(); }
    };
    int deaths = 0;
    {
        OwnOwner on_the_stack(&deaths);
        {
            const StrongPtr<Thing> pointer(&on_the_stack), locked = WeakPtr<Thing>(&on_the_stack).lock();
            EXPECT_EQ(on_the_stack.controlBlock().strongCount(), 3);
            EXPECT_EQ(locked.get(), &on_the_stack);
        }
        EXPECT_EQ(on_the_stack.controlBlock().strongCount(), 1);
        EXPECT_EQ(deaths, 0);
    }
    EXPECT_EQ(deaths, 1);
}

TEST(Counted, CopyIsAnObjectOfItsOwn) {
    const StrongPtr<Thing> original(new Thing);
    const StrongPtr<Thing> copy(new Thing(*original));
    const Tessan::ControlBlock& block = copy->controlBlock();
    EXPECT_NE(&block, &original->controlBlock());
    EXPECT_EQ(block.object(), copy.get());
    EXPECT_EQ(block.strongCount(), 1);
    *copy = *original;
    EXPECT_EQ(&copy->controlBlock(), &block);
}

TEST(StrongPtr, CountsAreExactAcrossThreads) {
    int deaths = 0;
    {
        const StrongPtr<Thing> shared(new Thing(&deaths));
        const WeakPtr<Thing> weak = shared;
        std::vector<std::thread> threads;
        for (int t = 0; t < 4; ++t)
            threads.emplace_back([&] {
                for (int i = 0; i < 20000; ++i) {
                    const StrongPtr<Thing> copy = shared;
                    const StrongPtr<Thing> locked = weak.lock();
                    if (!locked)
                        std::terminate();
                }
            });
        for (std::thread& thread : threads)
            thread.join();
        EXPECT_EQ(shared->controlBlock().strongCount(), 1);
        EXPECT_EQ(shared->controlBlock().weakCount(), 1);
    }
    EXPECT_EQ(deaths, 1);
}

} // namespace
