#pragma once

#include <mutex>
#include <unordered_set>

namespace Tessan {

/// The living objects of a class, for what has to reach all of them. Its objects enter as they are made and
/// leave as they go, on whatever thread; the mutex guards this list alone, not what the objects hold.
template <class T>
class Living {
public:
    /// The one list. It is kept in the library that uses it, and never destroyed: objects go as late as in
    /// the destructors of other globals.
    static Living& objects() {
        static auto& living = *new Living;
        return living;
    }

    void enter(T& object) {
        const std::lock_guard lock(my_mutex);
        my_objects.insert(&object);
    }

    void leave(T& object) noexcept {
        const std::lock_guard lock(my_mutex);
        my_objects.erase(&object);
    }

    /// Shows each object to `visit`, in no order. What `visit` lets go of has to outlive this call: its
    /// destruction may make objects leave.
    template <class Visit>
    void visitAll(Visit visit) {
        const std::lock_guard lock(my_mutex);
        for (T* const object : my_objects)
            visit(*object);
    }

private:
    std::mutex my_mutex;
    std::unordered_set<T*> my_objects;
};

} // namespace Tessan
