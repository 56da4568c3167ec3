#pragma once

// What objects do with their own slots.

#include <sorvik/slot.hpp>
#include <sorvik/value.hpp>

namespace Qelt {

/// Reads a slot in a context. `Held` says what kind of value is taken: `VValue<T>` one that is held as such
/// or derived from it, `VTypedValueBase<T>` any value of type `T`, a computed one too.
/// @returns `fallback` if the slot holds no live parameter, or its value is of another kind or cannot be
/// read.
template <class Held, class T>
T readOr(const T& fallback, const VSlot& slot, ValuePool& pool) {
    T value = fallback;
    if (const auto* const held = dynamic_cast<const Held*>(slot.getValueBase(pool)))
        held->getValue(value);
    return value;
}

/// The read that most parameters get: any value of the slot's type.
template <class T>
T readTypedOr(const T& fallback, const VSlot& slot, ValuePool& pool) {
    return readOr<VTypedValueBase<T>>(fallback, slot, pool);
}

/// Attaches a property for editors to a slot's parameter, if the slot holds one.
template <class T>
void setProperty(const VSlot& slot, const char* name, const T& value) {
    if (VParameter* const parameter = slot.parameter())
        parameter->setProperty(name, VValue<T>(value));
}

} // namespace Qelt
