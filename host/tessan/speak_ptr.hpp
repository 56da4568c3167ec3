#pragma once

#include <tessan/export.hpp>

#include <string>
#include <typeinfo>

namespace Tessan {

/// Speaks up when a pointer is misused. Each report returns; the pointer then stands as if it held nothing.
///
/// The speaker can be replaced, so that a program shows the reports its own way and tests can see them. A
/// replacement that overrides `printRS` alone gets everything, since the other reports end there by default.
class TESSAN_EXPORT SpeakPtr {
public:
    SpeakPtr() = default;
    SpeakPtr(const SpeakPtr&) = delete;
    SpeakPtr& operator=(const SpeakPtr&) = delete;
    virtual ~SpeakPtr();

    /// A pointer was constructed from itself.
    virtual void SelfConstruction(const std::type_info& type);

    /// A strong pointer was dereferenced that holds nothing, or whose object was deleted in spite of it.
    virtual void DynPtrInvalid(const std::type_info& type);

    /// A weak pointer was dereferenced whose object has gone.
    virtual void InvalidWeakPtr(const std::type_info& type);

    /// The last strong pointer went, but a new one was taken before the object was deleted: it lives on.
    virtual void DestructionCancelled(const std::type_info& type);

    /// A strong pointer to an object was taken or released while the object is being destroyed.
    virtual void WarningUnctionChange(const std::type_info& type);

    /// Prints `message`, and the place in the code that it comes from, on standard error.
    virtual void printRS(const std::string& message, const char* place);

    /// The speaker in force.
    static SpeakPtr& theSpeaker() noexcept;

    /// Puts another speaker in force; a null pointer brings the built-in one back. The caller keeps it alive.
    /// @returns the speaker that was in force, null if it was the built-in one.
    static SpeakPtr* replaceSpeaker(SpeakPtr* speaker) noexcept;
};

} // namespace Tessan
