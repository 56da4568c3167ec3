#include <sorvik/creator.hpp>

#include <sorvik/unique_name.hpp>
#include <tessan/typename.hpp>

#include <algorithm>

namespace Qelt {

namespace {

/// By creator number, then by the time of registration. Never destroyed: modules destroy their creators as
/// late as after `main`.
std::vector<VCreatorBase*>& registeredCreators() {
    static auto& registered = *new std::vector<VCreatorBase*>;
    return registered;
}

} // namespace

VCreatorBase::VCreatorBase(const VCreatorProperties& properties, int number,
                           const VCreationPreferences& preferences, bool hidden, const char* version_key)
    : VManagedObject(properties.text(VCreatorPropertyBase::Kind::name)), my_properties(properties),
      my_number(number), my_preferences(preferences), my_hidden(hidden) {
    enterCatalogue(version_key);
}

VCreatorBase::VCreatorBase(const std::string& name, int number, const VCreationPreferences& preferences,
                           bool hidden, const char* version_key)
    : VCreatorBase(VCreatorPropertyBase(VCreatorPropertyBase::Kind::name, name), number, preferences, hidden,
                   version_key) {}

VCreatorBase::~VCreatorBase() {
    std::erase(registeredCreators(), this);
}

void VCreatorBase::enterCatalogue(const char* version_key) {
    ownItself(); // a creator belongs to its module, not to the pointers to it
    if (!VInitialization().IsCompatible(version_key)) {
        Vprintf(
            0, "VCreatorBase: %s is built for the interface %s, not for %s, and stays out of the catalogue\n",
            Name().c_str(), version_key, VInitialization::interfaceKey);
        return;
    }
    auto& registered = registeredCreators();
    const auto place =
        std::upper_bound(registered.begin(), registered.end(), my_number,
                         [](int number, const VCreatorBase* other) { return number < other->my_number; });
    registered.insert(place, this);
}

void VCreatorBase::leaveCatalogue(const std::type_info& type) {
    auto& registered = registeredCreators();
    std::erase(registered, this);
    const Tessan::Library library = Tessan::libraryOf(type);
    if (std::none_of(registered.begin(), registered.end(),
                     [&](const VCreatorBase* other) { return Tessan::libraryOf(other->type()) == library; }))
        VActionNotifier::VCreatorsEnd(library);
}

std::string VCreatorBase::createChildname(const std::function<bool(const std::string&)>& taken) const {
    return uniqueName(Name(), taken);
}

std::string VCreatorBase::createChildname(const std::function<bool(const std::string&)>& taken,
                                          unsigned long& number) const {
    return uniqueName(Name(), taken, number);
}

std::size_t VCreatorBase::deleteAllInstances(const std::type_info& type) {
    std::vector<Tessan::WeakPtr<VObject>> instances; // one may take another one along as it goes
    for (auto* const member : VObject::members()) {
        auto* const object = static_cast<VObject*>(member);
        if (&typeid(*object) == &type) // not ==, which takes types of one name for the same
            instances.emplace_back(object);
    }
    for (auto object = instances.rbegin(); object != instances.rend(); ++object)
        Tessan::Counted::destroy(object->get());
    VActionNotifier::VInstanceDeletion(type);
    return instances.size();
}

std::vector<VCreatorBase*> VCreatorBase::catalogue() {
    std::vector<VCreatorBase*> listed;
    for (VCreatorBase* const creator : registeredCreators())
        if (!creator->my_hidden)
            listed.push_back(creator);
    return listed;
}

VCreatorBase* VCreatorBase::find(std::string_view name) {
    for (VCreatorBase* const creator : registeredCreators())
        if (creator->Name() == name)
            return creator;
    return nullptr;
}

VSinkBase::VSinkBase() = default;
VSinkBase::~VSinkBase() = default;

AcceptList VSinkBase::acceptedInputs(const VObject& object, const VObject& offered) const {
    AcceptList list;
    const std::type_info* const input = inputType();
    if (!input || !offered.implements(*input))
        return list;
    for (const VSlot* const slot : object.slots())
        if (slot->type() == *input && !object.ignoreInput(slot->name()))
            list.push_back({slot->name(), Tessan::Typename(*input)});
    return list;
}

} // namespace Qelt
