#include <sorvik/slot_container.hpp>

#include <sorvik/connectable.hpp>
#include <sorvik/slot.hpp>
#include <tessan/speak_ptr.hpp>
#include <tessan/typename.hpp>

#include <algorithm>

namespace Qelt {

VSlotContainer::VSlotContainer() = default;
VSlotContainer::~VSlotContainer() = default;

VParameter* VSlotContainer::findParameter(std::string_view name) const noexcept {
    for (const Entry& entry : my_parameters)
        if (entry.parameter->Name() == name)
            return entry.parameter.get();
    return nullptr;
}

VSlot* VSlotContainer::findSlot(std::string_view name) const noexcept {
    for (VSlot* const slot : my_slots)
        if (slot->name() == name)
            return slot;
    return nullptr;
}

bool VSlotContainer::removeParameter(std::string_view name) {
    const std::string gone(name); // which may be the name of the very parameter that goes
    return std::erase_if(my_parameters,
                         [&](const Entry& entry) { return entry.parameter->Name() == gone; }) != 0;
}

void VSlotContainer::setup() {}

std::size_t VSlotContainer::connectSlots(VConnectable& provider) {
    std::size_t connected = 0;
    provider.iterateOutputs([&](VParameter& output) {
        VSlot* const slot = findSlot(output.Name());
        if (slot && !ignoreInput(slot->name()) && slot->connect(Tessan::StrongPtr<VParameter>(&output)))
            ++connected;
    });
    return connected;
}

bool VSlotContainer::allowParameterReplacement(std::string_view) const {
    return false;
}

bool VSlotContainer::ignoreInput(std::string_view) const {
    return false;
}

std::size_t VSlotContainer::adjustConnections() {
    std::size_t adjusted = 0;
    for (const Entry& entry : my_parameters)
        if (entry.parameter->hasSource() && !entry.parameter->source()) {
            entry.parameter->setSource({});
            ++adjusted;
        }
    return adjusted;
}

Tessan::StrongPtr<VParameter> VSlotGlobals::addParameter(VSlotContainer& container, const std::string& name,
                                                         int expert_level,
                                                         const Tessan::StrongPtr<VParameter>& parameter,
                                                         bool replace) {
    for (VSlotContainer::Entry& entry : container.my_parameters)
        if (entry.parameter->Name() == name) {
            if (replace && container.allowParameterReplacement(name))
                entry = {parameter, expert_level};
            return entry.parameter;
        }
    container.my_parameters.push_back({parameter, expert_level});
    return parameter;
}

std::string VSlotGlobals::conversionFailure(const VParameter& held, const std::type_info& value,
                                            const std::type_info& expected) {
    using Tessan::libraryOf, Tessan::Typename;
    const std::string parameter = "parameter \"" + held.Name() + "\" ";
    const std::string wanted = Typename(value), found = Typename(held.type());
    if (found != wanted)
        return parameter + "is not a " + wanted + " but a " + found;
    const std::string wanted_class = Typename(expected), found_class = Typename(typeid(held));
    if (found_class != wanted_class)
        return parameter + "has a " + wanted + ", but is a " + found_class + ", not a " + wanted_class;
    return parameter + "is a " + wanted + " of " + libraryOf(held.type()).file + ", not the one of " +
           libraryOf(value).file;
}

void VSlotGlobals::assertionFail(const std::string& message, const char* place) {
    Tessan::SpeakPtr::theSpeaker().printRS(message, place);
}

} // namespace Qelt
