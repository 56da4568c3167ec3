// What pointers see of an object while it is being destroyed, whoever destroys it.

#include "tests/support/recorded_reports.hpp"

#include <tessan/strong_ptr.hpp>
#include <tessan/weak_ptr.hpp>

#include <cstdint>
#include <functional>
#include <gmock/gmock.h>
#include <memory>
#include <set>
#include <stdexcept>

namespace {

using korl::test::RecordedReports;
using Tessan::Counted;
using Tessan::StrongPtr;
using Tessan::WeakPtr;

struct Thing : Counted {
    explicit Thing(std::function<void(Thing&)> at_death_call = nullptr)
        : at_death(std::move(at_death_call)) {}
    ~Thing() override {
        if (at_death)
            at_death(*this);
    }

    std::function<void(Thing&)> at_death;
};

/// How an object comes to its end.
struct Ending {
    const char* name;
    std::function<void(Thing*)> end;
};

const Ending endings[] = {
    {"last pointer", [](Thing* thing) { const StrongPtr<Thing> last(thing); }},
    {"delete", [](Thing* thing) { delete thing; }},
    {"delete through the base", [](Thing* thing) { delete static_cast<Counted*>(thing); }},
    {"unique_ptr", [](Thing* thing) { const std::unique_ptr<Thing> owner(thing); }},
    {"Counted::destroy", [](Thing* thing) { Counted::destroy(thing); }},
};

TEST(Destruction, StrongCountIsNegativeHoweverItBegins) {
    std::set<int> counts;
    for (const Ending& ending : endings) {
        int count = 0;
        ending.end(new Thing([&](Thing& dying) { count = dying.controlBlock().strongCount(); }));
        EXPECT_LT(count, 0) << ending.name;
        counts.insert(count);
    }
    EXPECT_EQ(counts.size(), 1u); // it begins once
}

TEST(Destruction, StrongCountIsNegativeInSpiteOfPointersThatAreLeft) {
    for (const Ending& ending : endings) {
        if (ending.name == std::string("last pointer"))
            continue;
        RecordedReports recorded;
        int count = 0;
        auto* const thing = new Thing([&](Thing& dying) { count = dying.controlBlock().strongCount(); });
        {
            const StrongPtr<Thing> first(thing), second(first);
            ending.end(thing);
            EXPECT_FALSE(first) << ending.name;
        }
        EXPECT_LT(count, 0) << ending.name;
        EXPECT_THAT(recorded.places, testing::IsEmpty()) << ending.name; // the pointers go after the object
    }
}

TEST(Destruction, WeakPointersDoNotLockHoweverItBegins) {
    for (const Ending& ending : endings) {
        RecordedReports recorded;
        bool locked = true;
        WeakPtr<Thing> weak;
        auto* const thing = new Thing([&](Thing&) { locked = static_cast<bool>(weak.lock()); });
        weak = WeakPtr<Thing>(thing);
        ending.end(thing);
        EXPECT_FALSE(locked) << ending.name;
        EXPECT_FALSE(weak) << ending.name;
        EXPECT_THAT(recorded.places, testing::IsEmpty()) << ending.name;
    }
}

struct alignas(128) Aligned : Thing {
    explicit Aligned(std::function<void(Thing&)> at_death_call = nullptr) : Thing(std::move(at_death_call)) {}
};

TEST(Destruction, MemoryGoesBackAsItWasTaken) { // the address sanitizer watches
    int count = 0;
    auto* const aligned = new Aligned([&](Thing& dying) { count = dying.controlBlock().strongCount(); });
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(aligned) % 128, 0u);
    delete aligned;
    EXPECT_LT(count, 0);
    { const StrongPtr<Thing> pointer(new Aligned); }

    struct Side {
        virtual ~Side() = default;
        std::uint64_t number = 0;
    };
    struct LaterBase : Side, Thing {};
    { const StrongPtr<LaterBase> pointer(new LaterBase); }
    delete static_cast<Side*>(new LaterBase);
}

TEST(Destruction, MemoryOfAnObjectThatWasNeverMadeGoesBack) { // the leak sanitizer watches
    struct Unmade : Thing {
        Unmade() { throw std::runtime_error("not made"); }
    };
    struct alignas(128) AlignedUnmade : Unmade {};
    EXPECT_THROW(new Unmade, std::runtime_error);
    EXPECT_THROW(new AlignedUnmade, std::runtime_error);
}

// Classes that cannot inherit the operation that `delete` calls bring an ordinary one.

struct First : Thing {};
struct Second : Thing {};
struct CountedTwice : First, Second {
    static void operator delete(void* memory) { ::operator delete(memory); }
};
struct CountedVirtually : virtual Thing {
    static void operator delete(void* memory) { ::operator delete(memory); }
};

TEST(Destruction, ObjectsWithSeveralOrVirtualCountedBasesAreCountedThroughOne) {
    int first_count = 0, virtual_count = 0;
    {
        const StrongPtr<CountedTwice, First> pointer(new CountedTwice);
        pointer->First::at_death = [&](Thing& dying) { first_count = dying.controlBlock().strongCount(); };
        const StrongPtr<CountedVirtually> other(new CountedVirtually);
        other->at_death = [&](Thing& dying) { virtual_count = dying.controlBlock().strongCount(); };
        EXPECT_EQ(other->controlBlock().strongCount(), 1);
    }
    EXPECT_LT(first_count, 0);
    EXPECT_LT(virtual_count, 0);
}

} // namespace
