#include <sorvik/parameter.hpp>

#include <sorvik/object.hpp>
#include <sorvik/value_pool.hpp>
#include <sorvik/vprintf.hpp>

#include <algorithm>
#include <stdexcept>

namespace Qelt {

VParameter::VParameter(Tessan::StrongPtr<VValueBase> value, std::string name,
                       const VCreationPreferences& preferences)
    : my_name(std::move(name)), my_value(std::move(value)) {
    if (!my_value)
        throw std::invalid_argument("VParameter \"" + my_name +
                                    "\": a parameter needs a value, none was given");
    my_default = my_value->clone();
    const std::string* const preferred = preferences.find(my_name);
    if (preferred && !my_value->setValueFromText(*preferred))
        Vprintf(0, "VParameter %s: \"%s\" is not the text of a %s; the default \"%s\" stays\n",
                my_name.c_str(), preferred->c_str(), Tessan::Typename(type()).c_str(),
                my_default->Text().c_str());
}

VParameter::~VParameter() {
    ValuePool::forget(*this);
}

void VParameter::setCreator(VObject* object) noexcept {
    my_creator = Tessan::WeakPtr<VObject>(object);
}

bool VParameter::setProperty(const std::string& name, const VValueBase& value) {
    const auto found = std::find_if(my_properties.begin(), my_properties.end(),
                                    [&](const Property& property) { return property.first == name; });
    if (found == my_properties.end())
        my_properties.emplace_back(name, value.clone());
    else if (!found->second->equals(value))
        found->second = value.clone();
    else
        return false;
    return true;
}

const VValueBase* VParameter::property(std::string_view name) const noexcept {
    for (const Property& property : my_properties)
        if (property.first == name)
            return property.second.get();
    return nullptr;
}

VValueBase* VParameter::getLocalValue(ValuePool& pool, std::string_view component, bool own) const {
    VValueBase* value = pool.retrieveValue(*this);
    if (!value && my_has_source) {
        const VParameter* const followed = source();
        value = followed ? followed->getLocalValue(pool) : nullptr;
    } else if (!value) {
        value = my_value.get();
    }
    if (own && value && !pool.ownsVariable(*this))
        value = &pool.createVariable(*this, value->clone());
    return value ? value->component(component) : nullptr;
}

bool VParameter::setGlobalValue(const VValueBase& value) {
    if (!my_value->component({})->setContainerValue(value))
        return false;
    if (verbosity() >= 50)
        Vprintf(50, "VParameter::setGlobalValue() got variable with %s\n", my_value->Text().c_str());
    return true;
}

bool VParameter::setGlobalValueFromText(const std::string& text) {
    const auto value = my_default->clone();
    return value->setValueFromText(text) && setGlobalValue(*value);
}

bool VParameter::setSource(const Tessan::StrongPtr<VParameter>& source) {
    if (source && source->type() != type())
        return false;
    for (const VParameter* parameter = source.get(); parameter; parameter = parameter->source())
        if (parameter == this)
            return false;
    my_source = source;
    my_has_source = static_cast<bool>(source);
    return true;
}

template class VValueParameter<double>;

} // namespace Qelt
