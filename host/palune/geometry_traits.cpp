#include <palune/geometry_traits.hpp>

#include <sorvik/component_text.hpp>

#include <array>

namespace Qelt {

namespace {

using Orvid::PhysicalSpace;
using Orvid::rgba_float_t;

template <class Triple>
std::string tripleToText(const Triple& value) {
    return componentsToText(std::array{value.x, value.y, value.z});
}

template <class Triple>
bool tripleFromText(Triple& value, const std::string& text) {
    std::array<double, 3> read{};
    if (!componentsFromText(read, text))
        return false;
    value = {read[0], read[1], read[2]};
    return true;
}

} // namespace

std::string VValueTrait<rgba_float_t>::Text(const rgba_float_t& value) {
    return componentsToText(std::array{value.r, value.g, value.b, value.a});
}

bool VValueTrait<rgba_float_t>::setValueFromText(rgba_float_t& value, const std::string& text) {
    std::array<float, 4> read{};
    if (!componentsFromText(read, text))
        return false;
    value = {read[0], read[1], read[2], read[3]};
    return true;
}

std::string VValueTrait<PhysicalSpace::point>::Text(const PhysicalSpace::point& value) {
    return tripleToText(value);
}

bool VValueTrait<PhysicalSpace::point>::setValueFromText(PhysicalSpace::point& value,
                                                         const std::string& text) {
    return tripleFromText(value, text);
}

std::string VValueTrait<PhysicalSpace::vector>::Text(const PhysicalSpace::vector& value) {
    return tripleToText(value);
}

bool VValueTrait<PhysicalSpace::vector>::setValueFromText(PhysicalSpace::vector& value,
                                                          const std::string& text) {
    return tripleFromText(value, text);
}

#define PALUNE_VALUE_TYPE(TYPE)                                                                              \
    template class VTypedValueBase<TYPE>;                                                                    \
    template class VValue<TYPE>;                                                                             \
    template class VValueParameter<TYPE>;                                                                    \
    template class TypedSlot<TYPE>;                                                                          \
    template class TypedSlotCreatorOf<TYPE>;                                                                 \
    template class VValueCreatorOf<TYPE>;

PALUNE_VALUE_TYPE(Orvid::rgba_float_t)
PALUNE_VALUE_TYPE(Orvid::PhysicalSpace::point)
PALUNE_VALUE_TYPE(Orvid::PhysicalSpace::vector)

#undef PALUNE_VALUE_TYPE

} // namespace Qelt
