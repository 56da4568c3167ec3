#pragma once

#include <sorvik/export.hpp>
#include <sorvik/slot.hpp>

#include <atomic>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <typeinfo>

namespace Qelt {

class VObject;

/// Whether slot creators for `T` have been registered by the library that asks: each one has a flag of its
/// own. Set by the module that registers them, once and for all: slots are torn down even after the creators
/// were withdrawn.
template <class T>
[[gnu::visibility("hidden")]] inline constinit std::atomic<bool> slot_creators_registered{false};

/// Makes slots of one value type at run time, for inputs that an object gets by the name of their type
/// (`VObject::InputCreation`). Several creators may be registered for a type; the first one serves.
class SORVIK_EXPORT TypedSlotCreator {
public:
    /// How many slots were torn down whose creators had been registered.
    static std::atomic<std::size_t> InternalTypeCreatorAccessory;

    TypedSlotCreator() = default;
    TypedSlotCreator(const TypedSlotCreator&) = delete;
    TypedSlotCreator& operator=(const TypedSlotCreator&) = delete;
    virtual ~TypedSlotCreator();

    /// Makes a slot whose parameter starts as the type's zero value.
    virtual std::unique_ptr<VSlot> createSlot(VObject& object, const std::string& name,
                                              int expert_level) const = 0;

    /// Enters a creator for a type under the type's name. The caller keeps it alive until it is withdrawn.
    static void registerTypedSlotCreator(const std::type_info& type, const TypedSlotCreator& creator,
                                         const std::string& name);

    /// Withdraws exactly this entry. @returns whether there was one.
    static bool unregisterTypedSlotCreator(const std::type_info& type, const TypedSlotCreator& creator,
                                           const std::string& name);

    /// The first creator registered under a type's name, or for a type; null if there is none.
    static const TypedSlotCreator* find(std::string_view name);
    static const TypedSlotCreator* find(const std::type_info& type);

    /// How many creators are registered for a type.
    static std::size_t count(const std::type_info& type);

protected:
    /// Stands for the flag of a library in the slots that a creator makes, wherever it comes from.
    static const std::atomic<bool> creator_exists;
};

} // namespace Qelt
