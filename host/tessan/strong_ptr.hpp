#pragma once

#include <tessan/counted.hpp>
#include <tessan/forward.hpp>
#include <tessan/speak_ptr.hpp>

#include <compare>
#include <cstddef>
#include <type_traits>
#include <typeinfo>
#include <utility>

namespace Tessan {

/// A reference-counted pointer that keeps its object alive.
///
/// `Base` is the class through which `T` is counted; it matters only where `T` has several counted bases. The
/// object may be deleted in spite of its strong pointers (`Counted::destroy`): they then hold nothing, and
/// dereferencing one is reported to the speaker and gives null.
template <class T, class Base>
class StrongPtr {
public:
    using element_type = T;

    StrongPtr() noexcept = default;
    StrongPtr(std::nullptr_t) noexcept {}

    /// Takes a share in `object`, which may be null.
    explicit StrongPtr(T* object) noexcept { hold(object, blockOf(object)); }

    StrongPtr(const StrongPtr& other) noexcept {
        if (this == &other) {
            SpeakPtr::theSpeaker().SelfConstruction(typeid(T));
            return;
        }
        hold(other.get(), other.my_block);
    }

    StrongPtr(StrongPtr&& other) noexcept {
        if (this == &other) {
            SpeakPtr::theSpeaker().SelfConstruction(typeid(T));
            return;
        }
        std::swap(my_object, other.my_object);
        std::swap(my_block, other.my_block);
    }

    template <class U, class UBase>
    requires std::is_convertible_v<U*, T*> StrongPtr(const StrongPtr<U, UBase>& other)
    noexcept : StrongPtr(other.get()) {}

    ~StrongPtr() {
        if (my_block)
            my_block->releaseStrong();
    }

    /// The pointer takes a fresh serial, that of the copy.
    StrongPtr& operator=(StrongPtr other) noexcept {
        std::swap(my_object, other.my_object);
        std::swap(my_block, other.my_block);
        my_serial = other.my_serial;
        return *this;
    }

    /// The object, or null if the pointer holds nothing or its object has gone. Nothing is reported.
    T* get() const noexcept { return my_block && my_block->object() ? my_object : nullptr; }

    explicit operator bool() const noexcept { return get() != nullptr; }

    /// The object. Where there is none, that is reported (`SpeakPtr::DynPtrInvalid`) and the result is null.
    T* operator->() const noexcept {
        T* const object = get();
        if (!object)
            SpeakPtr::theSpeaker().DynPtrInvalid(typeid(T));
        return object;
    }

    /// The object, which must be there: where there is none, that is reported, and the reference is to
    /// nothing.
    T& operator*() const noexcept { return *operator->(); }

    /// The number that this pointer took from `PointerID` when it was made or assigned to.
    std::uint64_t serial() const noexcept { return my_serial; }

    friend bool operator==(const StrongPtr& a, const StrongPtr& b) noexcept { return a.get() == b.get(); }
    friend bool operator==(const StrongPtr& a, std::nullptr_t) noexcept { return !a; }

    /// An order for keys of maps and sets: by object, and it stays the same when the object goes. Pointers
    /// that were made for different objects then still differ in it, while both equal null.
    friend std::strong_ordering operator<=>(const StrongPtr& a, const StrongPtr& b) noexcept {
        return std::compare_three_way()(a.my_block, b.my_block);
    }

private:
    template <class, class>
    friend class WeakPtr;

    static ControlBlock* blockOf(T* object) noexcept {
        return object ? &static_cast<const Counted&>(static_cast<const Base&>(*object)).controlBlock()
                      : nullptr;
    }

    void hold(T* object, ControlBlock* block) noexcept {
        if (!object)
            return;
        my_object = object;
        my_block = block;
        my_block->addStrong();
    }

    T* my_object = nullptr;
    ControlBlock* my_block = nullptr;
    std::uint64_t my_serial = nextPointerID();
};

/// `pointer` as a pointer to `T`, or one that holds nothing where the object is not a `T`.
template <class T, class U, class UBase>
StrongPtr<T> dynamicPtr(const StrongPtr<U, UBase>& pointer) noexcept {
    return StrongPtr<T>(dynamic_cast<T*>(pointer.get()));
}

/// A new object in a strong pointer.
template <class T, class... Arguments>
StrongPtr<T> makeStrong(Arguments&&... arguments) {
    return StrongPtr<T>(new T(std::forward<Arguments>(arguments)...));
}

} // namespace Tessan
