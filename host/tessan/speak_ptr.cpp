#include <tessan/speak_ptr.hpp>

#include <tessan/typename.hpp>

#include <atomic>
#include <cstddef>
#include <cstdio>
#include <new>

namespace Tessan {

namespace {

std::atomic<SpeakPtr*> replacement{nullptr};

} // namespace

SpeakPtr::~SpeakPtr() = default;

void SpeakPtr::SelfConstruction(const std::type_info& type) {
    printRS("a pointer to " + Typename(type) + " was constructed from itself; it holds nothing",
            "SelfConstruction");
}

void SpeakPtr::DynPtrInvalid(const std::type_info& type) {
    printRS("a strong pointer to " + Typename(type) + " was dereferenced, but its object is gone",
            "DynPtrInvalid");
}

void SpeakPtr::InvalidWeakPtr(const std::type_info& type) {
    printRS("a weak pointer to " + Typename(type) + " was dereferenced, but its object is gone",
            "InvalidWeakPtr");
}

void SpeakPtr::DestructionCancelled(const std::type_info& type) {
    printRS("the destruction of " + Typename(type) + " was cancelled, since a new strong pointer holds it",
            "DestructionCancelled");
}

void SpeakPtr::WarningUnctionChange(const std::type_info& type) {
    printRS("the reference count of " + Typename(type) + " changed while it is being destroyed",
            "WarningUnctionChange");
}

void SpeakPtr::printRS(const std::string& message, const char* place) {
    std::fprintf(stderr, "%s [%s]\n", message.c_str(), place);
}

SpeakPtr& SpeakPtr::theSpeaker() noexcept {
    // Never destroyed: pointers may be misused as late as in the destructors of other globals.
    alignas(SpeakPtr) static std::byte memory[sizeof(SpeakPtr)];
    static SpeakPtr& built_in = *new (memory) SpeakPtr;
    SpeakPtr* const replaced_by = replacement.load(std::memory_order_acquire);
    return replaced_by ? *replaced_by : built_in;
}

SpeakPtr* SpeakPtr::replaceSpeaker(SpeakPtr* speaker) noexcept {
    return replacement.exchange(speaker, std::memory_order_acq_rel);
}

} // namespace Tessan
