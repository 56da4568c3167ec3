#include <sorvik/value.hpp>

#include <algorithm>

namespace Qelt {

void ValueNotifierList::touch(Tessan::Ageable::Time now) {
    for (const auto& shadow : my_shadows)
        if (VValueBase* const value = shadow.get()) {
            value->setAge(now);
            value->notifiers().touch(now);
        }
}

void ValueNotifierList::addShadow(VValueBase& shadow) {
    if (my_shadows.size() == my_shadows.capacity()) // rather than grow; seldom enough to cost nothing
        std::erase_if(my_shadows, [](const auto& held) { return !held; });
    my_shadows.emplace_back(&shadow);
}

void ValueNotifierList::removeShadow(const VValueBase& shadow) {
    std::erase_if(my_shadows, [&](const auto& held) { return !held || held.get() == &shadow; });
}

void ValueNotifierList::copyShadows(const ValueNotifierList& other) {
    for (const auto& shadow : other.my_shadows)
        if (VValueBase* const value = shadow.get())
            addShadow(*value);
}

VValueBase::~VValueBase() = default;

VValueBase* VValueBase::component(std::string_view name) {
    return name.empty() ? this : nullptr;
}

void* VValueBase::getInterface(const std::type_info&) {
    return nullptr;
}

bool VValueBase::setSource(const Tessan::StrongPtr<VValueBase>& source) {
    if (source && source->type() != type())
        return false;
    for (const VValueBase* value = source.get(); value; value = value->source())
        if (value == this)
            return false;
    if (VValueBase* const former = my_source.get())
        former->my_notifiers.removeShadow(*this);
    my_source = source;
    my_has_source = static_cast<bool>(source);
    if (source)
        source->my_notifiers.addShadow(*this);
    touch();
    return true;
}

void VValueBase::replace(VValueBase& former) {
    my_notifiers.copyShadows(former.my_notifiers);
    for (const auto& shadow : my_notifiers.shadows())
        if (VValueBase* const value = shadow.get(); value && value->source() == &former)
            value->my_source = Tessan::WeakPtr<VValueBase>(this);
    touch();
}

void VValueBase::touch() {
    grow();
    my_notifiers.touch(age());
}

template class VTypedValueBase<double>;
template class VValue<double>;
template class VTypedValueBase<std::string>;
template class VValue<std::string>;

} // namespace Qelt
