#include <tessan/counted.hpp>

#include <tessan/speak_ptr.hpp>

#include <typeinfo>

namespace Tessan {

std::atomic<std::uint64_t> PointerID{0};

void ControlBlock::addStrong() noexcept {
    keep();
    warnIfBeingDestroyed(my_strong.fetch_add(1, std::memory_order_relaxed));
}

void ControlBlock::addWeak() noexcept {
    keep();
    my_weak.fetch_add(1, std::memory_order_relaxed);
}

bool ControlBlock::tryAddStrong() noexcept {
    int count = my_strong.load(std::memory_order_relaxed);
    do {
        if (count < 0 || !object())
            return false;
    } while (!my_strong.compare_exchange_weak(count, count + 1, std::memory_order_acq_rel));
    keep();
    return true;
}

void ControlBlock::releaseStrong() noexcept {
    int count = my_strong.load(std::memory_order_acquire);
    for (;;) {
        Counted* const last = count == 1 ? object() : nullptr;
        if (last) {
            // Our own share is given back only after the hook, so nobody else can get here meanwhile.
            last->unreferenced();
            if (my_strong.compare_exchange_strong(count, being_destroyed, std::memory_order_acq_rel)) {
                delete last;
                break;
            }
            SpeakPtr::theSpeaker().DestructionCancelled(typeid(*last));
        } else if (my_strong.compare_exchange_weak(count, count - 1, std::memory_order_acq_rel)) {
            warnIfBeingDestroyed(count);
            break;
        }
    }
    drop();
}

void ControlBlock::releaseWeak() noexcept {
    my_weak.fetch_sub(1, std::memory_order_relaxed);
    drop();
}

void ControlBlock::beginDestruction() noexcept {
    if (strongCount() >= 0) // else whoever deletes the object has said so already
        my_strong.fetch_add(being_destroyed, std::memory_order_acq_rel);
}

void ControlBlock::drop() noexcept {
    if (my_holders.fetch_sub(1, std::memory_order_acq_rel) == 1)
        delete this;
}

void ControlBlock::warnIfBeingDestroyed(int former_count) const noexcept {
    if (const Counted* const going = former_count < 0 ? object() : nullptr)
        SpeakPtr::theSpeaker().WarningUnctionChange(typeid(*going));
}

Counted::Counted() : my_block(new ControlBlock(this)) {}

Counted::~Counted() {
    my_block->my_object.store(nullptr, std::memory_order_release);
    my_block->drop();
}

void Counted::destroy(Counted* object) noexcept {
    if (!object)
        return;
    object->controlBlock().beginDestruction();
    delete object;
}

void* Counted::destruct(Counted* object) {
    void* const memory = dynamic_cast<void*>(object); // this base need not lie at its beginning
    object->controlBlock().beginDestruction();
    object->~Counted();
    return memory;
}

void Counted::operator delete(Counted* object, std::destroying_delete_t) {
    ::operator delete(destruct(object));
}

void Counted::operator delete(Counted* object, std::destroying_delete_t, std::align_val_t alignment) {
    ::operator delete(destruct(object), alignment);
}

} // namespace Tessan
