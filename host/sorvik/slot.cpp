#include <sorvik/slot.hpp>

#include <sorvik/slot_container.hpp>
#include <tessan/speak_ptr.hpp>

#include <cstdio>
#include <utility>

namespace Qelt {

VSlot::VSlot(VSlotContainer& container, std::string name, const std::type_info& type)
    : my_container(container), my_name(std::move(name)), my_type(type) {
    container.my_slots.push_back(this);
}

VSlot::~VSlot() {
    std::erase(my_container.my_slots, this);
}

const VValueBase* VSlot::getValueBase(ValuePool& pool) const {
    const VParameter* const held = parameter();
    return held ? held->getLocalValue(pool) : nullptr;
}

bool VSlot::connect(const Tessan::StrongPtr<VParameter>& source) {
    VParameter* const held = parameter();
    return held && held->setSource(source);
}

void VSlot::reportMissingCreators() const {
    std::puts("Typeslot has a problem, its creators were not registered!?");
    const std::type_info& owner = typeid(my_container);
    Tessan::SpeakPtr::theSpeaker().printRS(
        "slot \"" + my_name + "\" of " + Tessan::Typename(owner) + " takes a " + Tessan::Typename(my_type) +
            ", whose slot creator " + Tessan::libraryOf(owner).file + " has not registered",
        "~TypedSlot()");
}

} // namespace Qelt
