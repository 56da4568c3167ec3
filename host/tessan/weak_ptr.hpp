#pragma once

#include <tessan/strong_ptr.hpp>

namespace Tessan {

/// A pointer that looks at an object without keeping it alive, and knows when it has gone.
template <class T, class Base>
class WeakPtr {
public:
    WeakPtr() noexcept = default;
    WeakPtr(std::nullptr_t) noexcept {}
    explicit WeakPtr(T* object) noexcept { look(object, StrongPtr<T, Base>::blockOf(object)); }

    WeakPtr(const WeakPtr& other) noexcept {
        if (this == &other) {
            SpeakPtr::theSpeaker().SelfConstruction(typeid(T));
            return;
        }
        look(other.my_object, other.my_block);
    }

    template <class U, class UBase>
    requires std::is_convertible_v<U*, T*> WeakPtr(const StrongPtr<U, UBase>& other)
    noexcept : WeakPtr(other.get()) {}

    template <class U, class UBase>
    requires std::is_convertible_v<U*, T*> WeakPtr(const WeakPtr<U, UBase>& other)
    noexcept : WeakPtr(other.get()) {}

    ~WeakPtr() {
        if (my_block)
            my_block->releaseWeak();
    }

    /// The pointer takes a fresh serial, that of the copy.
    WeakPtr& operator=(WeakPtr other) noexcept {
        std::swap(my_object, other.my_object);
        std::swap(my_block, other.my_block);
        my_serial = other.my_serial;
        return *this;
    }

    /// The object, or null if the pointer looks at nothing or its object has gone. Nothing is reported.
    T* get() const noexcept { return my_block && my_block->object() ? my_object : nullptr; }

    explicit operator bool() const noexcept { return get() != nullptr; }

    /// The object. Where there is none, that is reported (`SpeakPtr::InvalidWeakPtr`) and the result is null.
    T* operator->() const noexcept {
        T* const object = get();
        if (!object)
            SpeakPtr::theSpeaker().InvalidWeakPtr(typeid(T));
        return object;
    }

    /// The object, which must be there: where there is none, that is reported, and the reference is to
    /// nothing.
    T& operator*() const noexcept { return *operator->(); }

    /// A strong pointer to the object, or one that holds nothing if the object is gone or being destroyed.
    StrongPtr<T, Base> lock() const noexcept {
        StrongPtr<T, Base> strong;
        if (my_block && my_block->tryAddStrong()) {
            strong.my_object = my_object;
            strong.my_block = my_block;
        }
        return strong;
    }

    /// The number that this pointer took from `PointerID` when it was made or assigned to.
    std::uint64_t serial() const noexcept { return my_serial; }

    friend bool operator==(const WeakPtr& a, const WeakPtr& b) noexcept { return a.get() == b.get(); }
    friend bool operator==(const WeakPtr& a, std::nullptr_t) noexcept { return !a; }

    /// An order for keys of maps and sets, as that of `StrongPtr`.
    friend std::strong_ordering operator<=>(const WeakPtr& a, const WeakPtr& b) noexcept {
        return std::compare_three_way()(a.my_block, b.my_block);
    }

private:
    void look(T* object, ControlBlock* block) noexcept {
        my_object = object;
        my_block = block;
        if (my_block)
            my_block->addWeak();
    }

    T* my_object = nullptr;
    ControlBlock* my_block = nullptr;
    std::uint64_t my_serial = nextPointerID();
};

} // namespace Tessan
