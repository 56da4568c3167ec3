#include <sorvik/typed_slot.hpp>

namespace Qelt {

template class TypedSlot<double>;
template class TypedSlotCreatorOf<double>;

} // namespace Qelt
