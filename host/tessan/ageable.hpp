#pragma once

#include <tessan/export.hpp>

#include <atomic>
#include <cstdint>

namespace Tessan {

/// An object stamped with the time of its last change, in ticks of a global clock that only counts changes.
class TESSAN_EXPORT Ageable {
public:
    using Time = std::uint64_t;

    /// The current time: the stamp of the latest change anywhere in the process.
    static std::atomic<Time> GlobalTime;

    /// Stamps the new object with the current time; making an object is not a change, so the clock stands
    /// still.
    Ageable() noexcept : my_age(GlobalTime.load(std::memory_order_relaxed)) {}
    Ageable(const Ageable&) noexcept : Ageable() {}
    Ageable& operator=(const Ageable&) noexcept;
    virtual ~Ageable();

    /// The time of the last change.
    Time age() const noexcept { return my_age; }

    /// Sets the time of the last change, for an object that changes with another one.
    void setAge(Time age) noexcept { my_age = age; }

    /// Records a change: advances the clock and stamps this object with the new time.
    void grow() noexcept;

private:
    Time my_age;
};

} // namespace Tessan
