#pragma once

#include <tessan/export.hpp>

#include <atomic>
#include <cstdint>
#include <limits>
#include <new>

namespace Tessan {

class Counted;

/// The serial of the pointer made last. Every pointer takes the next number as it is made or copied.
///
/// The counter is advanced by a load and a store, not by one read-modify-write: pointers are copied
/// everywhere, and two threads that copy at the same instant may share a number. It tells pointers apart in
/// diagnostics.
extern TESSAN_EXPORT std::atomic<std::uint64_t> PointerID;

/// Takes the next pointer serial.
inline std::uint64_t nextPointerID() noexcept {
    const std::uint64_t id = PointerID.load(std::memory_order_relaxed) + 1;
    PointerID.store(id, std::memory_order_relaxed);
    return id;
}

/// What all pointers to one object share: how many there are, and the object while it lives.
///
/// The block outlives its object until the last pointer goes, so that a pointer can always tell whether its
/// object is still there. The counts are changed atomically; nothing is locked.
class TESSAN_EXPORT ControlBlock {
public:
    /// The strong pointers, negative from the moment in which the destruction of the object begins.
    int strongCount() const noexcept { return my_strong.load(std::memory_order_acquire); }

    /// The weak pointers.
    int weakCount() const noexcept { return my_weak.load(std::memory_order_acquire); }

    /// The object, or null once it has gone.
    Counted* object() const noexcept { return my_object.load(std::memory_order_acquire); }

    void addStrong() noexcept;
    void addWeak() noexcept;
    /// Takes a strong count unless the object is gone or going. @returns whether it was taken.
    bool tryAddStrong() noexcept;
    /// Gives a strong count back; with the last one the object is deleted through its virtual destructor.
    void releaseStrong() noexcept;
    void releaseWeak() noexcept;

private:
    friend class Counted;

    /// Far enough below zero that no number of pointers brings the strong count back to it.
    static constexpr int being_destroyed = std::numeric_limits<int>::min() / 2;

    explicit ControlBlock(Counted* object) noexcept : my_object(object) {}

    void beginDestruction() noexcept;
    void keep() noexcept { my_holders.fetch_add(1, std::memory_order_relaxed); }
    void drop() noexcept;
    void warnIfBeingDestroyed(int former_count) const noexcept;

    std::atomic<int> my_strong{0};
    std::atomic<int> my_weak{0};
    std::atomic<int> my_holders{1}; ///< who keeps this block: the object and every pointer
    std::atomic<Counted*> my_object;
};

/// Base of every object that `StrongPtr` and `WeakPtr` can point to. It carries the control block.
///
/// A class that has this base virtually or several times cannot inherit its `operator delete` (compilers
/// refuse that, GCC 12 with an internal error) and declares an ordinary one of its own. Then pointers and
/// `destroy` still make the strong count negative, `delete` does not.
class TESSAN_EXPORT Counted {
public:
    Counted();
    Counted(const Counted&) : Counted() {}
    // NOLINTNEXTLINE(bugprone-unhandled-self-assignment): assigns nothing, the block stays with its object
    Counted& operator=(const Counted&) noexcept { return *this; }

    /// Called when the last strong pointer has gone, before the object is deleted. An object that wants to
    /// live on takes a strong pointer to itself here. The base does nothing.
    virtual void unreferenced() {}

    virtual ~Counted();

    ControlBlock& controlBlock() const noexcept { return *my_block; }

    /// Deletes an object in spite of the strong pointers that hold it. They learn that it is gone.
    static void destroy(Counted* object) noexcept;

    /// What `delete` calls instead of the destructor, so that the strong count is negative before it begins.
    static void operator delete(Counted* object, std::destroying_delete_t);
    static void operator delete(Counted* object, std::destroying_delete_t, std::align_val_t alignment);

    /// Gives the memory back when a constructor throws.
    static void operator delete(void* memory) noexcept { ::operator delete(memory); }
    static void operator delete(void* memory, std::align_val_t alignment) noexcept {
        ::operator delete(memory, alignment);
    }

protected:
    /// Makes the object its own owner: no pointer that goes deletes it. For objects that are not on the heap.
    void ownItself() noexcept { my_block->my_strong.fetch_add(1, std::memory_order_relaxed); }

private:
    /// Destroys an object. @returns the memory that it had.
    static void* destruct(Counted* object);

    ControlBlock* my_block;
};

} // namespace Tessan
