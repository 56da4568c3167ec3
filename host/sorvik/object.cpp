#include <sorvik/object.hpp>

#include <sorvik/creator.hpp>
#include <sorvik/slot_creator.hpp>
#include <sorvik/unique_name.hpp>
#include <sorvik/value_pool.hpp>
#include <tessan/typename.hpp>

#include <algorithm>

namespace Qelt {

template class VManagedDomainObject<VObject>;

VObject::VObject(const std::string& name, int priority, const VCreationPreferences& preferences)
    : VManagedDomainObject<VObject>(name), my_priority(priority), my_preferences(preferences) {}

VObject::~VObject() = default;

void VObject::setCreator(const Tessan::WeakPtr<VCreatorBase>& creator) {
    const bool first = !my_creator && creator;
    my_creator = creator;
    if (first)
        setup();
}

std::string VObject::makeChildname(const std::string& child) const {
    return Name() + "/" + child;
}

std::string VObject::createChildname(const std::string& base) const {
    const auto& living = members();
    return uniqueName(makeChildname(base), [&](const std::string& name) {
        return std::any_of(living.begin(), living.end(),
                           [&](const VManagedObject* object) { return object->Name() == name; });
    });
}

std::string VObject::CreateParameterName(const std::string& base) const {
    return uniqueName(base, [&](const std::string& name) { return findParameter(name) != nullptr; });
}

AcceptList VObject::accept(const VObject& offered) const {
    AcceptList list = getAcceptInfoList(offered);
    if (const auto* const sink = dynamic_cast<const VSinkBase*>(my_creator.get()))
        mergeAcceptList(list, sink->acceptedInputs(*this, offered));
    return list;
}

VSlot* VObject::InputCreation(const std::string& type_name, const std::string& name, int expert_level) {
    const TypedSlotCreator* const creator = TypedSlotCreator::find(type_name);
    if (!creator)
        return nullptr;
    my_inputs.push_back(creator->createSlot(*this, CreateParameterName(name), expert_level));
    return my_inputs.back().get();
}

Tessan::StrongPtr<VObject> VObject::copy(const std::string& name) const {
    VCreatorBase* const creator = my_creator.get();
    if (!creator)
        return {};
    auto made = creator->create(name);
    for (const Entry& entry : parameters())
        if (VParameter* const twin = made->findParameter(entry.parameter->Name()))
            twin->setGlobalValue(entry.parameter->globalValue());
    return made;
}

std::string VObject::help() const {
    const VCreatorBase* const creator = my_creator.get();
    return creator ? creator->properties().text(VCreatorPropertyBase::Kind::description) : std::string();
}

std::string VObject::type_key() const {
    const VCreatorBase* const creator = my_creator.get();
    return creator ? creator->keyname("/") : std::string();
}

std::string VObject::qt_icon() const {
    return {};
}

const char* const* VObject::xpm_icon() const {
    return nullptr;
}

std::string VObject::gimp_icon() const {
    return {};
}

bool VObject::update(VRequest&, double) {
    return true;
}

bool VObject::unsychronized_update(VRequest& request, double time) {
    return update(request, time);
}

bool VObject::must_update(const VRequest&) const {
    return true;
}

bool VObject::request(VRequest& request, double time) {
    if (!my_processes_requests)
        return false;
    return !must_update(request) || unsychronized_update(request, time);
}

void VObject::iterateOutputs(const std::function<void(VParameter&)>& visit) const {
    for (const Entry& entry : parameters())
        visit(*entry.parameter);
}

AcceptList VObject::getAcceptInfoList(const VObject& offered) const {
    AcceptList list;
    for (const VSlot* const slot : slots()) {
        const VParameter* const output = offered.findParameter(slot->name());
        if (output && output->type() == slot->type() && !ignoreInput(slot->name()))
            list.push_back({slot->name(), Tessan::Typename(slot->type())});
    }
    return list;
}

bool VObject::connectInput(std::string_view input, VParameter& source) {
    VSlot* const slot = findSlot(input);
    if (!slot || ignoreInput(input) || !slot->connect(Tessan::StrongPtr<VParameter>(&source)))
        return false;
    CreatedFilteredConnection(*slot, source);
    return true;
}

} // namespace Qelt
