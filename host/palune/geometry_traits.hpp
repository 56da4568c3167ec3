#pragma once

#include <orvid/physical_space.hpp>
#include <orvid/rgba_float.hpp>
#include <palune/export.hpp>
#include <sorvik/typed_slot.hpp>
#include <sorvik/value_creator.hpp>

#include <string>

namespace Qelt {

/// A colour as text: red, green, blue and alpha, such as "0.7 0.7 0.7 1".
template <>
struct PALUNE_EXPORT VValueTrait<Orvid::rgba_float_t> {
    static std::string Text(const Orvid::rgba_float_t& value);
    static bool setValueFromText(Orvid::rgba_float_t& value, const std::string& text);
};

/// A point as text: x, y and z, such as "0 0 10".
template <>
struct PALUNE_EXPORT VValueTrait<Orvid::PhysicalSpace::point> {
    static std::string Text(const Orvid::PhysicalSpace::point& value);
    static bool setValueFromText(Orvid::PhysicalSpace::point& value, const std::string& text);
};

/// A vector as text: x, y and z, such as "0 0 -1".
template <>
struct PALUNE_EXPORT VValueTrait<Orvid::PhysicalSpace::vector> {
    static std::string Text(const Orvid::PhysicalSpace::vector& value);
    static bool setValueFromText(Orvid::PhysicalSpace::vector& value, const std::string& text);
};

// Values, parameters and slots of these types live in this library alone, so that they outlast the modules
// that use them.
#define PALUNE_VALUE_TYPE(TYPE)                                                                              \
    extern template class PALUNE_EXPORT VTypedValueBase<TYPE>;                                               \
    extern template class PALUNE_EXPORT VValue<TYPE>;                                                        \
    extern template class PALUNE_EXPORT VValueParameter<TYPE>;                                               \
    extern template class PALUNE_EXPORT TypedSlot<TYPE>;                                                     \
    extern template class PALUNE_EXPORT TypedSlotCreatorOf<TYPE>;                                            \
    extern template class PALUNE_EXPORT VValueCreatorOf<TYPE>;

PALUNE_VALUE_TYPE(Orvid::rgba_float_t)
PALUNE_VALUE_TYPE(Orvid::PhysicalSpace::point)
PALUNE_VALUE_TYPE(Orvid::PhysicalSpace::vector)

#undef PALUNE_VALUE_TYPE

} // namespace Qelt
