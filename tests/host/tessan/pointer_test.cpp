#include "tests/support/heard_reports.hpp"

#include <tessan/strong_ptr.hpp>
#include <tessan/weak_ptr.hpp>

#include <functional>
#include <gmock/gmock.h>
#include <new>
#include <thread>
#include <vector>

namespace {

using korl::test::HeardReports;
using Tessan::Counted;
using Tessan::StrongPtr;
using Tessan::WeakPtr;
using testing::ElementsAre;
using testing::IsEmpty;

struct Thing : Counted {
    explicit Thing(int* deaths_counted = nullptr) : deaths(deaths_counted) {}
    ~Thing() override {
        if (at_death)
            at_death(*this);
        if (deaths)
            ++*deaths;
    }
    void unreferenced() override {
        if (at_last_release)
            at_last_release(*this);
    }

    int* deaths;
    std::function<void(Thing&)> at_death, at_last_release;
};

struct DerivedThing : Thing {
    using Thing::Thing;
};

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

TEST(StrongPtr, EveryCopyTakesAFreshSerial) {
    const StrongPtr<Thing> first(new Thing);
    const auto before = Tessan::PointerID.load();
    const StrongPtr<Thing> second = first;
    const WeakPtr<Thing> third = first;
    EXPECT_EQ(second.serial(), before + 1);
    EXPECT_EQ(third.serial(), before + 2);
    EXPECT_EQ(Tessan::PointerID.load(), before + 2);
}

TEST(StrongPtr, DereferencingNothingIsReported) {
    HeardReports heard;
    const StrongPtr<Thing> empty;
    EXPECT_EQ(empty.operator->(), nullptr);
    EXPECT_EQ(empty.get(), nullptr); // asking is no misuse
    EXPECT_THAT(heard.places, ElementsAre("DynPtrInvalid"));
    EXPECT_THAT(heard.messages,
                ElementsAre(testing::HasSubstr("::Thing was dereferenced, but its object is gone")));
}

TEST(StrongPtr, LearnsThatItsObjectWasDeleted) {
    HeardReports heard;
    int deaths = 0;
    const StrongPtr<Thing> pointer(new Thing(&deaths));
    Counted::destroy(pointer.get());
    EXPECT_EQ(deaths, 1);
    EXPECT_FALSE(pointer);
    EXPECT_EQ(pointer.operator->(), nullptr);
    EXPECT_THAT(heard.places, ElementsAre("DynPtrInvalid"));
}

TEST(StrongPtr, ConstructionFromItselfIsReported) {
    HeardReports heard;
    alignas(StrongPtr<Thing>) unsigned char room[sizeof(StrongPtr<Thing>)] = {};
    auto* const itself = reinterpret_cast<StrongPtr<Thing>*>(room);
    const auto* const made = new (room) StrongPtr<Thing>(*itself);
    EXPECT_FALSE(*made);
    made->~StrongPtr();
    EXPECT_THAT(heard.places, ElementsAre("SelfConstruction"));
}

TEST(StrongPtr, CountIsNegativeWhileTheObjectIsDestroyed) {
    int count = 0;
    auto* const thing = new Thing;
    thing->at_death = [&](Thing& dying) { count = dying.controlBlock().strongCount(); };
    { const StrongPtr<Thing> pointer(thing); }
    EXPECT_LT(count, 0);
}

TEST(StrongPtr, TakingOneDuringDestructionIsReported) {
    HeardReports heard;
    auto* const thing = new Thing;
    thing->at_death = [&](Thing& dying) { const StrongPtr<Thing> late(&dying); };
    { const StrongPtr<Thing> pointer(thing); }
    EXPECT_THAT(heard.places,
                ElementsAre("WarningUnctionChange", "WarningUnctionChange")); // taken, and released
}

TEST(StrongPtr, WeakPointerDoesNotLockDuringDestruction) {
    HeardReports heard;
    bool locked = true;
    auto* const thing = new Thing;
    const WeakPtr<Thing> weak(thing);
    thing->at_death = [&](Thing&) { locked = static_cast<bool>(weak.lock()); };
    { const StrongPtr<Thing> pointer(thing); }
    EXPECT_FALSE(locked);
    EXPECT_THAT(heard.places, IsEmpty());
}

TEST(StrongPtr, CancelledDestructionIsReported) {
    HeardReports heard;
    int deaths = 0;
    StrongPtr<Thing> rescuer;
    auto* const thing = new Thing(&deaths);
    thing->at_last_release = [&](Thing& released) { rescuer = StrongPtr<Thing>(&released); };
    { const StrongPtr<Thing> pointer(thing); }
    EXPECT_EQ(deaths, 0);
    EXPECT_EQ(thing->controlBlock().strongCount(), 1);
    EXPECT_THAT(heard.places, ElementsAre("DestructionCancelled"));

    thing->at_last_release = nullptr;
    rescuer = nullptr;
    EXPECT_EQ(deaths, 1);
}

TEST(StrongPtr, PointerThatComesAndGoesInTheHookCancelsNothing) {
    HeardReports heard;
    int deaths = 0;
    auto* const thing = new Thing(&deaths);
    thing->at_last_release = [](Thing& released) { const StrongPtr<Thing> passing(&released); };
    { const StrongPtr<Thing> pointer(thing); }
    EXPECT_EQ(deaths, 1);
    EXPECT_THAT(heard.places, IsEmpty());
}

TEST(WeakPtr, SeesTheObjectGo) {
    HeardReports heard;
    StrongPtr<Thing> strong(new Thing);
    const WeakPtr<Thing> weak = strong;
    EXPECT_EQ(strong->controlBlock().weakCount(), 1);
    EXPECT_EQ(weak.operator->(), strong.get());
    EXPECT_TRUE(weak.lock());
    EXPECT_EQ(strong->controlBlock().strongCount(), 1);
    strong = nullptr;
    EXPECT_FALSE(weak);
    EXPECT_FALSE(weak.lock());
    EXPECT_THAT(heard.places, IsEmpty());
    EXPECT_EQ(weak.operator->(), nullptr);
    EXPECT_THAT(heard.places, ElementsAre("InvalidWeakPtr"));
}

TEST(WeakPtr, ConstructionFromItselfIsReported) {
    HeardReports heard;
    alignas(WeakPtr<Thing>) unsigned char room[sizeof(WeakPtr<Thing>)] = {};
    auto* const itself = reinterpret_cast<WeakPtr<Thing>*>(room);
    new (room) WeakPtr<Thing>(*itself);
    itself->~WeakPtr();
    EXPECT_THAT(heard.places, ElementsAre("SelfConstruction"));
}

TEST(WeakPtr, LooksAtObjectsThatNoStrongPointerHolds) {
    WeakPtr<Thing> weak;
    {
        Thing on_the_stack;
        weak = WeakPtr<Thing>(&on_the_stack);
        EXPECT_EQ(weak.get(), &on_the_stack);
    }
    EXPECT_FALSE(weak);
}

TEST(SpeakPtr, SpeaksOnStandardErrorUnlessReplaced) {
    testing::internal::CaptureStderr();
    Tessan::SpeakPtr::theSpeaker().printRS("what happened", "where");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "what happened [where]\n");
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
